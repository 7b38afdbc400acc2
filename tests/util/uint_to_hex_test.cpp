#include "tests/support/RowName.h"
#include "util/Util.h"

#include <gtest/gtest.h>

#include <limits>

using namespace test;

namespace
{

struct HexCase {
    const char* name;
    unsigned int value;
    signed char width;
    const char* text;
};

class UintToHex : public testing::TestWithParam<HexCase>
{
};

TEST_P(UintToHex, PadsToItsWidthAndNeverCuts)
{
    const HexCase& c = GetParam();
    EXPECT_EQ(Util::uint_to_hex(c.value, c.width), QLatin1String(c.text));
}

constexpr unsigned int largest = std::numeric_limits<unsigned int>::max();

INSTANTIATE_TEST_SUITE_P(Table, UintToHex,
                         testing::Values(HexCase{"FullWidth", 0x1A, -1, "0000001A"},
                                         HexCase{"FullWidthOfZero", 0, -1, "00000000"},
                                         HexCase{"FullWidthOfLargest", largest, -1, "FFFFFFFF"},
                                         HexCase{"FourDigits", 0x1A, 4, "001A"},
                                         HexCase{"ExactFit", 0xABCD, 4, "ABCD"},
                                         HexCase{"WiderThanWidth", 0x12345, 2, "12345"},
                                         HexCase{"NoWidth", 0, 0, "0"},
                                         HexCase{"OtherNegativeWidth", 0xAB, -2, "AB"}),
                         row_name);

TEST(UintToHexTypes, FullWidthFollowsTheType)
{
    EXPECT_EQ(Util::uint_to_hex(static_cast<unsigned char>(0xA), -1), QLatin1String("0A"));
    EXPECT_EQ(Util::uint_to_hex(static_cast<unsigned short>(0xA), -1), QLatin1String("000A"));
    EXPECT_EQ(Util::uint_to_hex(0xAULL, -1), QLatin1String("000000000000000A"));
}

} // namespace
