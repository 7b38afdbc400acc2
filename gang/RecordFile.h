#pragma once

#include "gang/RunRecord.h"
#include "gang/SharedFile.h"

namespace gang
{

/// The file to which gangs append a line of JSON for each run.
class RecordFile
{
public:
    /// Throws FileError.
    explicit RecordFile(const QString& path) : m_file(path, SharedFile::Missing::Create) {}

    /// Returns once the line is on the disk; throws FileError if it is not.
    void append(const RunRecord& record);

private:
    SharedFile m_file;
};

} // namespace gang
