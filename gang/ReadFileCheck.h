#pragma once

#include "gang/FileSystem.h"

#include <QString>

namespace gang
{

/// Checks that a run has saved what it read as a new, complete Intel HEX file. Create it before the
/// run.
class ReadFileCheck
{
public:
    ReadFileCheck() = default;
    explicit ReadFileCheck(const QString& file);

    /// Returns why the file does not hold what was read; empty if it does, or if nothing was to be
    /// read.
    QString problem() const;

private:
    QString m_file;
    FileIdentity m_before;
};

} // namespace gang
