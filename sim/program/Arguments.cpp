#include "sim/program/Arguments.h"

#include "sim/device/Error.h"
#include "sim/device/Names.h"
#include "sim/program/OptionParser.h"

namespace sim
{

namespace
{

constexpr int longest_ms = 600000;

unsigned short version_of(const QString& text)
{
    bool converted = false;
    const unsigned short version = text.toUShort(&converted, 16);
    if (!converted) {
        throw Error(
            QStringLiteral("--device: '%1' is not a bootloader version such as 0102 or 0x0102")
                .arg(text));
    }
    return version;
}

Entry entry_of(const QString& text)
{
    const std::optional<Entry> entry = find_in(entries, text);
    if (!entry) {
        throw Error(QStringLiteral("--entry must be %1, not '%2'").arg(choice_of(entries), text));
    }
    return *entry;
}

Echo echo_of(const QString& text)
{
    const std::optional<Echo> echo = find_in(echoes, text);
    if (!echo) {
        throw Error(QStringLiteral("--echo must be %1, not '%2'").arg(choice_of(echoes), text));
    }
    return *echo;
}

int ms_of(const OptionParser& parser, const char* name)
{
    const QString text = parser.value(name, QStringLiteral("0"));
    bool converted = false;
    const int ms = text.toInt(&converted);
    if (!converted || ms < 0 || ms > longest_ms) {
        throw Error(QStringLiteral("--%1: '%2' is not a number of milliseconds from 0 to %3")
                        .arg(QString::fromLatin1(name), text, QString::number(longest_ms)));
    }
    return ms;
}

std::uint64_t seed_of(const QString& text)
{
    bool converted = false;
    const qulonglong seed = text.toULongLong(&converted);
    if (!converted) {
        throw Error(
            QStringLiteral("--seed: '%1' is not a whole number from 0 to 18446744073709551615")
                .arg(text));
    }
    return seed;
}

Arguments::Action action_of(const OptionParser& parser)
{
    if (parser.has("help")) {
        return Arguments::Action::ShowHelp;
    }
    if (parser.has("version")) {
        return Arguments::Action::ShowVersion;
    }
    return parser.has("list") ? Arguments::Action::ListDevices : Arguments::Action::Serve;
}

Options device_options(const OptionParser& parser)
{
    Options options;
    options.entry = entry_of(parser.value("entry", QStringLiteral("probe")));
    if (parser.has("echo")) {
        options.echo = echo_of(parser.value("echo"));
    }
    options.paced = parser.has("pace");
    options.latency_ms = ms_of(parser, "latency-ms");
    options.erase_page_ms = ms_of(parser, "erase-ms");
    options.write_row_ms = ms_of(parser, "write-ms");
    options.keeps_record = false;
    return options;
}

void add_fault_option(FaultSettings& settings, const QString& fault)
{
    try {
        add_fault(settings, fault);
    } catch (const Error& error) {
        throw Error(QStringLiteral("--fault %1: %2").arg(fault, error.text()));
    }
}

RigOptions rig_options(const OptionParser& parser)
{
    RigOptions options;
    options.device = device_options(parser);
    for (const QString& fault : parser.values("fault")) {
        add_fault_option(options.faults, fault);
    }
    options.faults.seed = seed_of(parser.value("seed", QStringLiteral("1")));
    return options;
}

QStringList command_of(const OptionParser& parser)
{
    QStringList rest = parser.rest();
    if (parser.has("exec") && rest.isEmpty()) {
        throw Error(QStringLiteral("--exec needs a command: --exec -- COMMAND {} ..."));
    }
    if (!parser.has("exec") && !rest.isEmpty()) {
        throw Error(
            QStringLiteral("'%1' is not an option; to run a command, write --exec -- COMMAND")
                .arg(rest.first()));
    }
    return rest;
}

} // namespace

Arguments parse_arguments(const QStringList& command_line)
{
    const OptionParser parser(command_line);
    Arguments arguments;
    arguments.action = action_of(parser);
    arguments.help_text = parser.help_text();
    arguments.table = parser.value("table", QStringLiteral("./device.txt"));
    if (parser.has("device")) {
        arguments.version = version_of(parser.value("device"));
    }
    arguments.rig = rig_options(parser);
    arguments.memory_image = parser.value("memory");
    arguments.save_image = parser.value("save");
    arguments.check_image = parser.value("check");
    arguments.ignore_outside = parser.has("ignore-outside");
    arguments.state = parser.value("state");
    arguments.link = parser.value("link");
    arguments.replay = parser.value("replay");
    arguments.trace = parser.value("trace");
    arguments.summary = parser.value("summary");
    arguments.command = command_of(parser);
    arguments.json = parser.has("json");
    return arguments;
}

} // namespace sim
