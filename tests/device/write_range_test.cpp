#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Image.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/Progress.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;

// The sample writes flash from 0x800 to 0x4000 in rows of 64 and blocks of 16 bytes, EEPROM from
// 0x8000 to 0x8100 in rows of 16; its flash is encrypted below 0x1000 and from 0x2000 on.

namespace
{

std::string misaligned(const std::string& address)
{
    return "sig_error Start address 0x" + address +
           " is in flash memory but is not but must be a multiple of block size " + address;
}

std::string outside(const std::string& address)
{
    return "sig_error Cannot write to address range 0x" + address + " 0x" + address + " outside" +
           std::string(17, ' ') + "of flash addresses 0x" + address + " 0x" + address +
           " or eeprom addresses 0x" + address + " 0x" + address;
}

struct RefusedRange {
    const char* name;
    const char* device;
    unsigned int start;
    unsigned int end;
    std::string line;
};

const RefusedRange refused_ranges[] = {
    {"StartBesideABlock", "sample", 0x1008, 0x1040, misaligned("00001008")},
    {"EndBesideABlock", "sample", 0x1000, 0x1041, misaligned("00001041")},
    {"StartIsLookedAtFirst", "sample", 0x1001, 0x1041, misaligned("00001001")},
    {"AlignmentIsLookedAtFirst", "sample", 0x1001, 0x9000, misaligned("00001001")},
    {"StartBelowBoth", "sample", 0x7F0, 0x1000, outside("000007F0")},
    {"EndAboveBoth", "sample", 0x1000, 0x8101, outside("00001000")},
    {"EndAboveBothByFar", "sample", 0x8000, 0xFFFFFFFF, outside("00008000")},
    {"AllAbove", "sample", 0x9000, 0xA000, outside("00009000")},
    {"StartBelowEepromBelowFlash", "eeprom-below-flash", 0xF0, 0x200, outside("000000F0")},
    {"EndAboveFlashAboveEeprom", "eeprom-below-flash", 0x100, 0x4010, outside("00000100")},
};

class WriteRangeRefusals : public testing::TestWithParam<RefusedRange>
{
};

struct Range {
    const char* name;
    const char* device;
    unsigned int start;
    unsigned int end;
    std::vector<std::string> commands; ///< without their data
    SignalRecorder::Lines lines;
};

// Of an image that fills all of flash and EEPROM.
const Range ranges[] = {
    {"OneFlashRow", "sample", 0x1000, 0x1040, {"02 01 00 08 00"}, completed_upload({0, 64}, 64)},
    {"TwoFlashRows",
     "sample",
     0x1000,
     0x1080,
     {"02 01 00 08 00", "02 01 20 08 00"},
     completed_upload({0, 64, 128}, 128)},
    {"WholeLastRowOfARangeThatEndsWithinIt",
     "sample",
     0x1000,
     0x1050,
     {"02 01 00 08 00", "02 01 20 08 00"},
     completed_upload({0, 64, 128}, 64)},
    {"UpToTheEndOfFlash",
     "sample",
     0x3FC0,
     0x4000,
     {"02 01 E0 1F 00"},
     completed_upload({0, 64}, 64)},
    {"FromTheFlashMinimum",
     "sample",
     0x800,
     0x840,
     {"02 01 00 04 00"},
     completed_upload({0, 64}, 64)},
    {"FlashIntoTheGap",
     "sample",
     0x3FC0,
     0x6001,
     {"02 01 E0 1F 00"},
     completed_upload({0, 64}, 64)},
    {"GapIntoEeprom", "sample", 0x6001, 0x8010, {"05 10 00 00 00"}, completed_upload({0, 16}, 16)},
    {"FlashIntoEeprom",
     "sample",
     0x3FC0,
     0x8010,
     {"02 01 E0 1F 00", "05 10 00 00 00"},
     completed_upload({0, 64, 80}, 80)},
    {"Eeprom",
     "sample",
     0x8010,
     0x8030,
     {"05 10 10 00 00", "05 10 20 00 00"},
     completed_upload({0, 16, 32}, 32)},
    {"UpToTheEndOfEeprom",
     "sample",
     0x80F0,
     0x8100,
     {"05 10 F0 00 00"},
     completed_upload({0, 16}, 16)},
    {"Gap", "sample", 0x5000, 0x6000, {}, completed_upload({0}, 0)},
    {"Nothing", "sample", 0x1000, 0x1000, {}, completed_upload({0}, 0)},
    {"EndBeforeStartInFlash", "sample", 0x2000, 0x1000, {}, completed_upload({0}, 0xFFFFF000)},
    {"EndBeforeStartInEeprom", "sample", 0x8020, 0x8010, {}, completed_upload({0}, 0xFFFFFFF0)},
    {"EepromBelowIntoFlash",
     "eeprom-below-flash",
     0x1F0,
     0x840,
     {"02 01 00 04 00", "05 10 F0 00 00"},
     completed_upload({0, 64, 80}, 80)},
    {"BootloaderIntoFlash",
     "eeprom-below-flash",
     0x300,
     0x840,
     {"02 01 00 04 00"},
     completed_upload({0, 64}, 64)},
    {"WithoutEeprom", "no-eeprom", 0x100, 0x840, {"02 01 00 04 00"}, completed_upload({0, 64}, 64)},
};

class WriteRangeBounds : public testing::TestWithParam<Range>
{
};

MemoryMap full_image()
{
    return image({{0x800, QByteArray(0x3800, 'f')},
                  {0x8000, QByteArray(0x100, 'e')},
                  {0x100, QByteArray(0x100, 'e')}});
}

/// The commands without their data.
std::vector<std::string> heads_of(const DeviceOnLine& line)
{
    std::vector<std::string> heads;
    for (const QByteArray& payload : line.simulated.payloads()) {
        heads.push_back(hex(payload.left(5)));
    }
    return heads;
}

bool write_range(DeviceOnLine& line, const MemoryMap& map, unsigned int start, unsigned int end,
                 bool encrypted = true, bool unencrypted = true)
{
    const bool abort_requested = false;
    return line.device.write_range(&map, start, end, abort_requested, encrypted, unencrypted);
}

} // namespace

