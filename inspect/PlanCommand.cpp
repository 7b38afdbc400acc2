#include "inspect/CommandWords.h"
#include "inspect/Plan.h"
#include "inspect/PlanReport.h"
#include "inspect/Subcommand.h"
#include "inspect/UsageError.h"

#include <memory>

namespace inspect
{

namespace
{

Report run(const CommandWords& words)
{
    const auto plan = std::make_shared<const Plan>(make_plan(
        {words.files(), words.value("table").value_or(QStringLiteral("device.txt")),
         words.value("device"), words.value("before").value_or(QString()), words.has("list")}));
    Report report;
    report.problems = plan->problems;
    report.incomplete = !plan->is_foreseen;
    report.facts = [plan, with_commands = words.has("list")] {
        return json_of(*plan, with_commands);
    };
    report.print_text = [plan](TextPage& page) {
        print(page, *plan);
    };
    return report;
}

} // namespace

const Subcommand& plan_command()
{
    static const Subcommand subcommand = {
        "plan",
        "Predict what a command line of zserial would do.",
        "Shows how the uploader understands a command line, and what it would do: its steps, its\n"
        "commands, bytes and erased pages, and the time. Neither the port nor a file is touched.",
        "-- argument...",
        "The command line of zserial, without its name.",
        {
            {"table", "table", "Take the device from <table> instead of ./device.txt."},
            {"device", "version",
             "The device that will answer has <version>, in hexadecimal; needed without -B."},
            {"before", "image", "The device holds <image>; otherwise it is assumed to be erased."},
            {"list", "", "List every command with its word address and byte address."},
        },
        run,
    };
    return subcommand;
}

} // namespace inspect
