#pragma once

#include "sim/rig/FrameLog.h"

#include <QByteArray>

#include <vector>

namespace sim
{

/// Answers as a recorded device did. Requests are looked for from where the last one was found
/// onwards, so a host may leave out what the recorded one did, but not go back.
class Replay
{
public:
    /// A request that was not in what remained of the log, made so many times in a row.
    struct Unmatched {
        QByteArray payload;
        int times = 0;
    };

    explicit Replay(FrameLog log);

    /// What followed the request in the log; empty where nothing did, and for a request that is not
    /// in what remains of the log.
    QByteArray answer_to(const QByteArray& payload);

    /// Recorded requests that a host has made so far, and all there are.
    int matched() const { return m_matched; }

    int recorded() const { return static_cast<int>(m_log.entries.size()); }

    /// The first of the requests that were not in what remained of the log.
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
