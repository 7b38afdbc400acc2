#include "sim/Arguments.h"

#include <QCommandLineParser>

#include <map>

namespace sim
{

namespace
{

const char* const description =
    "Simulates a device with a serial bootloader on a pseudo-terminal.\n\n"
    "The path of the port is the first line printed. The device serves until it is stopped by\n"
    "SIGINT or SIGTERM; then a summary is printed. Exit status: 0 when all is well, 1 when the\n"
    "device's memory differs from the image of --check, 2 when it can't do what is asked.";

QCommandLineOption option(const char* name, const char* text, const char* value = "",
                          const QString& preset = QString())
{
    return QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(text),
                              QString::fromLatin1(value), preset);
}

void add_options(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QString::fromLatin1(description));
    parser.addOption(option("help", "Show this help and exit."));
    parser.addOption(option("version", "Show the version and exit."));
    parser.addOption(option("table", "Read the devices from <file> (./device.txt).", "file",
                            QStringLiteral("./device.txt")));
    parser.addOption(option("device",
                            "Simulate the device with the bootloader version <version>, in "
                            "hexadecimal; needed when the table has more than one.",
                            "version"));
    parser.addOption(option("list", "List the table's devices and exit."));
    parser.addOption(option("entry",
                            "What the device does after power-on: it waits for a \"probe\" (the "
                            "default), it runs already and answers the \"version\" command, or it "
                            "is \"silent\" for good.",
                            "behaviour", QStringLiteral("probe")));
    parser.addOption(option("echo", "The line is half-duplex: the host hears what it sends."));
    parser.addOption(option("memory", "Fill the memory from <image> at the start.", "image"));
    parser.addOption(option("save", "Write what is not erased to <image> at the end.", "image"));
    parser.addOption(option("check", "Compare the memory with <image> at the end.", "image"));
}

unsigned short version_of(const QString& text)
{
    bool converted = false;
    const unsigned short version = text.toUShort(&converted, 16);
    if (!converted) {
        throw UsageError(
            QStringLiteral("'%1' is no bootloader version such as 0102 or 0x0102").arg(text));
    }
    return version;
}

Entry entry_of(const QString& text)
{
    static const std::map<QString, Entry> entries = {
        {QStringLiteral("probe"), Entry::Probe},
        {QStringLiteral("version"), Entry::Version},
        {QStringLiteral("silent"), Entry::Silent},
    };
    const auto found = entries.find(text);
    if (found == entries.end()) {
        throw UsageError(
            QStringLiteral("'%1' is no --entry behaviour: probe, version or silent").arg(text));
    }
    return found->second;
}

QString image_of(const QCommandLineParser& parser, const char* name)
{
    const QString option_name = QString::fromLatin1(name);
    QString path = parser.value(option_name);
    if (parser.isSet(option_name) && path.isEmpty()) {
        throw UsageError(QStringLiteral("--%1 needs the name of an image").arg(option_name));
    }
    return path;
}

Arguments::Action action_of(const QCommandLineParser& parser)
{
    if (parser.isSet(QStringLiteral("help"))) {
        return Arguments::Action::ShowHelp;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        return Arguments::Action::ShowVersion;
    }
    return parser.isSet(QStringLiteral("list")) ? Arguments::Action::ListDevices
                                                : Arguments::Action::Serve;
}

} // namespace

Arguments parse_arguments(const QStringList& command_line)
{
    QCommandLineParser parser;
    add_options(parser);
    if (!parser.parse(command_line)) {
        throw UsageError(parser.errorText());
    }
    if (!parser.positionalArguments().isEmpty()) {
        throw UsageError(
            QStringLiteral("'%1' is no option").arg(parser.positionalArguments().first()));
    }
    Arguments arguments;
    arguments.action = action_of(parser);
    arguments.help_text = parser.helpText();
    arguments.table = parser.value(QStringLiteral("table"));
    if (parser.isSet(QStringLiteral("device"))) {
        arguments.version = version_of(parser.value(QStringLiteral("device")));
    }
    arguments.options.entry = entry_of(parser.value(QStringLiteral("entry")));
    arguments.options.echo =
        parser.isSet(QStringLiteral("echo")) ? Options::Echo::Apart : Options::Echo::None;
    arguments.memory_image = image_of(parser, "memory");
    arguments.save_image = image_of(parser, "save");
    arguments.check_image = image_of(parser, "check");
    return arguments;
}

} // namespace sim
