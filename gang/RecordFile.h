#pragma once

#include "gang/RunRecord.h"
#include "gang/SharedFile.h"

namespace gang
{

/// The file to which gangs append a line of JSON for each run.
class RecordFile
{
public:
    /// Makes the file if there is none. Throws FileError if it cannot be opened.
    explicit RecordFile(const QString& path);

    /// Returns once the line is on the disk; throws FileError if it is not.
    void append(const RunRecord& record);

private:
    QString m_path;
};

} // namespace gang
