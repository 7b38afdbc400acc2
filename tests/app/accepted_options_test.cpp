#include "app/CommandLine.h"
#include "tests/app/CanOpen.h"
#include "tests/app/SettingsText.h"
#include "tests/app/Words.h"
#include "tests/support/RowName.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <ostream>

using namespace test;

namespace
{

/// The names that the present scan has checked, in order.
QStringList& checked_files()
{
    static QStringList names;
    return names;
}

bool note_name(const QString& name)
{
    checked_files() << name;
    return true;
}

struct AcceptedLine {
    const char* name;
    const char* line;
    void (*change)(Settings& defaults); ///< makes the expected settings
};

std::ostream& operator<<(std::ostream& stream, const AcceptedLine& line)
{
    return stream << line.line;
}

void change_nothing(Settings&) {}

const AcceptedLine accepted_lines[] = {
    {"nothing", "", change_nothing},
    {"unknown_arguments", "-q stray --help 0x10", change_nothing},
    {"names_compare_whole_and_by_case", "-hh -H -WV -ee h e -XE", change_nothing},

    {"half_duplex", "-h",
     [](Settings& s) {
         s.half_duplex = true;
     }},
    {"half_duplex_twice", "-h -h",
     [](Settings& s) {
         s.half_duplex = true;
     }},
    {"entry_procedure", "-b", change_nothing},
    {"version_request", "-V",
     [](Settings& s) {
         s.version_request_wanted = true;
         s.entry_procedure_wanted = false;
     }},
    {"version_request_twice", "-V -V",
     [](Settings& s) {
         s.version_request_wanted = true;
         s.entry_procedure_wanted = false;
     }},
    {"entry_procedure_then_version_request", "-b -V",
     [](Settings& s) {
         s.version_request_wanted = true;
         s.entry_procedure_wanted = false;
     }},
    {"version_request_then_entry_procedure", "-V -b",
     [](Settings& s) {
         s.version_request_wanted = true;
     }},

    {"baud_decimal", "-M 115200",
     [](Settings& s) {
         s.baud = 115200;
     }},
    {"baud_hexadecimal_overrides_an_earlier_one", "-M 115200 -M 0x2580",
     [](Settings& s) {
         s.baud = 9600;
     }},
    {"baud_hexadecimal_in_upper_case", "-M 0X4B00",
     [](Settings& s) {
         s.baud = 19200;
     }},
    {"baud_octal", "-M 045400",
     [](Settings& s) {
         s.baud = 19200;
     }},
    {"baud_zero", "-M 0",
     [](Settings& s) {
         s.baud = 0;
     }},
    {"baud_of_32_bits", "-M 4294967295",
     [](Settings& s) {
         s.baud = 0xFFFFFFFF;
     }},

    {"version_without_prefix_is_hexadecimal", "-B 22",
     [](Settings& s) {
         s.bootloader_version = 0x22;
     }},
    {"version_with_prefix", "-B 0x16",
     [](Settings& s) {
         s.bootloader_version = 0x16;
     }},
    {"version_with_prefix_in_upper_case", "-B 0XbEEf",
     [](Settings& s) {
         s.bootloader_version = 0xBEEF;
     }},
    {"version_with_leading_zero", "-B 010",
     [](Settings& s) {
         s.bootloader_version = 0x10;
     }},
    {"version_of_32_bits", "-B FFFFFFFF",
     [](Settings& s) {
         s.bootloader_version = 0xFFFFFFFF;
     }},
    {"version_zero_counts_as_not_given", "-B 0 -B 2",
     [](Settings& s) {
         s.bootloader_version = 2;
     }},

    {"write", "-w fw.hex",
     [](Settings& s) {
         s.write_wanted = true;
         s.write_file = QStringLiteral("fw.hex");
     }},
    {"limited_write", "-W 0x80 128 fw.hex",
     [](Settings& s) {
         s.write_range_wanted = true;
         s.write_range = {128, 128};
         s.write_file = QStringLiteral("fw.hex");
     }},
    {"limited_write_with_the_ends_reversed", "-W 2 1 fw.hex",
     [](Settings& s) {
         s.write_range_wanted = true;
         s.write_range = {2, 1};
         s.write_file = QStringLiteral("fw.hex");
     }},
    {"read", "-r out.hex",
     [](Settings& s) {
         s.read_wanted = true;
         s.read_file = QStringLiteral("out.hex");
     }},
    {"limited_read", "-l 0 0xFFFFFFFF out.hex",
     [](Settings& s) {
         s.read_range_wanted = true;
         s.read_range = {0, 0xFFFFFFFF};
         s.read_file = QStringLiteral("out.hex");
     }},
    {"limited_erase_with_octal_lower_address", "-E 010 0x20",
     [](Settings& s) {
         s.erase_range_wanted = true;
         s.erase_range = {8, 0x20};
     }},
    {"verify", "-v fw.hex",
     [](Settings& s) {
         s.verify_wanted = true;
         s.verify_file = QStringLiteral("fw.hex");
     }},
    {"write_and_verify", "-wv fw.hex",
     [](Settings& s) {
         s.write_and_verify_wanted = true;
         s.write_and_verify_file = QStringLiteral("fw.hex");
     }},
    {"write_and_verify_twice", "-wv a.hex -wv b.hex",
     [](Settings& s) {
         s.write_and_verify_wanted = true;
         s.write_and_verify_file = QStringLiteral("b.hex");
     }},
    {"reset", "-R",
     [](Settings& s) {
         s.reset_wanted = true;
     }},
    {"reset_twice", "-R -R",
     [](Settings& s) {
         s.reset_wanted = true;
     }},
    {"erase_all", "-e",
     [](Settings& s) {
         s.erase_all_wanted = true;
     }},
    {"exclude_encrypted", "-xe",
     [](Settings& s) {
         s.include_encrypted = false;
     }},
    {"exclude_unencrypted", "-xu",
     [](Settings& s) {
         s.include_unencrypted = false;
     }},
    {"port", "-s /dev/ttyUSB0",
     [](Settings& s) {
         s.port_name = QStringLiteral("/dev/ttyUSB0");
     }},
    {"log", "-x frames.log",
     [](Settings& s) {
         s.log_file = QStringLiteral("frames.log");
     }},
    {"log_without_a_name_at_the_end", "-e -x",
     [](Settings& s) {
         s.erase_all_wanted = true;
     }},

    {"option_taken_as_file", "-w -e",
     [](Settings& s) {
         s.write_wanted = true;
         s.write_file = QStringLiteral("-e");
     }},
    {"option_taken_as_limited_write_file", "-W 1 2 -W",
     [](Settings& s) {
         s.write_range_wanted = true;
         s.write_range = {1, 2};
         s.write_file = QStringLiteral("-W");
     }},
    {"option_taken_as_port", "-s -x -e",
     [](Settings& s) {
         s.port_name = QStringLiteral("-x");
         s.erase_all_wanted = true;
     }},
    {"option_taken_as_log", "-x -e",
     [](Settings& s) {
         s.log_file = QStringLiteral("-e");
     }},

    {"write_and_limited_write_share_a_file", "-w a.hex -W 0 1 b.hex",
     [](Settings& s) {
         s.write_wanted = s.write_range_wanted = true;
         s.write_range = {0, 1};
         s.write_file = QStringLiteral("b.hex");
     }},
    {"read_and_limited_read_share_a_file", "-l 0 1 a.hex -r b.hex",
     [](Settings& s) {
         s.read_wanted = s.read_range_wanted = true;
         s.read_range = {0, 1};
         s.read_file = QStringLiteral("b.hex");
     }},
    {"write_after_write_and_verify_leaves_its_file_alone", "-wv a.hex -w b.hex",
     [](Settings& s) {
         s.write_and_verify_wanted = s.write_wanted = true;
         s.write_and_verify_file = QStringLiteral("a.hex");
         s.write_file = QStringLiteral("b.hex");
     }},
    {"verify_after_write_and_verify_leaves_its_file_alone", "-wv a.hex -v b.hex",
     [](Settings& s) {
         s.write_and_verify_wanted = s.verify_wanted = true;
         s.write_and_verify_file = QStringLiteral("a.hex");
         s.verify_file = QStringLiteral("b.hex");
     }},
    {"limited_write_before_write_and_verify", "-W 0 1 a.hex -wv b.hex",
     [](Settings& s) {
         s.write_range_wanted = s.write_and_verify_wanted = true;
         s.write_range = {0, 1};
         s.write_file = QStringLiteral("a.hex");
         s.write_and_verify_file = QStringLiteral("b.hex");
     }},
    {"same_file_for_write_and_verify_stays_two_operations", "-w fw.hex -v fw.hex",
     [](Settings& s) {
         s.write_wanted = s.verify_wanted = true;
         s.write_file = s.verify_file = QStringLiteral("fw.hex");
     }},
    {"many", "stray -h -B 0102 -e -xe -w fw.hex -R -s COM1 -x frames.log",
     [](Settings& s) {
         s.half_duplex = s.erase_all_wanted = s.write_wanted = s.reset_wanted = true;
         s.include_encrypted = false;
         s.bootloader_version = 0x102;
         s.write_file = QStringLiteral("fw.hex");
         s.port_name = QStringLiteral("COM1");
         s.log_file = QStringLiteral("frames.log");
     }},
};

class AcceptedOptions : public testing::TestWithParam<AcceptedLine>
{
};

/// The settings from a command line with empty arguments; a refusal fails the test.
Settings scanned(const QStringList& arguments)
{
    Settings settings;
    const std::optional<Failure> outcome =
        command_line::scan(arguments, can_open_anything, settings);
    EXPECT_FALSE(outcome.has_value()) << outcome->message.toStdString();
    return settings;
}

QString s()
{
    return QStringLiteral("-s");
}

QString x()
{
    return QStringLiteral("-x");
}

} // namespace

