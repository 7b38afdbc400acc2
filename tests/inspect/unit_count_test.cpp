#include "inspect/UnitCount.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <vector>

using inspect::UnitCount;

TEST(UnitCount, CountsWholeUnits)
{
    UnitCount rows(16);
    rows.add(32, 96);
    EXPECT_EQ(rows.touched(), 4U);
    EXPECT_EQ(rows.partial(), 0U);
}

TEST(UnitCount, CountsAUnitThatTwoRangesShareOnce)
{
    UnitCount rows(16);
    rows.add(0, 4);
    rows.add(8, 12);
    EXPECT_EQ(rows.touched(), 1U);
    EXPECT_EQ(rows.partial(), 1U);
}

TEST(UnitCount, JoinsRangesThatFillAUnitTogether)
{
    UnitCount rows(16);
    rows.add(0, 4);
    rows.add(4, 16);
    EXPECT_EQ(rows.touched(), 1U);
    EXPECT_EQ(rows.partial(), 0U);
}

TEST(UnitCount, OfUnitsWithoutSizeCountsNothing)
{
    UnitCount rows(0);
    rows.add(0, 100);
    EXPECT_EQ(rows.touched(), 0U);
    EXPECT_EQ(rows.partial(), 0U);
}

TEST(UnitCount, AgreesWithCountingByteByByte)
{
    std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp)
    for (int round = 0; round < 500; ++round) {
        const quint64 size = 1 + random() % 20;
        UnitCount units(size);
        std::vector<unsigned int> filled(400);
        for (quint64 at = random() % 30; at < 300;) {
            const quint64 end = at + 1 + random() % 50;
            units.add(at, end);
            for (quint64 byte = at; byte < end; ++byte) {
                ++filled.at(byte / size);
            }
            at = end + random() % 30;
        }
        quint64 touched = 0;
        quint64 partial = 0;
        for (const unsigned int bytes : filled) {
            touched += bytes != 0 ? 1 : 0;
            partial += bytes != 0 && bytes != size ? 1 : 0;
        }
        ASSERT_EQ(units.touched(), touched);
        ASSERT_EQ(units.partial(), partial);
    }
}
