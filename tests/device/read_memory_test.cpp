#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

const char* const other_type = "start and end addresses correspond to different memory types";

struct RefusedRead {
    const char* name;
    unsigned int address;
    unsigned int num_bytes;
    const char* message;
};

// The sample has flash from 0x800 to 0x4000 and EEPROM from 0x8000 to 0x8100.
const RefusedRead refused_reads[] = {
    {"FromFlashIntoEeprom", 0x3FF0, 0x4020, other_type},
    {"OneByteBeyondFlash", 0x3FF0, 0x11, other_type},
    {"OneByteBeyondEeprom", 0x80F0, 0x11, other_type},
    {"FromBootloaderIntoFlash", 0x7F0, 0x11, other_type},
    {"NothingAtTheFlashMinimum", 0x800, 0, other_type},
    {"NothingAtTheEepromMinimum", 0x8000, 0, other_type},
    {"AroundTheWholeAddressSpace", 0x1000, 0xFFFFFFFF,
     "unusable geometry in device profile 'sample': flash_end_address_bytes is 0x00004000, and "
     "flash_row_size 64 leads beyond address 0xFFFFFFFF"},
    {"Bootloader", 0x10, 0x10, "unreadable memory area"},
    {"BeyondFlash", 0x4000, 0x10, "unreadable memory area"},
    {"NothingInTheBootloader", 0x10, 0, "unreadable memory area"},
    {"NothingInFlash", 0x1000, 0, "attempting to read 0 bytes"},
    {"NothingInEeprom", 0x8010, 0, "attempting to read 0 bytes"},
};

class ReadMemoryRefusals : public testing::TestWithParam<RefusedRead>
{
};

struct Read {
    const char* name;
    const char* device;
    unsigned int address;
    unsigned int num_bytes;
    std::vector<std::string> commands;
};

const Read reads[] = {
    {"PartOfABlock", "sample", 0x1005, 3, {"01 08 00 08 00"}},
    {"FirstByteOfFlash", "sample", 0x800, 1, {"01 08 00 04 00"}},
    {"LastByteOfFlash", "sample", 0x3FFF, 1, {"01 08 F8 1F 00"}},
    {"UpToTheEndOfFlash", "sample", 0x3FF0, 0x10, {"01 08 F8 1F 00"}},
    {"TwoBlocks", "sample", 0x100F, 2, {"01 08 00 08 00", "01 08 08 08 00"}},
    {"ARow", "sample", 0x1000, 0x40, {"01 20 00 08 00"}},
    {"ARowWidenedFromWithin",
     "sample",
     0x1011,
     0x2F,
     {"01 08 08 08 00", "01 08 10 08 00", "01 08 18 08 00"}},
    {"RowsAndThenBlocks",
     "sample",
     0x1008,
     0x90,
     {"01 20 00 08 00", "01 20 20 08 00", "01 08 40 08 00", "01 08 48 08 00"}},
    {"ARowThatBeginsOnABlockOnly", "sample", 0x1010, 0x40, {"01 20 08 08 00"}},
    {"PartOfEeprom", "sample", 0x8003, 2, {"04 08 00 00 00"}},
    {"UpToTheEndOfEeprom", "sample", 0x80F8, 8, {"04 08 F8 00 00"}},
    {"EepromRows", "sample", 0x8000, 0x20, {"04 10 00 00 00", "04 10 10 00 00"}},
    {"FlashWithDivisor1", "swapped-divisors", 0x1234, 2, {"01 08 30 12 00"}},
    {"EepromWithDivisor2", "swapped-divisors", 0x8010, 0x10, {"04 08 08 00 00"}},
    {"ABlockThatBeginsInTheBootloader", "shared-block", 0x808, 4, {"01 08 00 04 00"}},
};

class ReadMemoryRanges : public testing::TestWithParam<Read>
{
};

} // namespace

TEST_P(ReadMemoryRefusals, SayWhyAndSendNothing)
{
    const RefusedRead& row = GetParam();
    DeviceOnLine line("sample");
    QByteArray data;
    EXPECT_FALSE(line.device.read_memory(row.address, row.num_bytes, data));
    EXPECT_THAT(line.recorder.lines(), ElementsAre(std::string("sig_error ") + row.message));
    EXPECT_FALSE(line.port.is_open());
}

INSTANTIATE_TEST_SUITE_P(, ReadMemoryRefusals, testing::ValuesIn(refused_reads), row_name);

