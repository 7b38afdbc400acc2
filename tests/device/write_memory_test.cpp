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

const char* const two_types = "start and end addresses correspond to different memory types";

struct RefusedWrite {
    const char* name;
    unsigned int address;
    int num_bytes;
    const char* message;
};

// The sample has flash from 0x800 to 0x4000 in rows of 64 bytes and EEPROM from 0x8000 to 0x8100
// in rows of 16.
const RefusedWrite refused_writes[] = {
    {"Bootloader", 0x100, 0x40, "unwritable memory area"},
    {"BootloaderIntoFlash", 0x7C1, 0x40, "unwritable memory area"},
    {"NothingInTheBootloader", 0x100, 0, "unwritable memory area"},
    {"BeyondEeprom", 0x8100, 0x10, "unwritable memory area"},
    {"FlashIntoNowhere", 0x3FC1, 0x40, two_types},
    {"FlashIntoEeprom", 0x3FC0, 0x4080, two_types},
    {"EepromIntoNowhere", 0x80F0, 0x20, two_types},
    {"NothingAtTheFlashMinimum", 0x800, 0, two_types},
    {"NothingInFlash", 0x1000, 0, "attempting to write 0 bytes"},
    {"NothingInEeprom", 0x8010, 0, "attempting to write 0 bytes"},
    {"LessThanAFlashRow", 0x1000, 0x3F, "num_bytes must be exactly row_size (64)"},
    {"TwoFlashRows", 0x1000, 0x80, "num_bytes must be exactly row_size (64)"},
    {"LessThanAnEepromRow", 0x8000, 0x0F, "num_bytes must be a multiple of row_size (16)"},
    {"MoreThanAnEepromRow", 0x8000, 0x11, "num_bytes must be a multiple of row_size (16)"},
    {"FlashBesideItsRows", 0x1010, 0x40, "address must be a multiple of row_size (64)"},
    {"EepromBesideItsRows", 0x8008, 0x10, "address must be a multiple of row_size (16)"},
    {"WrongLengthBesideItsRows", 0x1010, 0x41, "num_bytes must be exactly row_size (64)"},
};

class WriteMemoryRefusals : public testing::TestWithParam<RefusedWrite>
{
};

struct WrittenMemory {
    const char* name;
    const char* device;
    unsigned int address;
    int num_bytes;
    const char* command; ///< without the data
};

const WrittenMemory writes[] = {
    {"FirstFlashRow", "sample", 0x800, 0x40, "02 01 00 04 00"},
    {"LastFlashRow", "sample", 0x3FC0, 0x40, "02 01 E0 1F 00"},
    {"EepromRow", "sample", 0x8010, 0x10, "05 10 10 00 00"},
    {"LastEepromRow", "sample", 0x80F0, 0x10, "05 10 F0 00 00"},
    {"TwoEepromRowsWithTheCountOfOne", "sample", 0x8000, 0x20, "05 10 00 00 00"},
    {"AllOfEeprom", "sample", 0x8000, 0x100, "05 10 00 00 00"},
    {"FlashWithDivisor1", "swapped-divisors", 0x1040, 0x40, "02 01 40 10 00"},
    {"EepromWithDivisor2", "swapped-divisors", 0x8010, 0x10, "05 08 08 00 00"},
    {"FlashRowOfManyWords", "long-rows", 0x900, 0x240, "02 01 00 09 00"},
};

class WriteMemoryCommands : public testing::TestWithParam<WrittenMemory>
{
};

} // namespace

TEST_P(WriteMemoryRefusals, SayWhyAndSendNothing)
{
    const RefusedWrite& row = GetParam();
    DeviceOnLine line("sample");
    EXPECT_FALSE(line.device.write_memory(row.address, counting(row.num_bytes)));
    EXPECT_THAT(line.recorder.lines(), ElementsAre(std::string("sig_error ") + row.message));
    EXPECT_FALSE(line.port.is_open());
}

INSTANTIATE_TEST_SUITE_P(, WriteMemoryRefusals, testing::ValuesIn(refused_writes), row_name);

TEST_P(WriteMemoryCommands, HoldCountWordAddressAndBytes)
{
    const WrittenMemory& row = GetParam();
    DeviceOnLine line(row.device);
    const QByteArray data = counting(row.num_bytes, 3);
    EXPECT_TRUE(line.device.write_memory(row.address, data));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes(row.command) + data)));
    EXPECT_EQ(line.simulated.memory().read(row.address, static_cast<unsigned int>(row.num_bytes)),
              data);
    EXPECT_THAT(line.recorder.operation(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, WriteMemoryCommands, testing::ValuesIn(writes), row_name);

TEST(WriteMemory, OfMoreThanCanBeHeldIsRefused)
{
    DeviceOnLine line("huge-eeprom");
    EXPECT_FALSE(line.device.write_memory(0x20000000, QByteArray(0x3FFFFF10, Qt::Uninitialized)));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error unusable geometry in device profile 'huge-eeprom': "
                            "eeprom_end_address is 1879048192, expected 0 to 1610612480"));
    EXPECT_FALSE(line.port.is_open());
}

TEST(WriteMemory, SendsTheLower24BitsOfTheWordAddress)
{
    DeviceOnLine line("high-flash");
    line.simulated.set_reply_filter(acknowledge_everything());
    EXPECT_TRUE(line.device.write_memory(0x2345640, counting(0x40)));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 40 56 34") + counting(0x40))));
}

TEST(WriteMemory, SendsTheLower8BitsOfAnEepromRowsWords)
{
    DeviceOnLine line("long-rows");
    line.simulated.set_reply_filter(acknowledge_everything());
    EXPECT_TRUE(line.device.write_memory(0x8000, counting(0x100)));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("05 00 00 00 00") + counting(0x100))));
}

TEST(WriteMemory, FailsInSilenceWhenTheAcknowledgementIsAnotherByte)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(first({frame_of("05"), frame_of("02"), frame_of("00")}));
    EXPECT_FALSE(line.device.write_memory(0x1000, counting(0x40)));
    EXPECT_FALSE(line.device.write_memory(0x8000, counting(0x10)));
    EXPECT_FALSE(line.device.write_memory(0x8000, counting(0x10)));
    EXPECT_EQ(line.sent().size(), 3U);
    EXPECT_THAT(line.recorder.operation(), IsEmpty());
}

TEST(WriteMemory, IsTriedFortyTimes)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(always(frame_of("02 02")));
    EXPECT_FALSE(line.device.write_memory(0x1000, counting(0x40)));
    EXPECT_EQ(line.sent(),
              std::vector<std::string>(40, hex(bytes("02 01 00 08 00") + counting(0x40))));
    EXPECT_EQ(line.recorder.operation().size(), 1U);
}

TEST(WriteMemory, FailsWithThePort)
{
    ZarnSerialDevice device(QStringLiteral("/dev/no-such-port"), nullptr, 9600, false,
                            version_named("sample"));
    const SignalRecorder recorder(device);
    EXPECT_FALSE(device.write_memory(0x1000, counting(0x40)));
    ASSERT_EQ(recorder.lines().size(), 1U);
    EXPECT_EQ(recorder.lines().front().find("sig_error cannot open port no-such-port ("), 0U);
}
