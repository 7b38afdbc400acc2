#include "app/Options.h"

#include <array>

namespace command_line
{

namespace
{

Outcome check_file(const Scan& scan, const QString& name, QLatin1String operation)
{
    if (scan.can_open(name)) {
        return std::nullopt;
    }
    return refuse(
        QStringLiteral("Could not open file %1 for %2 op, aborting...\n").arg(name, operation));
}

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
Outcome parse_range(const Scan& scan, QLatin1String operation, AddressRange& range,
                    const QString& lower_suffix = {})
{
    if (!parse_number(scan.following.at(0), range.lower)) {
        return refuse(unparsable_address(QLatin1String("lower"), operation) + lower_suffix);
    }
    if (!parse_number(scan.following.at(1), range.upper)) {
        return refuse(unparsable_address(QLatin1String("upper"), operation));
    }
    return std::nullopt;
}

Outcome on_half_duplex(Scan& scan)
{
    scan.settings.half_duplex = true;
    return std::nullopt;
}

Outcome on_entry_procedure(Scan& scan)
{
    scan.settings.entry_procedure_wanted = true;
    return std::nullopt;
}

Outcome on_version_request(Scan& scan)
{
    scan.settings.version_request_wanted = true;
    scan.settings.entry_procedure_wanted = false;
    return std::nullopt;
}

Outcome on_baud(Scan& scan)
{
    if (!scan.has(1)) {
        return refuse(
            QStringLiteral("Decimal baudrate must follow -M max baud option, aborting...\n"));
    }
    if (!parse_number(scan.following.at(0), scan.settings.baud)) {
        return refuse(
            QStringLiteral("Please specify -M suggested baud rate in decimal (9600), you passed ") +
            scan.following.at(0));
    }
    return std::nullopt;
}

Outcome on_bootloader_version(Scan& scan)
{
    if (!scan.has(1)) {
        return refuse(
            QStringLiteral("Version number must follow -B version option, aborting...\n"));
    }
    if (scan.settings.bootloader_version != 0) {
        return refuse(QStringLiteral("Please specify -B version only once.\n"));
    }
    bool ok = false;
    scan.settings.bootloader_version = scan.following.at(0).toUInt(&ok, 16);
    if (!ok) {
        return refuse(QStringLiteral("Please specify -B version in hex (0x16) or decimal (22)"));
    }
    return std::nullopt;
}

Outcome on_write(Scan& scan)
{
    Settings& settings = scan.settings;
    if (settings.write_wanted) {
        return refuse(
            QStringLiteral("You specified the write operation more than once, aborting...\n"));
    }
    if (!scan.has(1)) {
        return refuse(QStringLiteral("Filename string must follow -w write option, aborting...\n"));
    }
    settings.write_wanted = true;
    settings.write_file = scan.following.at(0);
    return check_file(scan, settings.write_file, QLatin1String("write"));
}

Outcome on_limited_write(Scan& scan)
{
    Settings& settings = scan.settings;
    if (settings.limited_write_wanted) {
        return refuse(
            QStringLiteral("You specified a write operation more than once, aborting...\n"));
    }
    if (!scan.has(3)) {
        return refuse(QStringLiteral(
            "lower and upper address plus filename must follow -W limited write option, "
            "aborting...\n"));
    }
    if (auto refusal = parse_range(scan, QLatin1String("write"), settings.write_range)) {
        return refusal;
    }
    settings.limited_write_wanted = true;
    settings.write_file = scan.following.at(2);
    return check_file(scan, settings.write_file, QLatin1String("write"));
}

Outcome on_read(Scan& scan)
{
    Settings& settings = scan.settings;
    if (settings.read_wanted) {
        return refuse(
            QStringLiteral("You specified the read operation more than once, aborting...\n"));
    }
    if (!scan.has(1)) {
        return refuse(QStringLiteral("Filename string must follow -r write option, aborting...\n"));
    }
    settings.read_wanted = true;
    settings.read_file = scan.following.at(0);
    return check_file(scan, settings.read_file, QLatin1String("read"));
}

Outcome on_limited_read(Scan& scan)
{
    Settings& settings = scan.settings;
    if (settings.limited_read_wanted) {
        return refuse(
            QStringLiteral("You specified a read operation more than once, aborting...\n"));
    }
    if (!scan.has(3)) {
        return refuse(QStringLiteral(
            "lower and upper address plus filename must follow -l limited read option, "
            "aborting...\n"));
    }
    // The failed conversion's value, always 0, is shown behind the message.
    if (auto refusal =
            parse_range(scan, QLatin1String("read"), settings.read_range, QStringLiteral("0"))) {
        return refusal;
    }
    settings.limited_read_wanted = true;
    settings.read_file = scan.following.at(2);
    return check_file(scan, settings.read_file, QLatin1String("read"));
}

Outcome on_limited_erase(Scan& scan)
{
    Settings& settings = scan.settings;
    if (settings.limited_erase_wanted) {
        return refuse(QStringLiteral(
            "You specified a limited erase operation more than once, aborting...\n"));
    }
    if (!scan.has(2)) {
        return refuse(QStringLiteral(
            "lower and upper address must follow -E limited erase option, aborting...\n"));
    }
    settings.limited_erase_wanted = true;
    return parse_range(scan, QLatin1String("erase"), settings.erase_range);
}

Outcome on_verify(Scan& scan)
{
    Settings& settings = scan.settings;
    if (settings.verify_wanted) {
        return refuse(
            QStringLiteral("You specified the verify operation more than once, aborting...\n"));
    }
    if (!scan.has(1)) {
        return refuse(QStringLiteral("Filename string must follow -v write option, aborting...\n"));
    }
    settings.verify_wanted = true;
    settings.verify_file = scan.following.at(0);
    return check_file(scan, settings.verify_file, QLatin1String("verify"));
}

Outcome on_write_and_verify(Scan& scan)
{
    Settings& settings = scan.settings;
    if (settings.write_wanted) {
        return refuse(QStringLiteral("You specified more than one write operation.\n"));
    }
    if (settings.verify_wanted) {
        return refuse(QStringLiteral("You specified more than one verify operation.\n"));
    }
    if (!scan.has(1)) {
        return refuse(QStringLiteral(
            "Filename string must follow -wv write with verify option, aborting...\n"));
    }
    settings.write_and_verify_wanted = true;
    settings.write_and_verify_file = scan.following.at(0);
    return check_file(scan, settings.write_and_verify_file, QLatin1String("verify"));
}

Outcome on_reset(Scan& scan)
{
    scan.settings.reset_wanted = true;
    return std::nullopt;
}

Outcome on_erase_all(Scan& scan)
{
    if (scan.settings.erase_all_wanted) {
        return refuse(QStringLiteral("You specified '-e' more than once.\n"));
    }
    scan.settings.erase_all_wanted = true;
    return std::nullopt;
}

Outcome on_exclude_encrypted(Scan& scan)
{
    if (!scan.settings.include_encrypted) {
        return refuse(QStringLiteral("You specified '-xe' more than once.\n"));
    }
    scan.settings.include_encrypted = false;
    return std::nullopt;
}

Outcome on_exclude_unencrypted(Scan& scan)
{
    if (!scan.settings.include_unencrypted) {
        return refuse(QStringLiteral("You specified '-xu' more than once.\n"));
    }
    scan.settings.include_unencrypted = false;
    return std::nullopt;
}

Outcome on_port(Scan& scan)
{
    if (!scan.has(1)) {
        return refuse(QStringLiteral("Port must follow -s.\n"));
    }
    if (!scan.settings.port_name.isEmpty()) {
        return refuse(QStringLiteral("You specified more than one port.\n"));
    }
    scan.settings.port_name = scan.following.at(0);
    return std::nullopt;
}

Outcome on_log(Scan& scan)
{
    if (!scan.settings.log_file.isEmpty()) {
        return refuse(QStringLiteral("Please specify only one serial debug file.\n"));
    }
    // Without a name the option is passed over.
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
    {QLatin1String("-W"), 3, on_limited_write},
    {QLatin1String("-r"), 1, on_read},
    {QLatin1String("-l"), 3, on_limited_read},
    {QLatin1String("-E"), 2, on_limited_erase},
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

Outcome refuse(const QString& message)
{
    return Refusal{message, false};
}

} // namespace command_line
