#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace gang
{

/// The fields of a recorded run that a report uses.
struct RecordedRun {
    QString time;
    QString station;
    QString port;
    QString verdict;
    double seconds = 0;
    int tries = 1;
    std::optional<quint64> number;
    std::vector<quint64> void_numbers;
};

/// The runs of any number of record files.
struct RecordedRuns {
    std::vector<RecordedRun> runs;
    int skipped = 0; ///< lines that are no complete record, such as one cut short by a crash
};

/// Adds the runs of a record file to `runs`. Throws FileError if it cannot be read.
void read_record(const QString& path, RecordedRuns& runs);

} // namespace gang
