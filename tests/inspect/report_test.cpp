#include "inspect/Report.h"

#include <gtest/gtest.h>

using namespace inspect;

// The facts of a large image take several times its memory.

TEST(Report, BuildsItsFactsForJsonOnly)
{
    int times = 0;
    Report report;
    report.facts = [&times] {
        ++times;
        return QJsonObject{{QStringLiteral("bytes"), 1}};
    };
    text_of(report, false);
    EXPECT_EQ(times, 0);
    EXPECT_EQ(json_of(report)[QStringLiteral("bytes")].toInt(), 1);
    EXPECT_EQ(times, 1);
}
