#include "sim/line/LineUse.h"

#include <gtest/gtest.h>

TEST(SimLineUse, IsNothingBeforeAnythingHasPassed)
{
    sim::LineUse use;
    EXPECT_EQ(use.busy_ns(), 0);
    EXPECT_EQ(use.span_ns(), 0);
    use.add(10, 500);
    EXPECT_EQ(use.span_ns(), 0);
}

TEST(SimLineUse, SpansFromTheFirstByteToTheLastOneThatPassed)
{
    sim::LineUse use;
    use.add(10, 500);
    use.pass(511);
    use.add(20, 530);
    use.pass(556);
    EXPECT_EQ(use.busy_ns(), 30);
    EXPECT_EQ(use.span_ns(), 56);
}
