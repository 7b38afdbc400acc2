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

struct GoodRange {
    const char* name;
    const char* device;
    unsigned int start;
    unsigned int end;
    Commands commands;
    Extents content;
    bool encrypted = true;
    bool unencrypted = true;
};

const GoodRange good_ranges[] = {
    {"Rows",
     "small",
     0x140,
     0x200,
     {read_flash_row(0x140), read_flash_row(0x180), read_flash_row(0x1C0)},
     {{0x140, 0xC0}}},
    {"UpToTheEndOfFlash",
     "small",
     0x280,
     0x300,
     {read_flash_row(0x280), read_flash_row(0x2C0)},
     {{0x280, 0x80}}},
    {"FromTheBeginningOfFlash", "small", 0x100, 0x140, {read_flash_row(0x100)}, {{0x100, 0x40}}},
    {"FlashAndSomeEeprom",
     "small",
     0x2C0,
     0x1010,
     {read_flash_row(0x2C0), read_eeprom(0)},
     {{0x2C0, 0x40}, {0x1000, 0x10}}},
    {"WithoutEncryptedFlash",
     "small",
     0x140,
     0x240,
     {read_flash_row(0x180), read_flash_row(0x1C0)},
     {{0x180, 0x80}},
     false,
     true},
    {"WithoutUnencryptedFlash",
     "small",
     0x140,
     0x240,
     {read_flash_row(0x140), read_flash_row(0x200)},
     {{0x140, 0x40}, {0x200, 0x40}},
     true,
     false},
    {"WithoutFlash", "small", 0x140, 0x1010, {read_eeprom(0)}, {{0x1000, 0x10}}, false, false},
    // The end is not in flash and so need not lie on a block.
    {"UpToAnEndBesideABlock",
     "wide-blocks",
     0x280,
     0xFFF,
     {read_flash_row(0x280), read_flash_row(0x2C0)},
     {{0x280, 0x40}}},
    {"OneRowOfEachBlock",
     "wide-blocks",
     0x180,
     0x280,
     {read_flash_row(0x180), read_flash_row(0x1C0), read_flash_row(0x200), read_flash_row(0x240)},
     {{0x180, 0x40}, {0x200, 0x40}}},
    // One request for all of it, which the device is asked for in rows and, at the end, blocks.
    {"EepromInOneRequest",
     "small",
     0x1004,
     0x102C,
     {read_eeprom(0x00), read_eeprom(0x10), read_eeprom(0x20)},
     {{0x1004, 0x28}}},
    {"EepromInOneRequestBesideTheRows",
     "small",
     0x100C,
     0x1024,
     {read_eeprom(0x08), read_eeprom(0x18)},
     {{0x100C, 0x18}}},
    {"OneByteOfEeprom", "small", 0x1009, 0x100A, {read_eeprom(0x08, 8)}, {{0x1009, 1}}},
    {"EepromUpToItsEnd", "small", 0x1020, 0x1030, {read_eeprom(0x20)}, {{0x1020, 0x10}}},
    {"AllOfEeprom",
     "small",
     0x1000,
     0x1030,
     {read_eeprom(0x00), read_eeprom(0x10), read_eeprom(0x20)},
     {{0x1000, 0x30}}},
    {"EepromBelowFlashAndFlashFromItsBeginning",
     "eeprom-below-flash",
     0x60,
     0x140,
     {read_flash_row(0x100), read_eeprom(0x20)},
     {{0x60, 0x10}, {0x100, 0x40}}},
    {"EepromBelowFlashAlone",
     "eeprom-below-flash",
     0x60,
     0xFF,
     {read_eeprom(0x20)},
     {{0x60, 0x10}}},
    {"NoEeprom", "no-eeprom", 0x0, 0x140, {read_flash_row(0x100)}, {{0x100, 0x40}}},
};

class ReadRangeRows : public testing::TestWithParam<GoodRange>
{
};

struct BadRange {
    const char* name;
    const char* device;
    unsigned int start;
    unsigned int end;
    const char* message;
};

