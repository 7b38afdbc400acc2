#include "tests/app/ToolTest.h"
#include "tests/support/RowName.h"

#include <QFile>

#include <csignal>
#include <ostream>

using namespace test;

namespace
{

/// A table that ends the tool, and the diagnostics on standard error.
struct BadTable {
    const char* name;
    const char* file; ///< of tests/app/data; null: there is no table
    const char* diagnosis;
};

std::ostream& operator<<(std::ostream& stream, const BadTable& table)
{
    return stream << table.name;
}

/// A row whose figures can't work, a command line that needs them, and the message.
struct BadFigure {
    const char* name;
    const char* arguments; ///< the version first
    const char* message;
    const char* consequence;
};

std::ostream& operator<<(std::ostream& stream, const BadFigure& figure)
{
    return stream << figure.arguments;
}

const BadTable bad_tables[] = {
    {"missing", nullptr, "\"file not found: ./device.txt\""},
    {"version_without_its_letter", "bad_version_device.txt", "\"unparsable profile data\""},
    {"field_that_is_no_number", "bad_page_size_device.txt",
     "\"could not parse attr 'flash page size' (value = 'forty') for device profile 'SOLO'\""},
    {"no_words_per_address", "no_words_per_address_device.txt",
     "\"could not parse attr 'flash words per address' (value = '0') for device profile 'SOLO'\""},
};

constexpr const char* write_failed = "Now writingFailed to write memory, aborting...\n";
constexpr const char* range_write_failed = "Now writingFailed to write memory range, aborting...\n";
constexpr const char* erase_failed = "Erase all flash failed? Aborting...\n";
constexpr const char* range_erase_failed = "Failed to erase flash range, aborting...\n";

const BadFigure bad_figures[] = {
    {"write_without_row", "0401 -w flash_at_zero.hex",
     "'NO-ROW': flash_row_size is 0, expected 1 to 1073741568", write_failed},
    {"range_write_without_row", "0401 -W 0 0x20 flash_at_zero.hex",
     "'NO-ROW': flash_row_size is 0, expected 1 to 1073741568", range_write_failed},
    {"erase_without_page", "0402 -e", "'NO-PAGE': flash_page_size is 0, expected 1 to 4294967295",
     erase_failed},
    {"range_erase_without_page", "0402 -E 1 1",
     "'NO-PAGE': flash_page_size is 0, expected 1 to 4294967295", range_erase_failed},
    {"erase_without_divisor", "0403 -e",
     "'NO-DIVISOR': flash_words_per_address is 4, expected 1 to 2", erase_failed},
    {"write_without_divisor", "0403 -w flash_at_zero.hex",
     "'NO-DIVISOR': flash_words_per_address is 4, expected 1 to 2", write_failed},
    {"write_without_eeprom_row", "0404 -w eeprom.hex",
     "'NO-EEPROM-ROW': eeprom_row_size is 0, expected 1 to 1073741568", write_failed},
    {"range_write_without_block", "0405 -W 0 0x20 flash_at_zero.hex",
     "'NO-BLOCK': flash_block_size is 0, expected 1 to 4294967295", range_write_failed},
    {"erase_with_page_that_wraps_to_nothing", "0406 -e",
     "'ENDLESS-PAGE': flash_page_size is 2147483648, expected 1 to 2147483647", erase_failed},
    {"write_with_row_beyond_all_memory", "0408 -w flash_at_zero.hex",
     "'ENDLESS-ROW': flash_row_size is 4294967295, expected 1 to 1073741568", write_failed},
};

class ToolTable : public ToolTest
{
};

class ToolWithBadTable : public ToolTest, public testing::WithParamInterface<BadTable>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(QFile::remove(m_tool.path(QStringLiteral("device.txt"))));
        if (GetParam().file != nullptr) {
            m_tool.put_file(QStringLiteral("device.txt"), test_data(GetParam().file));
        }
    }
};

class ToolWithBadFigure : public ToolTest, public testing::WithParamInterface<BadFigure>
{
};

} // namespace

