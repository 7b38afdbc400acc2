#include "sim/program/OptionParser.h"

#include "sim/device/Error.h"
#include "sim/device/Names.h"
#include "sim/faults/FaultKind.h"

#include <array>

namespace sim
{

namespace
{

const char* const introduction =
    "Simulates a device with a serial bootloader on a pseudo-terminal.\n\n"
    "The path of the port is the first line printed. The device serves until the\n"
    "command of --exec ends or, without one, until SIGINT, SIGTERM or SIGHUP; then a\n"
    "summary is printed.\n\n"
    "A fault is written KIND=P, each time with the probability P, or KIND@N[,N...],\n"
    "at the Nth command; request-bytes and response-bytes only with =P, stuck-bits\n"
    "with neither:\n";

const char* const exit_status =
    "\nExit status: 0 when all is well, 1 when the check fails or a file can't be\n"
    "written, 2 when the command line can't be carried out, 3 when the command of\n"
    "--exec fails or can't be started.";

constexpr int kind_width = 32;

QString description()
{
    QString text = QString::fromLatin1(introduction);
    for (const auto& row : fault_kinds) {
        text += QStringLiteral("  %1%2\n")
                    .arg(form_of(row.kind), -kind_width)
                    .arg(QString::fromLatin1(row.help));
    }
    return text + QString::fromLatin1(exit_status);
}

/// "name" (help), one after the other.
template <typename Table>
QString explained(const Table& table)
{
    QStringList parts;
    for (const auto& row : table) {
        parts.append(QStringLiteral("\"%1\": %2")
                         .arg(QString::fromLatin1(row.name), QString::fromLatin1(row.help)));
    }
    return parts.join(QStringLiteral("; ")) + QLatin1Char('.');
}

struct OptionText {
    const char* name;
    const char* value; ///< what follows the option; empty for nothing
    const char* text;
};

constexpr std::array<OptionText, 24> option_texts = {{
    {"help", "", "Show this help and exit."},
    {"version", "", "Show the version and exit."},
    {"table", "file", "Read the devices from <file> instead of ./device.txt."},
    {"device", "version",
     "Simulate the device with the bootloader version <version>, in hexadecimal; needed when the "
     "table has more than one."},
    {"list", "", "List the table's devices and exit."},
    {"entry", "behaviour",
     "What the device does after power-on and after a reset, \"probe\" without the option. "},
    {"echo", "how",
     "The line is half-duplex: the host receives what it sends; \"apart\" without <how>. "},
    {"pace", "", "Pace the line: bytes take as long as on a wire at the current rate."},
    {"latency-ms", "ms", "The host's adapter delivers short packets after <ms>."},
    {"erase-ms", "ms", "The device takes <ms> to erase a page."},
    {"write-ms", "ms", "The device takes <ms> to write a row."},
    {"fault", "fault", "Inject a fault, see above; may be repeated."},
    {"seed", "number", "Seed of the random faults; the same seed gives the same faults (1)."},
    {"replay", "log", "Answer like the device whose frames are in <log>, a frame log of -x."},
    {"memory", "image", "Fill the memory from the Intel HEX file <image> at the start."},
    {"save", "image",
     "Write the memory that is not erased to the Intel HEX file <image> at the end."},
    {"check", "image",
     "Compare the memory with the Intel HEX file <image> at the end; bytes of it that lie outside "
     "of the device make the check fail."},
    {"ignore-outside", "",
     "Bytes outside of the device are reported, but the check does not fail."},
    {"state", "file", "Keep the memory in <file> from one run to the next."},
    {"link", "path", "Create the symbolic link <path> to the port for the duration of the run."},
    {"trace", "file", "Write a line for every command to <file>. The kinds are "},
    {"summary", "file", "Write the summary to <file> instead of printing it."},
    {"json", "", "Give the summary as one line of JSON."},
    {"exec", "", "Run the command that follows --, with the port's path in place of each {}."},
}};

/// The names that an option accepts, from the tables that define them.
QString names_explained(QLatin1String option)
{
    if (option == QLatin1String("entry")) {
        return explained(entries);
    }
    if (option == QLatin1String("echo")) {
        return explained(echoes);
    }
    return option == QLatin1String("trace") ? explained(command_kinds) : QString();
}

QString help_of(const OptionText& option)
{
    return QString::fromLatin1(option.text) + names_explained(QLatin1String(option.name));
}

/// --echo may have no value, which the parser cannot express.
QStringList with_echo_value(QStringList command_line)
{
    for (int i = 1; i < command_line.size() && command_line.at(i) != QLatin1String("--"); ++i) {
        const bool is_bare =
            i + 1 == command_line.size() || command_line.at(i + 1).startsWith(QLatin1Char('-'));
        if (command_line.at(i) == QLatin1String("--echo") && is_bare) {
            command_line[i] = QStringLiteral("--echo=apart");
        }
    }
    return command_line;
}

} // namespace

OptionParser::OptionParser(const QStringList& command_line)
{
    m_parser.setApplicationDescription(description());
    for (const OptionText& text : option_texts) {
        m_parser.addOption(
            {QString::fromLatin1(text.name), help_of(text), QString::fromLatin1(text.value)});
    }
    m_parser.addPositionalArgument(QStringLiteral("command"),
                                   QStringLiteral("What --exec runs, and its arguments."),
                                   QStringLiteral("[-- command...]"));
    if (!m_parser.parse(with_echo_value(command_line))) {
        throw Error(m_parser.errorText());
    }
}

QString OptionParser::value(const char* name, const QString& preset) const
{
    if (!has(name)) {
        return preset;
    }
    QString value = m_parser.value(QString::fromLatin1(name));
    if (value.isEmpty()) {
        throw Error(QStringLiteral("--%1 needs a value").arg(QString::fromLatin1(name)));
    }
    return value;
}

QStringList OptionParser::values(const char* name) const
{
    return m_parser.values(QString::fromLatin1(name));
}

} // namespace sim
