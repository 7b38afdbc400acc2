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

struct Refused {
    const char* name;
    unsigned int address;
    const char* message;
};

// The sample has flash from 0x800 to 0x4000 in pages of 512 bytes.
const Refused refused[] = {
    {"Address0", 0, "address < 0x00000800"},
    {"LastPageOfTheBootloader", 0x600, "address < 0x00000800"},
    {"BesideThePagesOfTheBootloader", 0x7FF, "address < 0x00000800"},
    {"EndOfFlash", 0x4000, "address + page_size > 0x00004000"},
    {"BeyondFlashBesideItsPages", 0x3E01, "address + page_size > 0x00004000"},
    {"Eeprom", 0x8000, "address + page_size > 0x00004000"},
    {"BesideThePages", 0x1001, "address must be a multiple of 512"},
    {"HalfAPageOn", 0x1100, "address must be a multiple of 512"},
};

class EraseFlashRefusals : public testing::TestWithParam<Refused>
{
};

struct Erase {
    const char* name;
    const char* device;
    unsigned int address;
    unsigned char count;
    const char* command;
};

const Erase erases[] = {
    {"FirstPage", "sample", 0x800, 1, "03 01 00 04 00"},
    {"LastPage", "sample", 0x3E00, 1, "03 01 00 1F 00"},
    {"FourPagesOfWhichOnlyTheFirstIsThere", "sample", 0x3E00, 4, "03 04 00 1F 00"},
    {"AsManyAsFitTheCount", "sample", 0x800, 255, "03 FF 00 04 00"},
    {"Divisor1", "swapped-divisors", 0x1200, 2, "03 02 00 12 00"},
};

class EraseFlashCommands : public testing::TestWithParam<Erase>
{
};

} // namespace

TEST_P(EraseFlashRefusals, SayWhyAndSendNothing)
{
    DeviceOnLine line("sample");
    EXPECT_FALSE(line.device.erase_flash(GetParam().address, 1));
    EXPECT_THAT(line.recorder.lines(), ElementsAre(std::string("sig_error ") + GetParam().message));
    EXPECT_FALSE(line.port.is_open());
}

INSTANTIATE_TEST_SUITE_P(, EraseFlashRefusals, testing::ValuesIn(refused), row_name);

TEST_P(EraseFlashCommands, HoldCountAndWordAddress)
{
    const Erase& row = GetParam();
    DeviceOnLine line(row.device);
    line.simulated.memory().preset(row.address, counting(0x200));
    EXPECT_TRUE(line.device.erase_flash(row.address, row.count));
    EXPECT_THAT(line.sent(), ElementsAre(row.command));
    EXPECT_EQ(line.simulated.memory().read(row.address, 0x200), QByteArray(0x200, '\xFF'));
    EXPECT_THAT(line.recorder.operation(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, EraseFlashCommands, testing::ValuesIn(erases), row_name);

TEST(EraseFlash, SendsTheLower24BitsOfTheWordAddress)
{
    DeviceOnLine line("high-flash");
    line.simulated.set_reply_filter(acknowledge_everything());
    EXPECT_TRUE(line.device.erase_flash(0x2345600, 7));
    EXPECT_THAT(line.sent(), ElementsAre("03 07 00 56 34"));
}

TEST(EraseFlash, SendsEvenACountOfNothing)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(acknowledge_everything());
    EXPECT_TRUE(line.device.erase_flash(0x1000, 0));
    EXPECT_THAT(line.sent(), ElementsAre("03 00 00 08 00"));
}

TEST(EraseFlash, FailsInSilenceWhenTheAcknowledgementIsAnotherByte)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(always(frame_of("02")));
    EXPECT_FALSE(line.device.erase_flash(0x1000, 1));
    EXPECT_THAT(line.sent(), ElementsAre("03 01 00 08 00"));
    EXPECT_THAT(line.recorder.operation(), IsEmpty());
}

TEST(EraseFlash, IsTriedFortyTimes)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(always(frame_of("03 03")));
    EXPECT_FALSE(line.device.erase_flash(0x1000, 1));
    EXPECT_EQ(line.sent(), std::vector<std::string>(40, "03 01 00 08 00"));
    EXPECT_EQ(line.recorder.operation().size(), 1U);
}

TEST(EraseFlash, FailsWithThePort)
{
    ZarnSerialDevice device(QStringLiteral("/dev/no-such-port"), nullptr, 9600, false,
                            version_named("sample"));
    const SignalRecorder recorder(device);
    EXPECT_FALSE(device.erase_flash(0x1000, 1));
    ASSERT_EQ(recorder.lines().size(), 1U);
    EXPECT_EQ(recorder.lines().front().find("sig_error cannot open port no-such-port ("), 0U);
}