TEST_P(ToolWithBadTable, EndsAbnormallyWhenTheVersionIsGiven)
{
    sim::SimulatedDevice device(solo());
    const ToolResult result = run(device, "-B 0203 -e -x frames.log");
    EXPECT_EQ(result, killed(SIGABRT, ""));
    EXPECT_TRUE(result.err.contains(GetParam().diagnosis)) << result;
    EXPECT_EQ(heard_by(device), "");
    EXPECT_EQ(m_tool.file(QStringLiteral("frames.log")), "");
}

TEST_P(ToolWithBadTable, EndsAbnormallyWhenTheDeviceIsCaught)
{
    sim::SimulatedDevice device(solo());
    const ToolResult result = run(device, "-e");
    EXPECT_EQ(result, killed(SIGABRT, ""));
    EXPECT_TRUE(result.err.contains(GetParam().diagnosis)) << result;
    EXPECT_EQ(commands_of(device), std::vector<std::string>());
    EXPECT_EQ(locks_on(device.port_path()), QStringList());
}

// The table is read while the port is open, other than above.
TEST_P(ToolWithBadTable, LeavesNoLockOnThePortOfADeviceThatRuns)
{
    sim::SimulatedDevice device(solo(), {sim::Entry::Version});
    QStringList locks;
    QObject::connect(&device, &sim::SimulatedDevice::command_received, &device,
                     [&] { locks = locks_on(device.port_path()); });
    const ToolResult result = run(device, "-e");
    EXPECT_EQ(result, killed(SIGABRT, ""));
    EXPECT_TRUE(result.err.contains("terminate called after throwing an instance of")) << result;
    EXPECT_NE(locks, QStringList());
    EXPECT_EQ(locks_on(device.port_path()), QStringList());
}

INSTANTIATE_TEST_SUITE_P(Tables, ToolWithBadTable, testing::ValuesIn(bad_tables), row_name);

TEST_P(ToolWithBadFigure, ReportsWhichAndSendsNothing)
{
    give_file("flash_at_zero.hex");
    give_file("eeprom.hex");
    sim::SimulatedDevice device(solo());
    const QByteArray arguments = QByteArray("-B ") + GetParam().arguments;
    EXPECT_EQ(run(device, arguments.constData()),
              exited(1, "Version set to 0x" + QByteArray(GetParam().arguments).left(4) +
                            " successfully!unusable geometry in device profile " +
                            GetParam().message + "\n" + GetParam().consequence));
    EXPECT_EQ(heard_by(device), "");
}

INSTANTIATE_TEST_SUITE_P(Figures, ToolWithBadFigure, testing::ValuesIn(bad_figures), row_name);

TEST_F(ToolTable, KeepsErrorLinesAndFramesShownBeforeAnAbnormalEnd)
{
    ASSERT_TRUE(QFile::remove(m_tool.path(QStringLiteral("device.txt"))));
    sim::SimulatedDevice device(twin(), {sim::Entry::Version});
    script_replies(device, {{{QByteArray::fromHex("555500020102FA04")}}});
    EXPECT_EQ(run(device, "-x frames.log"),
              killed(SIGABRT, "response checksum mismatch (expected FB, got FA)\n"));
    EXPECT_EQ(m_tool.file(QStringLiteral("frames.log")), "\nTX:55550002fe04"
                                                         "\nRX:555500020102fa04"
                                                         "\nTX:55550002fe04"
                                                         "\nRX:555500020102fb04");
}

TEST_F(ToolTable, ThatCannotBeReadEndsTheToolAbnormally)
{
    ToolRun tool;
    ASSERT_TRUE(
        QFile::link(tool.path(QStringLiteral(".")), tool.path(QStringLiteral("device.txt"))));
    sim::SimulatedDevice device(solo());
    const ToolResult result = tool.run(
        {QStringLiteral("-s"), device.port_path(), QStringLiteral("-B"), QStringLiteral("0203")});
    EXPECT_EQ(result, killed(SIGABRT, ""));
    EXPECT_TRUE(result.err.contains("\"file read error: ./device.txt\"")) << result;
}

TEST_F(ToolTable, WithoutAnyDeviceKnowsNoVersion)
{
    m_tool.put_file(QStringLiteral("device.txt"), "nothing in here\n");
    sim::SimulatedDevice device(solo());
    EXPECT_EQ(run(device, "-B 0203"),
              exited(1, "no profile for device (bootloader version = 0203)\n"
                        "Could not find device profile matching specified 0x0203, aborting..."));
}
