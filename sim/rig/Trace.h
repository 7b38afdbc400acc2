#pragma once

#include "sim/device/Command.h"
#include "sim/faults/FaultKind.h"

#include <QElapsedTimer>
#include <QFile>
#include <QString>

#include <vector>

class Profile;

namespace sim
{

/// The outcome of a command.
struct Outcome {
    QByteArray answer; ///< before the faults; empty where the device stays silent
    bool is_recorded = false;
    qint64 bytes_sent = 0;
    std::vector<FaultKind> faults;
};

/// The line of a trace for one command, without its time.
QString trace_line(const Profile& profile, const Command& command, const Outcome& outcome);

/// A file with a line for every command that the device recognised.
class Trace
{
public:
    /// Truncates the file and starts the time at 0. Throws Error if the file cannot be written,
    /// such as a pipe without a reader. The profile must outlive the trace.
    Trace(const QString& path, const Profile& profile);

    /// Writes the line at once, for readers that follow the file.
    void add(const Command& command, const Outcome& outcome);

    /// Whether every line so far is in the file or pipe; the reader of a pipe may be too slow.
    bool is_whole() const { return m_is_whole; }

private:
    const Profile& m_profile;
    QFile m_file;
    QElapsedTimer m_clock;
    bool m_is_whole = true;
};

} // namespace sim
