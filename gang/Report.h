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

/// Totals of a group of runs, such as those on one port.
struct RunGroup {
    int runs = 0;
    int ok = 0;
    int ok_at_once = 0;          ///< ok at the first try
    QMap<QString, int> failures; ///< number by verdict
    std::vector<double> ok_seconds;

    void add(const RecordedRun& run);
    /// Returns the share of ok runs, from 0 to 1; 0 if there are no runs.
    double yield() const;
};

/// A number that was given out but is in no good device.
struct VoidNumber {
    quint64 number = 0;
    QString reason; ///< a verdict, "not recorded", or "another try"
};

/// The summary of one or more records.
struct Report {
    QString first; ///< time of the first run
    QString last;
    RunGroup all;
    QMap<QString, RunGroup> ports; ///< by station and port
    std::vector<VoidNumber> void_numbers;
    int numbers = 0; ///< numbers given out, including void ones
    int skipped = 0;
};

/// Summarises runs. `given` holds the numbers of a serial file; a number that is in no record is
/// void, because its gang was killed before it could record the run.
Report report_on(const RecordedRuns& runs, const std::vector<GivenNumber>& given);

/// Returns the duration, in seconds, that a share (0 to 1) of the runs does not exceed; nothing if
/// there are no runs.
std::optional<double> quantile(std::vector<double> seconds, double share);

/// Formats a share from 0 to 1, such as "97.5%".
QString percent(double share);

QString text_of(const Report& report);
QJsonObject json_of(const Report& report);
/// Returns one self-contained HTML page.
QString html_of(const Report& report);

} // namespace gang
