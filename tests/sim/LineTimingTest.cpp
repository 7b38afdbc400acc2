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
    EXPECT_THAT(slices(7, 100, 0), ElementsAre(Slice{0, 100, 7, true}));
}

TEST(SimLineTiming, SendsSlowBytesOneByOneWithoutAddingUpRoundings)
{
    EXPECT_THAT(slices(1000, 3, 9600),
                ElementsAre(Slice{0, 1, 1000 + 1041666, false}, Slice{1, 1, 1000 + 2083333, false},
                            Slice{2, 1, 1000 + 3125000, true}));
}

TEST(SimLineTiming, SendsFastBytesInSlicesThatEndInTimeAndTheLastInFinerOnes)
{
    EXPECT_THAT(slices(0, 40, 115200),
                ElementsAre(Slice{0, 11, 954861, false}, Slice{11, 11, 1909722, false},
                            Slice{22, 11, 2864583, false}, Slice{33, 5, 3298611, false},
                            Slice{38, 1, 3385416, true}, Slice{39, 1, 3472222, true}));
}

TEST(SimLineTiming, SendsAShortAnswerInFineSlicesThatEndWithAFullOne)
{
    EXPECT_THAT(slices(0, 5, 460800),
                ElementsAre(Slice{0, 1, 21701, true}, Slice{1, 4, 108506, true}));
    EXPECT_THAT(slices(0, 8, 460800),
                ElementsAre(Slice{0, 4, 86805, true}, Slice{4, 4, 173611, true}));
}

TEST(SimLineTiming, CutsNothingIntoNothing)
{
    EXPECT_THAT(slices(0, 0, 9600), IsEmpty());
    EXPECT_THAT(slices(0, 0, 0), IsEmpty());
}