TEST_P(AcceptedOptions, GiveTheseSettings)
{
    Settings expected;
    GetParam().change(expected);
    EXPECT_EQ(text_of(scanned(words(GetParam().line))), text_of(expected));
}

INSTANTIATE_TEST_SUITE_P(Scan, AcceptedOptions, testing::ValuesIn(accepted_lines), row_name);

TEST(Scan, TakesAnEmptyPortAsNotGiven)
{
    Settings expected;
    EXPECT_EQ(text_of(scanned({s(), QString()})), text_of(expected));
    expected.port_name = QStringLiteral("COM1");
    EXPECT_EQ(text_of(scanned({s(), QString(), s(), QStringLiteral("COM1")})), text_of(expected));
}

TEST(Scan, TakesAnEmptyLogNameAsNotGiven)
{
    Settings expected;
    EXPECT_EQ(text_of(scanned({x(), QString()})), text_of(expected));
    expected.log_file = QStringLiteral("frames.log");
    EXPECT_EQ(text_of(scanned({x(), QString(), x(), QStringLiteral("frames.log")})),
              text_of(expected));
}

TEST(Scan, ChecksEveryNamedFileButTheLogWhenItsOptionIsMet)
{
    checked_files().clear();
    Settings settings;
    const QStringList line = words(
        "-wv a.hex -v b.hex -l 0 1 c.hex -r d.hex -W 0 1 e.hex -w f.hex -x g.log -s /dev/ttyS0");
    EXPECT_FALSE(command_line::scan(line, note_name, settings).has_value());
    EXPECT_EQ(checked_files(), words("a.hex b.hex c.hex d.hex e.hex f.hex"));
}

