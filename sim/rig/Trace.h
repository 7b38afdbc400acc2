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

/// What a command led to.
struct Outcome {
    QByteArray answer; ///< before the faults; empty where the device stays silent
    bool is_recorded = false;
    qint64 bytes_sent = 0;
    std::vector<FaultKind> faults;
};

/// The line of a trace for one command, without its time.
QString trace_line(const Profile& profile, const Command& command, const Outcome& outcome);

/// A file with a line for every command that the device made out.
class Trace
{
public:
    /// Begins the file anew and the time at 0. Throws Error when the file can't be written, as is a
    /// pipe without a reader.
    /// The profile must outlive the trace.
    Trace(const QString& path, const Profile& profile);

    /// A line is in the file at once, for those who follow it.
    void add(const Command& command, const Outcome& outcome);

    /// Every line so far has got into the file, or into the pipe, whose reader may be too slow.
    bool is_whole() const { return m_is_whole; }

private:
    const Profile& m_profile;
    QFile m_file;
    QElapsedTimer m_clock;
    bool m_is_whole = true;
};

} // namespace sim
