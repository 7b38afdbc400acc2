#include "app/CommandLine.h"
#include "tests/app/CanOpen.h"
#include "tests/app/SettingsText.h"
#include "tests/support/RowName.h"

#include <gtest/gtest.h>

using namespace test;

// The words after an option are its arguments, even those that are options themselves.

namespace
{

const QStringList& option_names()
{
    static const QStringList names = QStringLiteral("-h -b -V -M -B -w -W -r -l -E -v -wv -R -e "
                                                    "-xe -xu -s -x")
                                         .split(QLatin1Char(' '));
    return names;
}

/// An option that takes a name, the arguments before that name, and the settings that receive it.
struct Taker {
    const char* name;
    QStringList before;
    void (*take)(Settings&, const QString&);
};

const Taker takers[] = {
    {"Write",
     {QStringLiteral("-w")},
     [](Settings& settings, const QString& name) {
         settings.write_wanted = true;
         settings.write_file = name;
     }},
    {"LimitedWrite",
     {QStringLiteral("-W"), QStringLiteral("1"), QStringLiteral("2")},
     [](Settings& settings, const QString& name) {
         settings.write_range_wanted = true;
         settings.write_range = {1, 2};
         settings.write_file = name;
     }},
    {"Read",
     {QStringLiteral("-r")},
     [](Settings& settings, const QString& name) {
         settings.read_wanted = true;
         settings.read_file = name;
     }},
    {"LimitedRead",
     {QStringLiteral("-l"), QStringLiteral("1"), QStringLiteral("2")},
     [](Settings& settings, const QString& name) {
         settings.read_range_wanted = true;
         settings.read_range = {1, 2};
         settings.read_file = name;
     }},
    {"Verify",
     {QStringLiteral("-v")},
     [](Settings& settings, const QString& name) {
         settings.verify_wanted = true;
         settings.verify_file = name;
     }},
    {"WriteAndVerify",
     {QStringLiteral("-wv")},
     [](Settings& settings, const QString& name) {
         settings.write_and_verify_wanted = true;
         settings.write_and_verify_file = name;
     }},
    {"Port",
     {QStringLiteral("-s")},
     [](Settings& settings, const QString& name) {
         settings.port_name = name;
     }},
    {"Log",
     {QStringLiteral("-x")},
     [](Settings& settings, const QString& name) {
         settings.log_file = name;
     }},
};

class OptionThatTakesAName : public testing::TestWithParam<Taker>
{
};

/// An option that takes numbers, the arguments before one that is not a number, and the message.
struct NumberTaker {
    const char* name;
    QStringList before;
    const char* refusal;
    bool shows_the_argument = false;
};

const char* const lower_write =
    "Could not parse lower write word address, please use 0x12 hex or 1231 decimal, aborting...\n";
const char* const upper_write =
    "Could not parse upper write word address, please use 0x12 hex or 1231 decimal, aborting...\n";
const char* const lower_read =
    "Could not parse lower read word address, please use 0x12 hex or 1231 decimal, aborting...\n0";
const char* const upper_read =
    "Could not parse upper read word address, please use 0x12 hex or 1231 decimal, aborting...\n";
const char* const lower_erase =
    "Could not parse lower erase word address, please use 0x12 hex or 1231 decimal, aborting...\n";
const char* const upper_erase =
    "Could not parse upper erase word address, please use 0x12 hex or 1231 decimal, aborting...\n";

const NumberTaker number_takers[] = {
    {"Baud",
     {QStringLiteral("-M")},
     "Please specify -M suggested baud rate in decimal (9600), you passed ",
     true},
    {"Version", {QStringLiteral("-B")}, "Please specify -B version in hex (0x16) or decimal (22)"},
    {"WriteFrom", {QStringLiteral("-W")}, lower_write},
    {"WriteTo", {QStringLiteral("-W"), QStringLiteral("1")}, upper_write},
    {"ReadFrom", {QStringLiteral("-l")}, lower_read},
    {"ReadTo", {QStringLiteral("-l"), QStringLiteral("1")}, upper_read},
    {"EraseFrom", {QStringLiteral("-E")}, lower_erase},
    {"EraseTo", {QStringLiteral("-E"), QStringLiteral("1")}, upper_erase},
};

class OptionThatTakesANumber : public testing::TestWithParam<NumberTaker>
{
};

} // namespace

TEST_P(OptionThatTakesAName, TakesThatOfAnyOption)
{
    for (const QString& option : option_names()) {
        Settings expected;
        GetParam().take(expected, option);
        Settings settings;
        const auto outcome = command_line::scan(GetParam().before + QStringList(option),
                                                can_open_anything, settings);
        EXPECT_FALSE(outcome.has_value()) << option.toStdString();
        EXPECT_EQ(text_of(settings), text_of(expected)) << option.toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(, OptionThatTakesAName, testing::ValuesIn(takers), row_name);

TEST_P(OptionThatTakesANumber, RefusesThatOfAnyOption)
{
    for (const QString& option : option_names()) {
        Settings settings;
        // Enough words after it for any option.
        const QStringList line =
            GetParam().before + QStringList{option, QStringLiteral("3"), QStringLiteral("4")};
        const auto outcome = command_line::scan(line, can_open_anything, settings);
        ASSERT_TRUE(outcome.has_value()) << option.toStdString();
        EXPECT_EQ(outcome->message.toStdString(),
                  GetParam().refusal +
                      (GetParam().shows_the_argument ? option.toStdString() : std::string()));
    }
}

INSTANTIATE_TEST_SUITE_P(, OptionThatTakesANumber, testing::ValuesIn(number_takers), row_name);
