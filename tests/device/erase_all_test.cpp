#include "tests/support/Bytes.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

struct EraseAll {
    const char* name;
    const char* device;
    bool include_encrypted;
    bool include_unencrypted;
    std::vector<std::string> commands;
};

// Of the sample's flash, 0x800 to 0x4000, the part from 0x1000 to 0x2000 is unencrypted.
const EraseAll whole_erases[] = {
    {"Everything", "sample", true, true, {"03 0E 00 04 00"}},
    {"AroundTheUnencryptedArea", "sample", true, false, {"03 02 00 04 00", "03 08 00 10 00"}},
    {"TheUnencryptedAreaOnly", "sample", false, true, {"03 04 00 08 00"}},
    {"Nothing", "sample", false, false, {}},
    {"EverythingWithDivisor1", "swapped-divisors", true, true, {"03 1C 00 08 00"}},
    {"RunsOf255AndTheRest", "many-pages", true, true, {"03 FF 00 10 00", "03 2D F0 1F 00"}},
    {"AllUnencrypted", "many-pages", true, false, {}},
    {"NoFlashAfterTheBootloader", "no-flash-range", true, true, {}},
};

class EraseAllRuns : public testing::TestWithParam<EraseAll>
{
};

} // namespace

TEST_P(EraseAllRuns, TakeOneCommandEach)
{
    const EraseAll& row = GetParam();
    DeviceOnLine line(row.device);
    EXPECT_TRUE(line.device.erase_all(row.include_encrypted, row.include_unencrypted));
    EXPECT_EQ(line.sent(), row.commands);
    EXPECT_THAT(line.recorder.operation(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, EraseAllRuns, testing::ValuesIn(whole_erases), row_name);

TEST(EraseAll, LogsLimitsAndStep)
{
    DeviceOnLine line("sample");
    const DebugMessages messages;
    EXPECT_TRUE(line.device.erase_all(true, true));
    EXPECT_THAT(messages.texts(),
                ElementsAre(QStringLiteral("Min:  2048  max:  16384  page: 1024")));
}

TEST(EraseAll, LogsLimitsAndStepEvenWithNothingToErase)
{
    DeviceOnLine line("no-flash-range");
    const DebugMessages messages;
    EXPECT_TRUE(line.device.erase_all(true, true));
    EXPECT_THAT(messages.texts(),
                ElementsAre(QStringLiteral("Min:  16384  max:  16384  page: 1024")));
    EXPECT_FALSE(line.port.is_open());
}

TEST(EraseAll, ErasesTheDevicesPages)
{
    DeviceOnLine line("many-pages");
    line.simulated.memory().preset(0x1000, QByteArray(0x12C0, '\0'));
    line.simulated.memory().preset(0x0FF0, QByteArray(0x10, '\0'));
    EXPECT_TRUE(line.device.erase_all(true, true));
    EXPECT_EQ(line.simulated.memory().statistics().pages_erased, 300U);
    const auto left = line.simulated.memory().programmed_ranges();
    ASSERT_EQ(left.size(), 1U);
    EXPECT_EQ(left.front().address, 0x0FF0U);
    EXPECT_EQ(left.front().bytes, QByteArray(0x10, '\0'));
}

TEST(EraseAll, EndsAtTheFirstRunThatFails)
{
    DeviceOnLine line("many-pages");
    line.simulated.set_reply_filter(always(frame_of("02")));
    EXPECT_FALSE(line.device.erase_all(true, true));
    EXPECT_THAT(line.sent(), ElementsAre("03 FF 00 10 00"));
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_error unable to erase 255 flash pages at address 0x00001000"));
}

TEST(EraseAll, FailsWithALaterRun)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(to_command(1, frame_of("00")));
    EXPECT_FALSE(line.device.erase_all(true, false));
    EXPECT_THAT(line.sent(), ElementsAre("03 02 00 04 00", "03 08 00 10 00"));
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_error unable to erase 8 flash pages at address 0x00002000"));
}

TEST(EraseAll, FailsWithARunBeforeExcludedPages)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(to_command(0, frame_of("00")));
    EXPECT_FALSE(line.device.erase_all(true, false));
    EXPECT_THAT(line.sent(), ElementsAre("03 02 00 04 00"));
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_error unable to erase 2 flash pages at address 0x00000800"));
}

TEST(EraseAll, ReportsWhyARunCouldNotBeSentAndThatItWasNot)
{
    DeviceOnLine line("split-page");
    EXPECT_FALSE(line.device.erase_all(true, true));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error address must be a multiple of 512",
                            "sig_error unable to erase 14 flash pages at address 0x00000810"));
    EXPECT_FALSE(line.port.is_open());
}

TEST(EraseAll, ReportsWhyADeviceWasGivenUpAndWhatWasNotErased)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(always(frame_of("03 03")));
    EXPECT_FALSE(line.device.erase_all(true, true));
    ASSERT_EQ(line.recorder.operation().size(), 2U);
    EXPECT_EQ(line.recorder.operation().front().find("sig_error giving up after having made 40"),
              0U);
    EXPECT_EQ(line.recorder.operation().back(),
              "sig_error unable to erase 14 flash pages at address 0x00000800");
}
