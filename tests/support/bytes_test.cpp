#include "tests/support/Bytes.h"

#include <gtest/gtest.h>

using namespace test;

// What a failed comparison prints.

TEST(Bytes, AreShownAsDigits)
{
    EXPECT_EQ(testing::PrintToString(bytes("55 0a")), "[55 0A]");
}

TEST(Bytes, AreShownAsDigitsWithinAContainer)
{
    EXPECT_EQ(testing::PrintToString(std::vector<QByteArray>{bytes("55"), bytes("0A")}),
              "{ [55], [0A] }");
}
