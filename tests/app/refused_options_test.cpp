#include "app/CommandLine.h"
#include "tests/app/Refusals.h"
#include "tests/support/RowName.h"

#include <gtest/gtest.h>

using namespace test;

namespace
{

bool can_open_unless_nowhere(const QString& name)
{
    return !name.startsWith(QLatin1String("nowhere/"));
}

class RefusedOptions : public testing::TestWithParam<RefusedLine>
{
};

} // namespace

TEST_P(RefusedOptions, AreReportedWithoutTheUsageText)
{
    Settings settings;
    const std::optional<Failure> outcome =
        command_line::scan(GetParam().arguments, can_open_unless_nowhere, settings);
    ASSERT_TRUE(outcome.has_value());
    EXPECT_EQ(outcome->message.toStdString(), GetParam().message.toStdString());
    EXPECT_FALSE(outcome->with_usage);
}

INSTANTIATE_TEST_SUITE_P(Scan, RefusedOptions, testing::ValuesIn(refused_lines()), row_name);