TEST_P(WriteRangeRefusals, AreReportedWithOneAddressAtEveryPlace)
{
    const RefusedRange& row = GetParam();
    DeviceOnLine line(row.device);
    EXPECT_FALSE(write_range(line, full_image(), row.start, row.end));
    EXPECT_THAT(line.recorder.lines(), ElementsAre(row.line));
    EXPECT_FALSE(line.port.is_open());
}

INSTANTIATE_TEST_SUITE_P(, WriteRangeRefusals, testing::ValuesIn(refused_ranges), row_name);

TEST_P(WriteRangeBounds, AreCutToFlashAndEeprom)
{
    const Range& row = GetParam();
    DeviceOnLine line(row.device);
    EXPECT_TRUE(write_range(line, full_image(), row.start, row.end));
    EXPECT_EQ(heads_of(line), row.commands);
    EXPECT_EQ(line.recorder.operation(), row.lines);
    EXPECT_TRUE(line.port.is_open());
}

INSTANTIATE_TEST_SUITE_P(, WriteRangeBounds, testing::ValuesIn(ranges), row_name);

TEST(WriteRange, SendsOnlyRowsThatTheImageTouches)
{
    DeviceOnLine line("sample");
    EXPECT_TRUE(
        write_range(line, image({{0x1050, bytes("01 02")}, {0x1200, "beyond"}}), 0x1000, 0x10C0));
    const QByteArray row =
        bytes("AB CD").repeated(8) + bytes("01 02") + bytes("AB CD").repeated(23);
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 20 08 00") + row)));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64, 128, 192}, 192));
}

TEST(WriteRange, FillsEveryEepromRowWhetherTheImageTouchesItOrNot)
{
    DeviceOnLine line("sample");
    EXPECT_TRUE(write_range(line, image({{0x8011, bytes("01")}}), 0x8000, 0x8020));
    const QByteArray touched = bytes("5A 01") + QByteArray(14, '\x5A');
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("05 10 00 00 00") + QByteArray(16, '\x5A')),
                                         hex(bytes("05 10 10 00 00") + touched)));
}

TEST(WriteRange, MayBeginOnABlockThatIsNoRowAsLongAsNothingIsSent)
{
    DeviceOnLine line("sample");
    EXPECT_TRUE(write_range(line, image({}), 0x1010, 0x1050));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64}, 64));
}

TEST(WriteRange, FailsOnABlockThatIsNoRow)
{
    DeviceOnLine line("sample");
    EXPECT_FALSE(write_range(line, full_image(), 0x1010, 0x1050));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_upload_progress 0 of 64",
                            "sig_error address must be a multiple of row_size (64)",
                            "sig_error unable to write flash row at address 0x00001010"));
}

TEST(WriteRange, LeavesOutEncryptedRowsWithoutProgress)
{
    DeviceOnLine line("sample");
    EXPECT_TRUE(write_range(line, full_image(), 0xF80, 0x1040, false, true));
    EXPECT_THAT(heads_of(line), ElementsAre("02 01 00 08 00"));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64}, 192));
}

TEST(WriteRange, LeavesOutUnencryptedRowsWithoutProgress)
{
    DeviceOnLine line("sample");
    EXPECT_TRUE(write_range(line, full_image(), 0xFC0, 0x1080, true, false));
    EXPECT_THAT(heads_of(line), ElementsAre("02 01 E0 07 00"));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64}, 192));
}

TEST(WriteRange, EndsAtTheFirstRowThatFails)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(to_command(1, frame_of("05")));
    EXPECT_FALSE(write_range(line, full_image(), 0x1000, 0x10C0));
    EXPECT_EQ(line.sent().size(), 2U);
    EXPECT_EQ(line.recorder.operation(),
              failed_upload({0, 64}, 192, "unable to write flash row at address 0x00001040"));
}

TEST(WriteRange, EndsAtTheFirstEepromRowThatFails)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(to_command(0, frame_of("02")));
    EXPECT_FALSE(write_range(line, full_image(), 0x8020, 0x8040));
    EXPECT_EQ(line.sent().size(), 1U);
    EXPECT_EQ(line.recorder.operation(),
              failed_upload({0}, 32, "unable to write EEPROM row at address 0x00008020"));
}

TEST(WriteRange, FailsWithThePortAfterTheTotal)
{
    ZarnSerialDevice device(QStringLiteral("/dev/no-such-port"), nullptr, 9600, false,
                            version_named("sample"));
    const SignalRecorder recorder(device);
    const MemoryMap map = full_image();
    const bool abort_requested = false;
    EXPECT_FALSE(device.write_range(&map, 0x1000, 0x1040, abort_requested, true, true));
    ASSERT_EQ(recorder.lines().size(), 2U);
    EXPECT_EQ(recorder.lines().front(), "sig_upload_progress 0 of 64");
    EXPECT_EQ(recorder.lines().back().find("sig_error cannot open port no-such-port ("), 0U);
}
