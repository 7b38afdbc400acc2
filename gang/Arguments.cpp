#include "gang/Arguments.h"

#include "gang/ArgumentError.h"
#include "gang/OptionParser.h"
#include "gang/PortNames.h"

#include <QSysInfo>

#include <limits>

namespace gang
{

namespace
{

constexpr int most_jobs = 1000;
constexpr int most_tries = 1000;
constexpr double longest_s = 1000000;
constexpr double ms_per_s = 1000;

const char* const description =
    "Runs one zserial for every port, side by side, and judges each of them.\n\n"
    "What follows the first -- goes to every zserial, after the port. In it, {port}, {name} and "
    "{n}\n"
    "stand for the port, its name without folders, and its number in the list, from 1.\n\n"
    "zserial-gang report FILE... sums up records; see zserial-gang report --help.\n\n"
    "Ctrl-C starts nothing new and lets running uploads finish; a second Ctrl-C ends them.\n\n"
    "Exit status: 0 all ok, 1 some not, 2 not started, 3 interrupted.";

const std::vector<OptionText>& option_texts()
{
    static const std::vector<OptionText> texts = {
        {"help", "", "Show this help and exit."},
        {"version", "", "Show the version and exit."},
        {"watch", "pattern",
         "Program each port that appears and matches <pattern>, such as '/dev/ttyUSB*'; its next "
         "device when it has gone and come back."},
        {"jobs", "number", "Run at most <number> uploads at once; all of them if not given."},
        {"tries", "number", "Try each port up to <number> times (1)."},
        {"pause", "seconds", "Wait <seconds> between two tries (1)."},
        {"limit", "seconds", "End an upload that takes longer than <seconds>."},
        {"expect", "version",
         "Program no device but those with the bootloader version <version>, in hexadecimal."},
        {"certify", "",
         "After the upload, verify the whole image and the version in a run of its own."},
        {"table", "file", "Take the devices from <file> instead of ./device.txt."},
        {"force", "", "Start although table, image or arguments have problems."},
        {"json", "", "Print every event as a line of JSON."},
        {"record", "file", "Append a line of JSON for each run to <file>."},
        {"station", "name", "The station's name in the record; the host's name if not given."},
        {"keep", "folder", "Keep console and frame log of each run in <folder>."},
        {"keep-failures", "", "Of --keep: only those of runs that are not ok."},
        {"serial-at", "address",
         "Put a serial number into each device's image, at the byte address <address>."},
        {"serial-size", "bytes", "The number's size in the image."},
        {"serial-format", "format",
         "\"little\" (least significant byte first, the default), \"big\", or \"text\" (decimal "
         "digits with leading zeros)."},
        {"serial-file", "file", "The counter: the file holds the next number, such as 1000."},
        {"zserial", "program", "Run <program>; the zserial beside this program if not given."},
    };
    return texts;
}

int milliseconds(const OptionParser& parser, const char* name, double preset_s, double lowest_s)
{
    return static_cast<int>(parser.number(name, preset_s, lowest_s, longest_s) * ms_per_s);
}

unsigned short parse_version(const QString& text)
{
    bool converted = false;
    const ushort version = text.toUShort(&converted, 16);
    if (!converted) {
        throw ArgumentError(
            QStringLiteral(
                "--expect: '%1' is not a bootloader version of up to four hexadecimal digits")
                .arg(text));
    }
    return version;
}

unsigned int parse_address(const QString& text)
{
    bool converted = false;
    const uint address = text.toUInt(&converted, 0);
    if (!converted) {
        throw ArgumentError(
            QStringLiteral("--serial-at: '%1' is not an address such as 0x1F00").arg(text));
    }
    return address;
}

NumberSlot::Format parse_format(const QString& text)
{
    if (text == QLatin1String("little")) {
        return NumberSlot::Format::LittleEndian;
    }
    if (text == QLatin1String("big")) {
        return NumberSlot::Format::BigEndian;
    }
    if (text == QLatin1String("text")) {
        return NumberSlot::Format::DecimalText;
    }
    throw ArgumentError(
        QStringLiteral("--serial-format must be little, big or text, not '%1'").arg(text));
}

/// Returns nothing if no --serial option is given. Throws ArgumentError unless --serial-at,
/// --serial-size and --serial-file are given together.
std::optional<NumberSlot> parse_slot(const OptionParser& parser)
{
    const bool wanted =
        parser.has("serial-at") || parser.has("serial-size") || parser.has("serial-file");
    if (!wanted && !parser.has("serial-format")) {
        return std::nullopt;
    }
    if (!parser.has("serial-at") || !parser.has("serial-size") || !parser.has("serial-file")) {
        throw ArgumentError(QStringLiteral(
            "serial numbers need --serial-at, --serial-size and --serial-file together"));
    }
    NumberSlot slot;
    slot.address = parse_address(parser.value("serial-at"));
    slot.format = parse_format(parser.value("serial-format", QStringLiteral("little")));
    slot.size = parser.whole_number("serial-size", 0, 1, largest_size(slot.format));
    if (slot.address > std::numeric_limits<unsigned int>::max() - unsigned(slot.size - 1)) {
        throw ArgumentError(
            QStringLiteral("the serial number would reach beyond address 0xFFFFFFFF"));
    }
    return slot;
}

void take_options(const OptionParser& parser, Arguments& arguments)
{
    arguments.ports = parser.words();
    if (parser.has("watch")) {
        arguments.watch = file_of_port(parser.value("watch"));
    }
    arguments.jobs = parser.whole_number("jobs", 0, 1, most_jobs);
    arguments.tries = parser.whole_number("tries", 1, 1, most_tries);
    arguments.pause_ms = milliseconds(parser, "pause", 1, 0);
    arguments.limit_ms = milliseconds(parser, "limit", 0, 0.001);
    arguments.certify = parser.has("certify");
    arguments.table = parser.value("table", QStringLiteral("device.txt"));
    arguments.force = parser.has("force");
    arguments.json = parser.has("json");
    arguments.record = parser.value("record");
    arguments.station = parser.value("station", QSysInfo::machineHostName());
    arguments.keep = parser.value("keep");
    arguments.keep_failures_only = parser.has("keep-failures");
    arguments.number_slot = parse_slot(parser);
    arguments.number_file = parser.value("serial-file");
    arguments.tool = parser.value("zserial");
    if (parser.has("expect")) {
        arguments.expected_version = parse_version(parser.value("expect"));
    }
}

void check(const Arguments& arguments)
{
    if (arguments.ports.isEmpty() == arguments.watch.isEmpty()) {
        throw ArgumentError(
            QStringLiteral("name either ports or, with --watch, a pattern for them"));
    }
    if (arguments.tool_arguments.isEmpty()) {
        throw ArgumentError(
            QStringLiteral("the arguments of zserial are missing; write them after --"));
    }
    if (arguments.keep_failures_only && arguments.keep.isEmpty()) {
        throw ArgumentError(QStringLiteral("--keep-failures needs --keep"));
    }
}

} // namespace

Arguments parse_arguments(const QStringList& command_line)
{
    const int separator = command_line.indexOf(QStringLiteral("--"));
    OptionParser parser(description, option_texts(), "port", "port... -- zserial-arguments...");
    parser.parse(command_line.mid(0, separator));
    Arguments arguments;
    if (parser.has("help")) {
        arguments.action = Arguments::Action::ShowHelp;
        arguments.help_text = parser.help_text();
        return arguments;
    }
    if (parser.has("version")) {
        arguments.action = Arguments::Action::ShowVersion;
        return arguments;
    }
    take_options(parser, arguments);
    if (separator >= 0) {
        arguments.tool_arguments = command_line.mid(separator + 1);
    }
    check(arguments);
    return arguments;
}

} // namespace gang
