#pragma once

#include "gang/RunRecord.h"
#include "gang/SharedFile.h"

namespace gang
{

/// The file to which gangs append a line of JSON for each run; docs/production.md lists its keys.
class RecordFile
{
public:
    /// Creates the file if it does not exist. Throws FileError if it cannot be opened.
    explicit RecordFile(const QString& path);

    /// Returns once the line is on the disk. Throws FileError if it cannot be written.
    void append(const RunRecord& record);

private:
    QString m_path;
};

} // namespace gang