TEST(Scan, ChecksNoFileAfterARefusal)
{
    checked_files().clear();
    Settings settings;
    const QStringList line = words("-w a.hex -W low 1 b.hex -r c.hex");
    EXPECT_TRUE(command_line::scan(line, note_name, settings).has_value());
    EXPECT_EQ(checked_files(), words("a.hex"));
}

TEST(FileCheck, CreatesAMissingFile)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("missing.hex")));
    EXPECT_TRUE(command_line::can_open_for_reading_and_writing(file.fileName()));
    ASSERT_TRUE(file.exists());
    EXPECT_EQ(file.size(), 0);
}

TEST(FileCheck, LeavesAnExistingFileAsItIs)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("fw.hex")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(":00000001FF\n");
    file.close();
    EXPECT_TRUE(command_line::can_open_for_reading_and_writing(file.fileName()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), ":00000001FF\n");
}

TEST(FileCheck, RefusesAFolder)
{
    const QTemporaryDir folder;
    EXPECT_FALSE(command_line::can_open_for_reading_and_writing(folder.path()));
}

TEST(FileCheck, RefusesAFileInAMissingFolder)
{
    const QTemporaryDir folder;
    EXPECT_FALSE(command_line::can_open_for_reading_and_writing(
        folder.filePath(QStringLiteral("nowhere/fw.hex"))));
}
