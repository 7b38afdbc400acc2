#pragma once

#include "sim/rig/FrameLog.h"

#include <QByteArray>

#include <vector>

namespace sim
{

/// Answers as a recorded device did. Each request is searched for after the previous match, so a
/// host may leave out requests of the recording, but not go back.
class Replay
{
public:
    /// A request that was not in the rest of the log, and how often it was made in a row.
    struct Unmatched {
        QByteArray payload;
        int times = 0;
    };

    explicit Replay(FrameLog log);

    /// The recorded answer to the request; empty if there is none or if the request is not in the
    /// rest of the log.
    QByteArray answer_to(const QByteArray& payload);

    /// The number of recorded requests that a host has made so far, and of all.
    int matched() const { return m_matched; }

    int recorded() const { return static_cast<int>(m_log.entries.size()); }

    /// The first of the requests that were not in the rest of the log.
    const std::vector<Unmatched>& unmatched() const { return m_unmatched; }

    /// How many different ones came after those.
    qint64 further_unmatched() const { return m_further_unmatched; }

private:
    void note_unmatched(const QByteArray& payload);

    FrameLog m_log;
    std::size_t m_next = 0; ///< the first entry that has not been passed
    int m_matched = 0;
    std::vector<Unmatched> m_unmatched;
    QByteArray m_last_unmatched;
    qint64 m_further_unmatched = 0;
};

} // namespace sim
