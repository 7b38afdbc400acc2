#include "sim/line/LineTiming.h"
#include "tests/sim/Milliseconds.h"

#include <gmock/gmock.h>

using namespace test;
using sim::line_time_ns;
using sim::Slice;
using sim::slices;
using testing::ElementsAre;
using testing::IsEmpty;

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
                ElementsAre(Slice{0, 5, 434027, false}, Slice{5, 11, 1388888, false},
                            Slice{16, 11, 2343750, false}, Slice{27, 11, 3298611, false},
                            Slice{38, 1, 3385416, true}, Slice{39, 1, 3472222, true}));
}

TEST(SimLineTiming, LeavesOutNothingAtAnyRate)
{
    for (const unsigned int baud : {1U, 50U, 300U, 9600U, 57600U, 115200U, 460800U, 4000000U}) {
        for (int count = 1; count <= 600; ++count) {
            SCOPED_TRACE(testing::Message() << count << " bytes at " << baud);
            Slice before{0, 0, 5, false};
            for (const Slice& slice : slices(5, count, baud)) {
                ASSERT_EQ(slice.offset, before.offset + before.count);
                ASSERT_GE(slice.count, 1);
                ASSERT_EQ(slice.due_ns, 5 + line_time_ns(slice.offset + slice.count, baud));
                ASSERT_GE(slice.ending, before.ending);
                before = slice;
            }
            ASSERT_EQ(before.offset + before.count, count);
            ASSERT_TRUE(before.ending);
        }
    }
}

// A slice: offset, bytes, due time in nanoseconds, whether it is among the last. A byte takes 21.7
// us.
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