const BadRange bad_ranges[] = {
    {"StartBesideABlock", "small", 0x110, 0x200,
     "Start address 0x00000110 is in flash memory but is not but must be a multiple of block size "
     "00000110"},
    {"StartOnARowBesideABlock", "wide-blocks", 0x140, 0x200,
     "Start address 0x00000140 is in flash memory but is not but must be a multiple of block size "
     "00000140"},
    {"EndBesideABlock", "small", 0x180, 0x2FF,
     "Start address 0x000002FF is in flash memory but is not but must be a multiple of block size "
     "000002FF"},
    {"BothBesideABlock", "small", 0x181, 0x2FF,
     "Start address 0x00000181 is in flash memory but is not but must be a multiple of block size "
     "00000181"},
    {"StartBesideABlockAndEndBeyondEverything", "small", 0x181, 0x1031,
     "Start address 0x00000181 is in flash memory but is not but must be a multiple of block size "
     "00000181"},
    {"EndBesideABlockAndStartBelowEverything", "small", 0x0, 0x141,
     "Start address 0x00000141 is in flash memory but is not but must be a multiple of block size "
     "00000141"},
    {"StartBelowBothMemories", "small", 0xFF, 0x200,
     "Cannot read to address range 0x000000FF 0x000000FF outside of flash addresses 0x000000FF "
     "0x000000FF or eeprom addresses 0x000000FF 0x000000FF"},
    {"StartBelowEepromThatLiesBelow", "eeprom-below-flash", 0x3F, 0x200,
     "Cannot read to address range 0x0000003F 0x0000003F outside of flash addresses 0x0000003F "
     "0x0000003F or eeprom addresses 0x0000003F 0x0000003F"},
    {"EndAboveBothMemories", "small", 0x180, 0x1031,
     "Cannot read to address range 0x00000180 0x00000180 outside of flash addresses 0x00000180 "
     "0x00000180 or eeprom addresses 0x00000180 0x00000180"},
    {"EndAboveFlashThatLiesAbove", "eeprom-below-flash", 0x40, 0x301,
     "Cannot read to address range 0x00000040 0x00000040 outside of flash addresses 0x00000040 "
     "0x00000040 or eeprom addresses 0x00000040 0x00000040"},
    {"EndAtTheEndOfTheAddressSpace", "small", 0xABCDEF, 0xFFFFFFFF,
     "Cannot read to address range 0x00ABCDEF 0x00ABCDEF outside of flash addresses 0x00ABCDEF "
     "0x00ABCDEF or eeprom addresses 0x00ABCDEF 0x00ABCDEF"},
    {"EndBeforeStartInEeprom", "small", 0x1020, 0x1010,
     "Cannot read to address range 0x00001020 0x00001020 outside of flash addresses 0x00001020 "
     "0x00001020 or eeprom addresses 0x00001020 0x00001020"},
    {"EndInFlashBeforeStartInEeprom", "small", 0x1001, 0x200,
     "Cannot read to address range 0x00001001 0x00001001 outside of flash addresses 0x00001001 "
     "0x00001001 or eeprom addresses 0x00001001 0x00001001"},
    {"EndBeforeStartInEepromBelowFlash", "eeprom-below-flash", 0x60, 0x50,
     "Cannot read to address range 0x00000060 0x00000060 outside of flash addresses 0x00000060 "
     "0x00000060 or eeprom addresses 0x00000060 0x00000060"},
};

class ReadRangeRefusals : public testing::TestWithParam<BadRange>
{
};

struct EmptyRange {
    const char* name;
    const char* device;
    unsigned int start;
    unsigned int end;
    bool encrypted = true;
    bool unencrypted = true;
};

const EmptyRange empty_ranges[] = {
    {"Gap", "small", 0x300, 0x1000},
    {"InsideTheGap", "small", 0x400, 0x500},
    {"NothingAtAFlashRow", "small", 0x180, 0x180},
    {"NothingInEeprom", "small", 0x1010, 0x1010},
    {"NothingAtTheBeginningOfFlash", "small", 0x100, 0x100},
    {"NothingAtTheEndOfEeprom", "small", 0x1030, 0x1030},
    {"EndBeforeStartInFlash", "small", 0x200, 0x180},
    {"EncryptedFlashAlone", "small", 0x200, 0x300, false, true},
    {"UnencryptedFlashAlone", "small", 0x180, 0x200, true, false},
    {"FlashAlone", "small", 0x100, 0x300, false, false},
    {"BootloaderOfADeviceWithoutEeprom", "no-eeprom", 0x0, 0x100},
    {"DeviceWithoutMemory", "no-memory", 0x0, 0x300},
};

class ReadRangeOfNothing : public testing::TestWithParam<EmptyRange>
{
};

} // namespace