TEST_P(ReadMemoryRanges, WidenToBlocksAndKeepWhatWasAskedFor)
{
    const Read& row = GetParam();
    DeviceOnLine line(row.device);
    // Bytes on both sides too, to tell the right ones from their neighbours.
    line.simulated.memory().preset(row.address - 0x20,
                                   counting(static_cast<int>(row.num_bytes) + 0x40));
    QByteArray data = "what was there before";
    EXPECT_TRUE(line.device.read_memory(row.address, row.num_bytes, data));
    EXPECT_EQ(data, counting(static_cast<int>(row.num_bytes), 0x20));
    EXPECT_EQ(line.sent(), row.commands);
    EXPECT_THAT(line.recorder.operation(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, ReadMemoryRanges, testing::ValuesIn(reads), row_name);

TEST(ReadMemory, OfMoreThanCanBeHeldIsRefused)
{
    DeviceOnLine line("flash-to-the-top");
    QByteArray data;
    EXPECT_FALSE(line.device.read_memory(0x1000, 0x3FFFFF01, data));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error unusable geometry in device profile 'flash-to-the-top': "
                            "flash_end_address_bytes is 4294967295, expected 0 to 1073741568"));
    EXPECT_FALSE(line.port.is_open());
}

TEST(ReadMemory, SendsTheLower24BitsOfTheWordAddress)
{
    DeviceOnLine line("high-flash");
    line.simulated.memory().preset(0x345640, counting(0x10));
    QByteArray data;
    EXPECT_TRUE(line.device.read_memory(0x2345642, 4, data));
    EXPECT_EQ(data, counting(4, 2));
    EXPECT_THAT(line.sent(), ElementsAre("01 08 40 56 34"));
}

TEST(ReadMemory, GoesOnByWhatTheCountOfOneByteReallyAskedFor)
{
    DeviceOnLine line("long-rows");
    line.simulated.memory().preset(0x1000, counting(0x240, 7));
    QByteArray data;
    EXPECT_TRUE(line.device.read_memory(0x1000, 0x240, data));
    EXPECT_EQ(data, counting(0x240, 7));
    std::vector<std::string> commands{"01 40 00 10 00"};
    for (int block = 0x1040; block < 0x1240; block += 0x20) {
        QByteArray command = bytes("01 20 00 00 00");
        command[2] = static_cast<char>(block);
        command[3] = static_cast<char>(block >> 8);
        commands.push_back(hex(command));
    }
    EXPECT_EQ(line.sent(), commands);
}

TEST(ReadMemory, CountsTheBytesOfAnAnswerInSixteenBits)
{
    DeviceOnLine line("long-words");
    line.simulated.set_reply_filter([](const sim::Command& command, const QByteArray&) {
        return frame_of(command.payload + counting(0x10001));
    });
    QByteArray data;
    EXPECT_TRUE(line.device.read_memory(0x10001, 0x10001, data));
    EXPECT_EQ(data, counting(0x10001));
}

TEST(ReadMemory, FailsForACountThatIsCutToNothing)
{
    DeviceOnLine line("long-rows");
    QByteArray data;
    EXPECT_FALSE(line.device.read_memory(0x8000, 0x100, data));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error expected_response_length == 0 but max_attempts != 1 "
                            "(nonsensical)"));
}

TEST(ReadMemory, AcceptsAnAnswerThatShowsAZeroCount)
{
    DeviceOnLine line("sample");
    line.simulated.memory().preset(0x1000, counting(0x10));
    line.simulated.set_reply_filter([](const sim::Command& command, const QByteArray&) {
        QByteArray answer = command.payload + counting(0x10);
        answer[1] = 0;
        return frame_of(answer);
    });
    QByteArray data;
    EXPECT_TRUE(line.device.read_memory(0x1000, 0x10, data));
    EXPECT_EQ(data, counting(0x10));
}

TEST(ReadMemory, EndsAtTheFirstCommandThatFailsFortyTimes)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter([](const sim::Command& command, const QByteArray& answer) {
        return command.sequence == 0 ? Reply{{answer}} : frame_of(command.payload);
    });
    QByteArray data;
    EXPECT_FALSE(line.device.read_memory(0x1000, 0xC0, data));
    std::string faults;
    for (int i = 0; i < 40; ++i) {
        faults += "response contained 0 bytes, expected 64\n";
    }
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_error giving up after having made 40 attempts, with errors (" +
                            faults + ')'));
    std::vector<std::string> commands(41, "01 20 20 08 00");
    commands.front() = "01 20 00 08 00";
    EXPECT_EQ(line.sent(), commands);
}

TEST(ReadMemory, FailsWithThePort)
{
    ZarnSerialDevice device(QStringLiteral("/dev/no-such-port"), nullptr, 9600, false,
                            version_named("sample"));
    const SignalRecorder recorder(device);
    QByteArray data;
    EXPECT_FALSE(device.read_memory(0x1000, 1, data));
    ASSERT_EQ(recorder.lines().size(), 1U);
    EXPECT_EQ(recorder.lines().front().find("sig_error cannot open port no-such-port ("), 0U);
}
