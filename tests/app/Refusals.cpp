#include "tests/app/Refusals.h"

#include "tests/app/Words.h"

namespace test
{

std::vector<RefusedLine> refused_lines()
{
    const QStringList empty_number{QStringLiteral("-M"), QString()};
    const QStringList empty_version{QStringLiteral("-B"), QString()};
    const QStringList two_part_file{QStringLiteral("-w"), QStringLiteral("nowhere/%2 und ü.hex")};
    const QStringList two_part_baud{QStringLiteral("-M"), QStringLiteral("%1 bd")};
    return {
        {"baud_missing", words("-M"),
         "Decimal baudrate must follow -M max baud option, aborting...\n"},
        {"baud_word", words("-M fast"),
         "Please specify -M suggested baud rate in decimal (9600), you passed fast"},
        {"baud_echoed_as_typed", two_part_baud,
         "Please specify -M suggested baud rate in decimal (9600), you passed %1 bd"},
        {"baud_empty", empty_number,
         "Please specify -M suggested baud rate in decimal (9600), you passed "},
        {"baud_negative", words("-M -1"),
         "Please specify -M suggested baud rate in decimal (9600), you passed -1"},
        {"baud_of_33_bits", words("-M 4294967296"),
         "Please specify -M suggested baud rate in decimal (9600), you passed 4294967296"},
        {"baud_with_octal_digit_too_high", words("-M 09"),
         "Please specify -M suggested baud rate in decimal (9600), you passed 09"},
        {"baud_that_is_an_option", words("-M -e"),
         "Please specify -M suggested baud rate in decimal (9600), you passed -e"},

        {"version_missing", words("-B"),
         "Version number must follow -B version option, aborting...\n"},
        {"version_missing_comes_before_repeated", words("-B 1 -B"),
         "Version number must follow -B version option, aborting...\n"},
        {"version_repeated", words("-B 1 -B 2"), "Please specify -B version only once.\n"},
        {"version_repeated_comes_before_unparsable", words("-B 1 -B zero"),
         "Please specify -B version only once.\n"},
        {"version_word", words("-B zero"),
         "Please specify -B version in hex (0x16) or decimal (22)"},
        {"version_empty", empty_version, "Please specify -B version in hex (0x16) or decimal (22)"},
        {"version_of_33_bits", words("-B 100000000"),
         "Please specify -B version in hex (0x16) or decimal (22)"},

        {"write_repeated", words("-w a.hex -w b.hex"),
         "You specified the write operation more than once, aborting...\n"},
        {"write_repeated_comes_before_missing", words("-w a.hex -w"),
         "You specified the write operation more than once, aborting...\n"},
        {"write_missing", words("-w"),
         "Filename string must follow -w write option, aborting...\n"},
        {"write_file", words("-w nowhere/fw.hex"),
         "Could not open file nowhere/fw.hex for write op, aborting...\n"},
        {"write_file_shown_as_typed", two_part_file,
         "Could not open file nowhere/%2 und ü.hex for write op, aborting...\n"},

        {"limited_write_repeated", words("-W 0 1 a.hex -W 0 1 b.hex"),
         "You specified a write operation more than once, aborting...\n"},
        {"limited_write_repeated_comes_before_missing", words("-W 0 1 a.hex -W"),
         "You specified a write operation more than once, aborting...\n"},
        {"limited_write_missing", words("-W 0 1"),
         "lower and upper address plus filename must follow -W limited write option, "
         "aborting...\n"},
        {"limited_write_missing_comes_before_unparsable", words("-W low high"),
         "lower and upper address plus filename must follow -W limited write option, "
         "aborting...\n"},
        {"limited_write_lower", words("-W low high nowhere/fw.hex"),
         "Could not parse lower write word address, please use 0x12 hex or 1231 decimal, "
         "aborting...\n"},
        {"limited_write_upper", words("-W 0 high nowhere/fw.hex"),
         "Could not parse upper write word address, please use 0x12 hex or 1231 decimal, "
         "aborting...\n"},
        {"limited_write_file", words("-W 0 1 nowhere/fw.hex"),
         "Could not open file nowhere/fw.hex for write op, aborting...\n"},

        {"read_repeated", words("-r a.hex -r b.hex"),
         "You specified the read operation more than once, aborting...\n"},
        {"read_repeated_comes_before_missing", words("-r a.hex -r"),
         "You specified the read operation more than once, aborting...\n"},
        {"read_missing", words("-r"), "Filename string must follow -r write option, aborting...\n"},
        {"read_file", words("-r nowhere/out.hex"),
         "Could not open file nowhere/out.hex for read op, aborting...\n"},

        {"limited_read_repeated", words("-l 0 1 a.hex -l 0 1 b.hex"),
         "You specified a read operation more than once, aborting...\n"},
        {"limited_read_repeated_comes_before_missing", words("-l 0 1 a.hex -l"),
         "You specified a read operation more than once, aborting...\n"},
        {"limited_read_missing", words("-l 0 1"),
         "lower and upper address plus filename must follow -l limited read option, "
         "aborting...\n"},
        {"limited_read_lower", words("-l abc 0x10 nowhere/out.hex"),
         "Could not parse lower read word address, please use 0x12 hex or 1231 decimal, "
         "aborting...\n0"},
        {"limited_read_upper", words("-l 0 abc nowhere/out.hex"),
         "Could not parse upper read word address, please use 0x12 hex or 1231 decimal, "
         "aborting...\n"},
        {"limited_read_file", words("-l 0 1 nowhere/out.hex"),
         "Could not open file nowhere/out.hex for read op, aborting...\n"},

        {"limited_erase_repeated", words("-E 0 1 -E 0 1"),
         "You specified a limited erase operation more than once, aborting...\n"},
        {"limited_erase_repeated_comes_before_missing", words("-E 0 1 -E"),
         "You specified a limited erase operation more than once, aborting...\n"},
        {"limited_erase_missing", words("-E 0"),
         "lower and upper address must follow -E limited erase option, aborting...\n"},
        {"limited_erase_lower", words("-E low high"),
         "Could not parse lower erase word address, please use 0x12 hex or 1231 decimal, "
         "aborting...\n"},
        {"limited_erase_upper", words("-E 0 high"),
         "Could not parse upper erase word address, please use 0x12 hex or 1231 decimal, "
         "aborting...\n"},
        {"limited_erase_address_of_33_bits", words("-E 0 0x100000000"),
         "Could not parse upper erase word address, please use 0x12 hex or 1231 decimal, "
         "aborting...\n"},

        {"verify_repeated", words("-v a.hex -v b.hex"),
         "You specified the verify operation more than once, aborting...\n"},
        {"verify_repeated_comes_before_missing", words("-v a.hex -v"),
         "You specified the verify operation more than once, aborting...\n"},
        {"verify_missing", words("-v"),
         "Filename string must follow -v write option, aborting...\n"},
        {"verify_file", words("-v nowhere/fw.hex"),
         "Could not open file nowhere/fw.hex for verify op, aborting...\n"},

        {"write_and_verify_after_write", words("-v a.hex -w b.hex -wv"),
         "You specified more than one write operation.\n"},
        {"write_and_verify_after_verify", words("-v a.hex -wv"),
         "You specified more than one verify operation.\n"},
        {"write_and_verify_missing", words("-wv"),
         "Filename string must follow -wv write with verify option, aborting...\n"},
        {"write_and_verify_file", words("-wv nowhere/fw.hex"),
         "Could not open file nowhere/fw.hex for verify op, aborting...\n"},

        {"erase_all_repeated", words("-e -e"), "You specified '-e' more than once.\n"},
        {"exclude_encrypted_repeated", words("-xe -xe"), "You specified '-xe' more than once.\n"},
        {"exclude_unencrypted_repeated", words("-xu -xu"), "You specified '-xu' more than once.\n"},

        {"port_missing", words("-s"), "Port must follow -s.\n"},
        {"port_missing_comes_before_repeated", words("-s a -s"), "Port must follow -s.\n"},
        {"port_repeated", words("-s a -s b"), "You specified more than one port.\n"},

        {"log_repeated", words("-x a.log -x b.log"),
         "Please specify only one serial debug file.\n"},
        {"log_repeated_comes_before_missing", words("-x a.log -x"),
         "Please specify only one serial debug file.\n"},

        {"first_refusal_wins", words("-e -M fast -e -w"),
         "Please specify -M suggested baud rate in decimal (9600), you passed fast"},
    };
}

} // namespace test
