#pragma once

#include "gang/NumberFile.h"
#include "gang/RecordReader.h"

#include <QJsonObject>
#include <QMap>
#include <QString>

#include <optional>
#include <vector>

namespace gang
{

/// Runs that have something in common.
struct RunGroup {
    int runs = 0;
    int ok = 0;
    int ok_at_once = 0;          ///< at the first try
    QMap<QString, int> failures; ///< by verdict
    std::vector<double> ok_seconds;

    void add(const RecordedRun& run);
    /// Of all runs, from 0 to 1; 0 if there are none.
    double yield() const;
};

/// A number that no good device has.
struct VoidNumber {
    quint64 number = 0;
    QString reason; ///< a verdict, "not recorded", or "another try"
};

/// What records say when they are added up.
struct Report {
    QString first; ///< time of the first run
    QString last;
    RunGroup all;
    QMap<QString, RunGroup> ports; ///< by station and port
    std::vector<VoidNumber> void_numbers;
    int numbers = 0; ///< given out, void ones included
    int skipped = 0;
};

/// Adds up. `given` are the numbers of a serial file: one that is in no record is void, because its
/// gang did not live to judge the run.
Report report_on(const RecordedRuns& runs, const std::vector<GivenNumber>& given);

/// The duration that a share of the runs, from 0 to 1, do not exceed. Nothing if there are no runs.
std::optional<double> quantile(std::vector<double> seconds, double share);

/// "97.5%".
QString percent(double share);

QString text_of(const Report& report);
QJsonObject json_of(const Report& report);
/// One page with everything in it.
QString html_of(const Report& report);

} // namespace gang
