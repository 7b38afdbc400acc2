#include "sim/line/Lateness.h"

#include <gtest/gtest.h>

TEST(SimLateness, IsNothingBeforeAnythingWasTimed)
{
    const sim::Lateness lateness;
    EXPECT_EQ(lateness.count(), 0);
    EXPECT_EQ(lateness.mean_ns(), 0);
    EXPECT_EQ(lateness.most_ns(), 0);
}

TEST(SimLateness, KnowsItsMeanAndItsMost)
{
    sim::Lateness lateness;
    for (const int late : {10, 40, 10}) {
        lateness.add(late);
    }
    EXPECT_EQ(lateness.count(), 3);
    EXPECT_EQ(lateness.mean_ns(), 20);
    EXPECT_EQ(lateness.most_ns(), 40);
}