TEST_P(ReadRangeRows, AreReadWithoutASignal)
{
    const GoodRange& row = GetParam();
    ReadBench bench(row.device);
    const DebugMessages messages;
    EXPECT_TRUE(bench.read_range(row.start, row.end, row.encrypted, row.unencrypted));
    EXPECT_EQ(bench.line.sent(), row.commands);
    EXPECT_THAT(bench.line.recorder.operation(), IsEmpty());
    EXPECT_EQ(messages.texts(), QStringList());
    EXPECT_EQ(bench.target.content(), content_of(row.content));
}

INSTANTIATE_TEST_SUITE_P(, ReadRangeRows, testing::ValuesIn(good_ranges), row_name);

TEST_P(ReadRangeRefusals, ComeBeforeAnythingIsSent)
{
    const BadRange& row = GetParam();
    ReadBench bench(row.device);
    EXPECT_FALSE(bench.read_range(row.start, row.end));
    EXPECT_THAT(bench.line.recorder.lines(), ElementsAre(std::string("sig_error ") + row.message));
    EXPECT_THAT(bench.line.sent(), IsEmpty());
    EXPECT_FALSE(bench.line.port.is_open());
    EXPECT_FALSE(bench.target.exists());
}

INSTANTIATE_TEST_SUITE_P(, ReadRangeRefusals, testing::ValuesIn(bad_ranges), row_name);

TEST_P(ReadRangeOfNothing, FailsSilently)
{
    const EmptyRange& row = GetParam();
    ReadBench bench(row.device);
    const DebugMessages messages;
    EXPECT_FALSE(bench.read_range(row.start, row.end, row.encrypted, row.unencrypted));
    EXPECT_THAT(bench.line.recorder.lines(), IsEmpty());
    EXPECT_EQ(messages.texts(), QStringList());
    EXPECT_THAT(bench.line.sent(), IsEmpty());
    EXPECT_FALSE(bench.line.port.is_open());
    EXPECT_FALSE(bench.target.exists());
}

INSTANTIATE_TEST_SUITE_P(, ReadRangeOfNothing, testing::ValuesIn(empty_ranges), row_name);

TEST(ReadRange, WritesTheFileInPiecesOf16Bytes)
{
    ReadBench bench("small");
    bench.line.simulated.memory().preset(0x1000, counting(0x30));
    EXPECT_TRUE(bench.read_range(0x1006, 0x1019));
    EXPECT_EQ(bench.target.text(), ":020000040000FA\n"
                                   ":10100600060708090A0B0C0D0E0F10111213141502\n"
                                   ":020000040000FA\n"
                                   ":0310160016171892\n"
                                   ":00000001FF\n");
}

TEST(ReadRange, StopsAtAFlashRowThatCannotBeRead)
{
    ReadBench bench("small");
    bench.line.simulated.set_reply_filter(unreadable_from(1));
    EXPECT_FALSE(bench.read_range(0x180, 0x1010));
    EXPECT_EQ(bench.line.sent(),
              joined({read_flash_row(0x180)}, times(read_attempts, read_flash_row(0x1C0))));
    EXPECT_THAT(
        bench.line.recorder.operation(),
        ElementsAre(gave_up_reading(), "sig_error read() at 000001c0 could not be performed"));
    EXPECT_FALSE(bench.target.exists());
}

TEST(ReadRange, NamesTheBeginningOfEepromThatCannotBeRead)
{
    ReadBench bench("small");
    bench.line.simulated.set_reply_filter(unreadable_from(2));
    EXPECT_FALSE(bench.read_range(0x2C0, 0x1030));
    EXPECT_EQ(bench.line.sent(), joined({read_flash_row(0x2C0), read_eeprom(0)},
                                        times(read_attempts, read_eeprom(0x10))));
    EXPECT_THAT(bench.line.recorder.operation(),
                ElementsAre(gave_up_reading(),
                            "sig_error eeprom read() at 00001000 could not be performed"));
    EXPECT_FALSE(bench.target.exists());
}

TEST(ReadRange, SaysThatThePortCannotBeOpened)
{
    MissingPort missing("small");
    TargetFile target;
    EXPECT_FALSE(missing.device.read_range(target.file, missing.abort, true, true, 0x100A, 0x1010));
    EXPECT_THAT(missing.recorder.lines(),
                ElementsAre(port_cannot_be_opened(),
                            "sig_error eeprom read() at 0000100a could not be performed"));
}
