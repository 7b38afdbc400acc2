#pragma once

#include <QString>

#include <optional>
#include <vector>

namespace gang
{

/// What a report needs of one line of a record.
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
    int skipped = 0; ///< lines that are no record, such as one that a crash has cut short
};

/// Adds the runs of a file. Throws FileError if it cannot be read.
void read_record(const QString& path, RecordedRuns& runs);

} // namespace gang
