#include "app/CommandLine.h"
#include "tests/app/CanOpen.h"
#include "tests/app/SettingsText.h"
#include "tests/app/Words.h"
#include "tests/support/RowName.h"

#include <gtest/gtest.h>

using namespace test;

// The three options that take two word addresses, each with every notation of a number.

namespace
{

/// An option that takes two addresses, and its name in messages.
struct RangeOption {
    const char* name;
    const char* option;
    const char* file; ///< empty for one that takes none
    const char* operation;
    const char* value_after_a_bad_lower_address;
    void (*set)(Settings&, TypedRange);
};

const RangeOption range_options[] = {
    {"Write", "-W", " fw.hex", "write", "",
     [](Settings& settings, TypedRange range) {
         settings.write_range_wanted = true;
         settings.write_range = range;
         settings.write_file = QStringLiteral("fw.hex");
     }},
    {"Read", "-l", " fw.hex", "read", "0",
     [](Settings& settings, TypedRange range) {
         settings.read_range_wanted = true;
         settings.read_range = range;
         settings.read_file = QStringLiteral("fw.hex");
     }},
    {"Erase", "-E", "", "erase", "",
     [](Settings& settings, TypedRange range) {
         settings.erase_range_wanted = true;
         settings.erase_range = range;
     }},
};

class AddressesOf : public testing::TestWithParam<RangeOption>
{
protected:
    static QStringList line(const std::string& lower, const std::string& upper)
    {
        const RangeOption& option = GetParam();
        return words(
            (std::string(option.option) + ' ' + lower + ' ' + upper + option.file).c_str());
    }

    static void expect_range(const std::string& lower, const std::string& upper, TypedRange range)
    {
        Settings expected;
        GetParam().set(expected, range);
        Settings settings;
        EXPECT_FALSE(
            command_line::scan(line(lower, upper), can_open_anything, settings).has_value());
        EXPECT_EQ(text_of(settings), text_of(expected)) << lower << ' ' << upper;
    }

    static std::string refusal(const std::string& lower, const std::string& upper)
    {
        Settings settings;
        const auto outcome = command_line::scan(line(lower, upper), can_open_anything, settings);
        return outcome ? outcome->message.toStdString() : "accepted";
    }

    static std::string could_not_parse(const char* bound)
    {
        return std::string("Could not parse ") + bound + ' ' + GetParam().operation +
               " word address, please use 0x12 hex or 1231 decimal, aborting...\n";
    }
};

} // namespace

TEST_P(AddressesOf, MayBeDecimalHexadecimalOrOctal)
{
    expect_range("18", "31", {18, 31});
    expect_range("0x1f", "0x2A", {0x1F, 0x2A});
    expect_range("0X1f", "0X2A", {0x1F, 0x2A});
    expect_range("017", "020", {15, 16});
    expect_range("0", "00", {0, 0});
    expect_range("0x0", "037777777777", {0, 0xFFFFFFFF});
    expect_range("4294967295", "0XFFFFFFFF", {0xFFFFFFFF, 0xFFFFFFFF});
}

TEST_P(AddressesOf, MayBeTheWrongWayRound)
{
    expect_range("2", "1", {2, 1});
    expect_range("0xFFFFFFFF", "0", {0xFFFFFFFF, 0});
}

TEST_P(AddressesOf, MustBeNumbersOf32Bits)
{
    for (const char* number :
         {"08", "0x", "0X1G", "1F", "4294967296", "0X100000000", "040000000000", "-1", "-e"}) {
        EXPECT_EQ(refusal(number, "1"),
                  could_not_parse("lower") + GetParam().value_after_a_bad_lower_address)
            << number;
        EXPECT_EQ(refusal("1", number), could_not_parse("upper")) << number;
    }
}

TEST_P(AddressesOf, AreRefusedForTheLowerOneWhenBothAreBad)
{
    EXPECT_EQ(refusal("low", "high"),
              could_not_parse("lower") + GetParam().value_after_a_bad_lower_address);
}

INSTANTIATE_TEST_SUITE_P(RangeOption, AddressesOf, testing::ValuesIn(range_options), row_name);
