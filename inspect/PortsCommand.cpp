#include "inspect/CommandWords.h"
#include "inspect/PortReport.h"
#include "inspect/Subcommand.h"
#include "inspect/UsageError.h"

#include <memory>

namespace inspect
{

namespace
{

SystemRoots roots_of(const CommandWords& words)
{
    SystemRoots roots;
    roots.sys = words.value("sys").value_or(roots.sys);
    roots.dev = words.value("dev").value_or(roots.dev);
    roots.proc = words.value("proc").value_or(roots.proc);
    roots.udev = words.value("udev").value_or(roots.udev);
    if (const auto locks = words.value("locks")) {
        roots.locks = QStringList(*locks);
    }
    return roots;
}

Report run(const CommandWords& words)
{
    if (!words.files().isEmpty()) {
        throw UsageError(QStringLiteral("ports takes no file"));
    }
    const auto name = words.value("user");
    const auto ports = std::make_shared<const PortReport>(
        report_on_ports(roots_of(words), name ? user_named(*name) : current_user()));
    Report report;
    report.problems = lint_ports(*ports);
    report.facts = [ports] {
        return json_of(*ports);
    };
    report.incomplete = !ports->lists_ports;
    report.print_text = [ports](TextPage& page) {
        print(page, *ports);
    };
    return report;
}

} // namespace

const Subcommand& ports_command()
{
    static const Subcommand subcommand = {
        "ports",
        "List the serial ports, and what keeps a user from them.",
        "Shows each serial port of the machine: its adapter, whether the user may open it, who "
        "has\n"
        "it open or locked, and what slows it down. Opens none of them.",
        "",
        "",
        {
            {"user", "name", "Judge for this user instead of the one who runs the program."},
            {"sys", "folder", "Look for devices in <folder> instead of /sys."},
            {"dev", "folder", "Look for device files in <folder> instead of /dev."},
            {"proc", "folder", "Look for processes in <folder> instead of /proc."},
            {"udev", "folder",
             "Look for properties of devices in <folder> instead of /run/udev/data."},
            {"locks", "folder", "Look for lock files in <folder> only."},
        },
        run,
    };
    return subcommand;
}

} // namespace inspect
