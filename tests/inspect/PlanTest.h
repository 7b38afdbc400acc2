#pragma once

#include "tests/inspect/InspectTest.h"

#include <vector>

namespace test
{

/// A command line of `plan` that brings a problem of one code.
struct PlanTrigger {
    const char* code;
    const char* words; ///< as for PlanTest::plan()
};

/// For every code of `plan` at least one.
const std::vector<PlanTrigger>& plan_triggers();

/// Plans with a table and images in a folder of their own.
class PlanTest : public InspectTest
{
protected:
    PlanTest();

    /// The words of a command line of `plan`, "@" standing for the folder. The table is device.txt
    /// unless the words name another.
    QStringList plan_words(const char* words) const;
    QJsonObject plan(const char* words) const;
    inspect::Outcome run_plan(const char* words) const;
};

} // namespace test
