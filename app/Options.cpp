#include "app/Options.h"

#include <array>

namespace command_line
{

namespace
{

/// 0x for hexadecimal, a leading 0 for octal, otherwise decimal.
bool parse_number(const QString& text, unsigned int& value)
{
    bool ok = false;
    value = text.toUInt(&ok, 0);
    return ok;
}

QString unparsable_address(QLatin1String end, QLatin1String operation)
{
    return QStringLiteral("Could not parse %1 %2 word address, please use 0x12 hex or 1231 "
                          "decimal, aborting...\n")
        .arg(end, operation);
}

/// Takes the two addresses of a ranged operation; `lower_suffix` follows the message about the
/// lower.
std::optional<Failure> parse_range(const Scan& scan, QLatin1String operation, TypedRange& range,
                                   const QString& lower_suffix = {})
{
    if (!parse_number(scan.following.at(0), range.lower)) {
        return Failure{unparsable_address(QLatin1String("lower"), operation) + lower_suffix};
    }
    if (!parse_number(scan.following.at(1), range.upper)) {
        return Failure{unparsable_address(QLatin1String("upper"), operation)};
    }
    return std::nullopt;
}

std::optional<Failure> on_half_duplex(Scan& scan)
{
    scan.settings.half_duplex = true;
    return std::nullopt;
}

std::optional<Failure> on_entry_procedure(Scan& scan)
{
    scan.settings.entry_procedure_wanted = true;
    return std::nullopt;
}

std::optional<Failure> on_version_request(Scan& scan)
{
    scan.settings.version_request_wanted = true;
    scan.settings.entry_procedure_wanted = false;
    return std::nullopt;
}

std::optional<Failure> on_baud(Scan& scan)
{
    if (!scan.has(1)) {
        return Failure{
            QStringLiteral("Decimal baudrate must follow -M max baud option, aborting...\n")};
    }
    if (!parse_number(scan.following.at(0), scan.settings.baud)) {
        return Failure{
            QStringLiteral("Please specify -M suggested baud rate in decimal (9600), you passed ") +
            scan.following.at(0)};
    }
    return std::nullopt;
}

std::optional<Failure> on_bootloader_version(Scan& scan)
{
    if (!scan.has(1)) {
        return Failure{
            QStringLiteral("Version number must follow -B version option, aborting...\n")};
    }
    if (scan.settings.bootloader_version != 0) {
        return Failure{QStringLiteral("Please specify -B version only once.\n")};
    }
    bool ok = false;
    scan.settings.bootloader_version = scan.following.at(0).toUInt(&ok, 16);
    if (!ok) {
        return Failure{QStringLiteral("Please specify -B version in hex (0x16) or decimal (22)")};
    }
    return std::nullopt;
}

/// What an operation on a file, or on a range and a file, has of its own.
struct FileOperation {
    bool Settings::*wanted;
    QString Settings::*file;
    const char* repeated;
    const char* missing;
    const char* verb;
};

std::optional<Failure> take_file(Scan& scan, const FileOperation& operation, int position)
{
    const QString& name = scan.following.at(position);
    scan.settings.*operation.wanted = true;
    scan.settings.*operation.file = name;
    if (scan.can_open(name)) {
        return std::nullopt;
    }
    return Failure{QStringLiteral("Could not open file %1 for %2 op, aborting...\n")
                       .arg(name, QLatin1String(operation.verb))};
}

std::optional<Failure> check_arguments(const Scan& scan, const FileOperation& operation, int count)
{
    if (scan.settings.*operation.wanted) {
        return Failure{QLatin1String(operation.repeated)};
    }
    if (!scan.has(count)) {
        return Failure{QLatin1String(operation.missing)};
    }
    return std::nullopt;
}

std::optional<Failure> take_whole(Scan& scan, const FileOperation& operation)
{
    const std::optional<Failure> failure = check_arguments(scan, operation, 1);
    return failure ? failure : take_file(scan, operation, 0);
}

std::optional<Failure> take_range_operation(Scan& scan, const FileOperation& operation,
                                            TypedRange& range, const QString& lower_suffix = {})
{
    if (auto failure = check_arguments(scan, operation, 3)) {
        return failure;
    }
    if (auto failure = parse_range(scan, QLatin1String(operation.verb), range, lower_suffix)) {
        return failure;
    }
    return take_file(scan, operation, 2);
}

std::optional<Failure> on_write(Scan& scan)
{
    return take_whole(scan,
                      {&Settings::write_wanted, &Settings::write_file,
                       "You specified the write operation more than once, aborting...\n",
                       "Filename string must follow -w write option, aborting...\n", "write"});
}

std::optional<Failure> on_write_range(Scan& scan)
{
    return take_range_operation(
        scan,
        {&Settings::write_range_wanted, &Settings::write_file,
         "You specified a write operation more than once, aborting...\n",
         "lower and upper address plus filename must follow -W limited write "
         "option, aborting...\n",
         "write"},
        scan.settings.write_range);
}

std::optional<Failure> on_read(Scan& scan)
{
    return take_whole(scan, {&Settings::read_wanted, &Settings::read_file,
                             "You specified the read operation more than once, aborting...\n",
                             "Filename string must follow -r write option, aborting...\n", "read"});
}

/// The value of the failed conversion, always 0, is shown after the message about the lower
/// address.
std::optional<Failure> on_read_range(Scan& scan)
{
    return take_range_operation(
        scan,
        {&Settings::read_range_wanted, &Settings::read_file,
         "You specified a read operation more than once, aborting...\n",
         "lower and upper address plus filename must follow -l limited read "
         "option, aborting...\n",
         "read"},
        scan.settings.read_range, QStringLiteral("0"));
}

std::optional<Failure> on_erase_range(Scan& scan)
{
    Settings& settings = scan.settings;
    if (settings.erase_range_wanted) {
        return Failure{QStringLiteral(
            "You specified a limited erase operation more than once, aborting...\n")};
    }
    if (!scan.has(2)) {
        return Failure{QStringLiteral(
            "lower and upper address must follow -E limited erase option, aborting...\n")};
    }
    settings.erase_range_wanted = true;
    return parse_range(scan, QLatin1String("erase"), settings.erase_range);
}

std::optional<Failure> on_verify(Scan& scan)
{
    return take_whole(scan,
                      {&Settings::verify_wanted, &Settings::verify_file,
                       "You specified the verify operation more than once, aborting...\n",
                       "Filename string must follow -v write option, aborting...\n", "verify"});
}

/// Looks at "-w" and "-v" but not at itself: repeated, the last file counts.
std::optional<Failure> on_write_and_verify(Scan& scan)
{
    if (scan.settings.write_wanted) {
        return Failure{QStringLiteral("You specified more than one write operation.\n")};
    }
    if (scan.settings.verify_wanted) {
        return Failure{QStringLiteral("You specified more than one verify operation.\n")};
    }
    if (!scan.has(1)) {
        return Failure{QStringLiteral(
            "Filename string must follow -wv write with verify option, aborting...\n")};
    }
    return take_file(scan,
                     {&Settings::write_and_verify_wanted, &Settings::write_and_verify_file, nullptr,
                      nullptr, "verify"},
                     0);
}

/// A flag that may be given once: its value when given, and how a repetition is reported.
std::optional<Failure> take_flag_once(bool& flag, bool given, QLatin1String name)
{
    if (flag == given) {
        return Failure{QStringLiteral("You specified '%1' more than once.\n").arg(name)};
    }
    flag = given;
    return std::nullopt;
}

std::optional<Failure> on_erase_all(Scan& scan)
{
    return take_flag_once(scan.settings.erase_all_wanted, true, QLatin1String("-e"));
}

std::optional<Failure> on_exclude_encrypted(Scan& scan)
{
    return take_flag_once(scan.settings.include_encrypted, false, QLatin1String("-xe"));
}

std::optional<Failure> on_exclude_unencrypted(Scan& scan)
{
    return take_flag_once(scan.settings.include_unencrypted, false, QLatin1String("-xu"));
}

std::optional<Failure> on_reset(Scan& scan)
{
    scan.settings.reset_wanted = true;
    return std::nullopt;
}

std::optional<Failure> on_port(Scan& scan)
{
    if (!scan.has(1)) {
        return Failure{QStringLiteral("Port must follow -s.\n")};
    }
    if (!scan.settings.port_name.isEmpty()) {
        return Failure{QStringLiteral("You specified more than one port.\n")};
    }
    scan.settings.port_name = scan.following.at(0);
    return std::nullopt;
}

std::optional<Failure> on_log(Scan& scan)
{
    if (!scan.settings.log_file.isEmpty()) {
        return Failure{QStringLiteral("Please specify only one serial debug file.\n")};
    }
    // Without a name the option is ignored.
    scan.settings.log_file = scan.following.value(0);
    return std::nullopt;
}

const std::array<Option, 18> OPTIONS{{
    {QLatin1String("-h"), 0, on_half_duplex},
    {QLatin1String("-b"), 0, on_entry_procedure},
    {QLatin1String("-V"), 0, on_version_request},
    {QLatin1String("-M"), 1, on_baud},
    {QLatin1String("-B"), 1, on_bootloader_version},
    {QLatin1String("-w"), 1, on_write},
    {QLatin1String("-W"), 3, on_write_range},
    {QLatin1String("-r"), 1, on_read},
    {QLatin1String("-l"), 3, on_read_range},
    {QLatin1String("-E"), 2, on_erase_range},
    {QLatin1String("-v"), 1, on_verify},
    {QLatin1String("-wv"), 1, on_write_and_verify},
    {QLatin1String("-R"), 0, on_reset},
    {QLatin1String("-e"), 0, on_erase_all},
    {QLatin1String("-xe"), 0, on_exclude_encrypted},
    {QLatin1String("-xu"), 0, on_exclude_unencrypted},
    {QLatin1String("-s"), 1, on_port},
    {QLatin1String("-x"), 1, on_log},
}};

} // namespace

const Option* find_option(const QString& argument)
{
    for (const Option& option : OPTIONS) {
        if (argument == option.name) {
            return &option;
        }
    }
    return nullptr;
}

std::vector<GivenWord> split(const QStringList& arguments)
{
    std::vector<GivenWord> words;
    for (int i = 0; i < arguments.size(); ++i) {
        const Option* const option = find_option(arguments.at(i));
        const int own = option == nullptr ? 0 : option->arguments;
        words.push_back({arguments.at(i), option, arguments.mid(i + 1, own)});
        i += own;
    }
    return words;
}

} // namespace command_line
