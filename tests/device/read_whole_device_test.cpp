#include "tests/device/MissingPort.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/OperationFaults.h"
#include "tests/device/ReadBench.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

const Commands all_flash_rows{
    read_flash_row(0x100), read_flash_row(0x140), read_flash_row(0x180), read_flash_row(0x1C0),
    read_flash_row(0x200), read_flash_row(0x240), read_flash_row(0x280), read_flash_row(0x2C0),
};
const Commands all_eeprom_rows{read_eeprom(0x00), read_eeprom(0x10), read_eeprom(0x20)};

struct WholeRead {
    const char* name;
    const char* device;
    bool encrypted;
    bool unencrypted;
    Commands commands;
    Extents content;
};

const WholeRead whole_reads[] = {
    {"Everything",
     "small",
     true,
     true,
     joined(all_flash_rows, all_eeprom_rows),
     {{0x100, 0x200}, {0x1000, 0x30}}},
    {"WithoutEncryptedFlash",
     "small",
     false,
     true,
     joined({read_flash_row(0x180), read_flash_row(0x1C0)}, all_eeprom_rows),
     {{0x180, 0x80}, {0x1000, 0x30}}},
    {"WithoutUnencryptedFlash",
     "small",
     true,
     false,
     joined({read_flash_row(0x100), read_flash_row(0x140), read_flash_row(0x200),
             read_flash_row(0x240), read_flash_row(0x280), read_flash_row(0x2C0)},
            all_eeprom_rows),
     {{0x100, 0x80}, {0x200, 0x100}, {0x1000, 0x30}}},
    {"OnlyEepromIsInNeitherArea", "small", false, false, all_eeprom_rows, {{0x1000, 0x30}}},
    {"NoEeprom", "no-eeprom", true, true, all_flash_rows, {{0x100, 0x200}}},
    {"NoFlash", "no-flash-range", true, true, all_eeprom_rows, {{0x1000, 0x30}}},
    {"FlashBeforeEepromThatLiesBelow",
     "eeprom-below-flash",
     true,
     true,
     joined(all_flash_rows, all_eeprom_rows),
     {{0x40, 0x30}, {0x100, 0x200}}},
    // A row at the start of each block is kept; the device reads whole blocks all the same.
    {"OneRowOfEachBlock",
     "wide-blocks",
     true,
     true,
     joined(all_flash_rows, all_eeprom_rows),
     {{0x100, 0x40}, {0x180, 0x40}, {0x200, 0x40}, {0x280, 0x40}, {0x1000, 0x30}}},
    {"LastStepBeyondTheEnd",
     "late-start",
     true,
     true,
     joined(all_flash_rows, all_eeprom_rows),
     {{0x140, 0x40}, {0x1C0, 0x40}, {0x240, 0x40}, {0x2C0, 0x40}, {0x1000, 0x30}}},
};

class ReadWholeDevice : public testing::TestWithParam<WholeRead>
{
};

} // namespace

TEST_P(ReadWholeDevice, AsksForItsRowsAndSavesThemWithoutASignal)
{
    const WholeRead& row = GetParam();
    ReadBench bench(row.device);
    const DebugMessages messages;
    EXPECT_TRUE(bench.read(row.encrypted, row.unencrypted));
    EXPECT_EQ(bench.line.sent(), row.commands);
    EXPECT_THAT(bench.line.recorder.operation(), IsEmpty());
    EXPECT_EQ(messages.texts(), QStringList());
    EXPECT_EQ(bench.target.content(), content_of(row.content));
}

INSTANTIATE_TEST_SUITE_P(, ReadWholeDevice, testing::ValuesIn(whole_reads), row_name);

TEST(Read, WritesTheFileToTheByte)
{
    ReadBench bench("no-flash-range");
    bench.line.simulated.memory().preset(0x1000, counting(0x30));
    EXPECT_TRUE(bench.read());
    EXPECT_EQ(bench.target.text(), ":020000040000FA\n"
                                   ":10100000000102030405060708090A0B0C0D0E0F68\n"
                                   ":020000040000FA\n"
                                   ":10101000101112131415161718191A1B1C1D1E1F58\n"
                                   ":020000040000FA\n"
                                   ":10102000202122232425262728292A2B2C2D2E2F48\n"
                                   ":00000001FF\n");
}

TEST(Read, OfNothingFailsSilently)
{
    ReadBench bench("no-memory");
    const DebugMessages messages;
    EXPECT_FALSE(bench.read());
    EXPECT_THAT(bench.line.recorder.lines(), IsEmpty());
    EXPECT_EQ(messages.texts(), QStringList());
    EXPECT_THAT(bench.line.sent(), IsEmpty());
    EXPECT_FALSE(bench.line.port.is_open());
    EXPECT_FALSE(bench.target.exists());
}

TEST(Read, OfExcludedFlashAloneFailsSilently)
{
    ReadBench bench("no-eeprom");
    const DebugMessages messages;
    EXPECT_FALSE(bench.read(false, false));
    EXPECT_THAT(bench.line.recorder.lines(), IsEmpty());
    EXPECT_EQ(messages.texts(), QStringList());
    EXPECT_THAT(bench.line.sent(), IsEmpty());
    EXPECT_FALSE(bench.target.exists());
}

TEST(Read, StopsAtAFlashRowThatCannotBeRead)
{
    ReadBench bench("small");
    bench.line.simulated.set_reply_filter(unreadable_from(2));
    EXPECT_FALSE(bench.read());
    EXPECT_EQ(bench.line.sent(), joined({read_flash_row(0x100), read_flash_row(0x140)},
                                        times(read_attempts, read_flash_row(0x180))));
    EXPECT_THAT(
        bench.line.recorder.operation(),
        ElementsAre(gave_up_reading(), "sig_error read() at 00000180 could not be performed"));
    EXPECT_FALSE(bench.target.exists());
}

TEST(Read, StopsAtAnEepromRowThatCannotBeRead)
{
    ReadBench bench("small");
    bench.line.simulated.set_reply_filter(unreadable_from(9));
    EXPECT_FALSE(bench.read());
    EXPECT_EQ(bench.line.sent(), joined(joined(all_flash_rows, {read_eeprom(0x00)}),
                                        times(read_attempts, read_eeprom(0x10))));
    EXPECT_THAT(bench.line.recorder.operation(),
                ElementsAre(gave_up_reading(),
                            "sig_error eeprom read() at 00001010 could not be performed"));
    EXPECT_FALSE(bench.target.exists());
}

TEST(Read, AsksForAWholeRowEvenWhereFlashEndsInTheMiddleOfIt)
{
    ReadBench bench("uneven-end");
    EXPECT_FALSE(bench.read());
    EXPECT_EQ(bench.line.sent(), Commands(all_flash_rows.begin(), all_flash_rows.end() - 1));
    EXPECT_THAT(
        bench.line.recorder.operation(),
        ElementsAre("sig_error start and end addresses correspond to different memory types",
                    "sig_error read() at 000002c0 could not be performed"));
    EXPECT_FALSE(bench.target.exists());
}

TEST(Read, SaysThatThePortCannotBeOpened)
{
    MissingPort missing("small");
    TargetFile target;
    EXPECT_FALSE(missing.device.read(target.file, missing.abort, true, true));
    EXPECT_THAT(missing.recorder.lines(),
                ElementsAre(port_cannot_be_opened(),
                            "sig_error read() at 00000100 could not be performed"));
    EXPECT_FALSE(target.exists());
}
