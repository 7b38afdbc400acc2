#include "sim/LineTiming.h"

#include <gmock/gmock.h>

using sim::line_time_ns;
using sim::Slice;
using sim::slices;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr qint64 ms = 1000000;

} // namespace

TEST(SimLineTiming, GivesEveryByteTenBits)
{
    EXPECT_EQ(line_time_ns(1, 9600), 1041666);
    EXPECT_EQ(line_time_ns(960, 9600), 1000 * ms);
    EXPECT_EQ(line_time_ns(46, 460800), 998263);
    EXPECT_EQ(line_time_ns(0, 9600), 0);
}

TEST(SimLineTiming, TakesNoTimeOnALineThatIsHungUp)
{
    EXPECT_EQ(line_time_ns(100, 0), 0);
    EXPECT_THAT(slices(7, 100, 0, ms), ElementsAre(Slice{0, 100, 7}));
}

TEST(SimLineTiming, SendsSlowBytesOneByOneWithoutAddingUpRoundings)
{
    EXPECT_THAT(slices(1000, 3, 9600, ms),
                ElementsAre(Slice{0, 1, 1000 + 1041666}, Slice{1, 1, 1000 + 2083333},
                            Slice{2, 1, 1000 + 3125000}));
}

TEST(SimLineTiming, SendsFastBytesInSlicesThatEndInTime)
{
    const auto all = slices(0, 40, 115200, ms);
    EXPECT_THAT(std::vector(all.begin(), all.begin() + 3),
                ElementsAre(Slice{0, 11, 954861}, Slice{11, 11, 1909722}, Slice{22, 7, 2517361}));
}

TEST(SimLineTiming, SendsTheBytesOfTheLastMillisecondOneByOne)
{
    const auto all = slices(0, 40, 115200, ms);
    ASSERT_EQ(all.size(), 3U + 11U);
    EXPECT_EQ(all.at(3), (Slice{29, 1, 2604166}));
    EXPECT_EQ(all.back(), (Slice{39, 1, 3472222}));
    EXPECT_THAT(slices(0, 3, 460800, ms),
                ElementsAre(Slice{0, 1, 21701}, Slice{1, 1, 43402}, Slice{2, 1, 65104}));
}

TEST(SimLineTiming, CutsNothingIntoNothing)
{
    EXPECT_THAT(slices(0, 0, 9600, ms), IsEmpty());
    EXPECT_THAT(slices(0, 0, 0, ms), IsEmpty());
}
