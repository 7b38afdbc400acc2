#pragma once

#include "gang/ToolResult.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace gang
{

/// The folder that keeps the console (console.txt) and the frame log (frames.log) of a run.
class RunFolder
{
public:
    /// Keeps nothing.
    RunFolder() = default;
    /// Creates a new folder for the run in `parent`. Throws FileError.
    RunFolder(const QString& parent, const QString& port_name, const QDateTime& time);

    /// Empty if nothing is kept.
    const QString& folder() const { return m_folder; }

    /// Returns the arguments that make zserial log its frames to the folder; none if nothing is
    /// kept.
    QStringList frame_log_arguments() const;
    /// Appends the output of a process. A write error is ignored, so that it does not change a
    /// verdict.
    void add_console(const QStringList& words, const ToolResult& result) const;
    void discard();

private:
    QString m_folder;
};

} // namespace gang
