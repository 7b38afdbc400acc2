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

struct EraseRange {
    const char* name;
    const char* device;
    bool include_encrypted;
    bool include_unencrypted;
    unsigned int start;
    unsigned int end;
    std::vector<std::string> commands;
};

const EraseRange range_erases[] = {
    {"FirstPage", "sample", true, true, 0x800, 0x9FF, {"03 01 00 04 00"}},
    {"StartWithinAPage", "sample", true, true, 0x9FF, 0xBFF, {"03 02 00 04 00"}},
    {"EndOnAPageBoundaryTakesThatPageToo", "sample", true, true, 0x800, 0xC00, {"03 03 00 04 00"}},
    {"OneAddress", "sample", true, true, 0x800, 0x800, {"03 01 00 04 00"}},
    {"AboveTheMinimumIsAddressedAtTheMinimum",
     "sample",
     true,
     true,
     0x2400,
     0x27FF,
     {"03 02 00 04 00"}},
    {"EndOfFlashTakesAPageThatIsNotThere",
     "sample",
     true,
     true,
     0x3C00,
     0x4000,
     {"03 03 00 04 00"}},
    {"ARunAfterAnExcludedPageFollowsTheRange",
     "sample",
     true,
     false,
     0xE00,
     0x21FF,
     {"03 01 00 04 00", "03 01 00 10 00"}},
    {"ARangeThatBeginsWithAnExcludedPage",
     "sample",
     false,
     true,
     0xE00,
     0x11FF,
     {"03 01 00 08 00"}},
    {"ARangeThatEndsWithExcludedPages", "sample", false, true, 0x1E00, 0x23FF, {"03 01 00 04 00"}},
    {"ExcludedPagesOnly", "sample", false, true, 0x2000, 0x2FFF, {}},
    {"BothAreasExcluded", "sample", false, false, 0x800, 0x3FFF, {}},
    {"EndBeforeStart", "sample", true, true, 0x2000, 0x1000, {}},
    {"EndBeforeStartInOnePage", "sample", true, true, 0x1100, 0x1000, {"03 01 00 04 00"}},
    {"StepIsThePageSizeWhateverTheWords",
     "swapped-divisors",
     true,
     true,
     0x800,
     0xBFF,
     {"03 02 00 08 00"}},
    {"Exactly255Pages", "many-pages", true, true, 0x1000, 0x1FEF, {"03 FF 00 10 00"}},
    {"Exactly256Pages",
     "many-pages",
     true,
     true,
     0x1000,
     0x1FFF,
     {"03 FF 00 10 00", "03 01 F0 1F 00"}},
    {"ARunAfterAFullOneFollowsTheRange",
     "many-pages",
     true,
     true,
     0x1010,
     0x22BF,
     {"03 FF 00 10 00", "03 2C 00 20 00"}},
};

class EraseRangeRuns : public testing::TestWithParam<EraseRange>
{
};

struct OutOfBounds {
    const char* name;
    unsigned int start;
    unsigned int end;
    const char* message;
};

const OutOfBounds out_of_bounds[] = {
    {"StartInTheBootloader", 0x7FF, 0x1000,
     "unable to erase at 000007FF below min flash address 0x000007FF"},
    {"EndBeyondFlash", 0x800, 0x4001,
     "unable to erase at 00004001 above max flash address 0x00004001"},
    {"StartIsLookedAtFirst", 0, 0xFFFFFFFF,
     "unable to erase at 00000000 below min flash address 0x00000000"},
    {"EndInEeprom", 0x800, 0x8000,
     "unable to erase at 00008000 above max flash address 0x00008000"},
};

class EraseRangeOutOfBounds : public testing::TestWithParam<OutOfBounds>
{
};

} // namespace

TEST_P(EraseRangeRuns, TakeOneCommandEach)
{
    const EraseRange& row = GetParam();
    DeviceOnLine line(row.device);
    EXPECT_TRUE(line.device.erase_range(row.include_encrypted, row.include_unencrypted, row.start,
                                        row.end));
    EXPECT_EQ(line.sent(), row.commands);
    EXPECT_THAT(line.recorder.operation(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, EraseRangeRuns, testing::ValuesIn(range_erases), row_name);

TEST_P(EraseRangeOutOfBounds, IsReportedWithTheOffendingAddressAtBothPlaces)
{
    const OutOfBounds& row = GetParam();
    DeviceOnLine line("sample");
    EXPECT_FALSE(line.device.erase_range(true, true, row.start, row.end));
    EXPECT_THAT(line.recorder.lines(), ElementsAre(std::string("sig_error ") + row.message));
    EXPECT_FALSE(line.port.is_open());
}

INSTANTIATE_TEST_SUITE_P(, EraseRangeOutOfBounds, testing::ValuesIn(out_of_bounds), row_name);

TEST(EraseRange, LogsNothing)
{
    DeviceOnLine line("sample");
    const DebugMessages messages;
    EXPECT_TRUE(line.device.erase_range(true, true, 0x800, 0x9FF));
    EXPECT_THAT(messages.texts(), IsEmpty());
}

TEST(EraseRange, FailsWithTheRunAsItWasAddressed)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(always(frame_of("00")));
    EXPECT_FALSE(line.device.erase_range(true, true, 0x2400, 0x27FF));
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_error unable to erase 2 flash pages at address 0x00000800"));
}
