#pragma once

#include "sim/line/Alarm.h"
#include "sim/line/PacedQueue.h"

#include <QByteArray>
#include <QObject>

#include <list>

namespace sim
{

class Line;

/// Puts bursts on the line when they are due, in the order of their times and, for equal times,
/// in the order in which they were posted.
class Outbox : public QObject
{
    Q_OBJECT

public:
    /// The line must outlive the outbox.
    explicit Outbox(Line& line);

    /// `due_ns` is by the clock of Alarm. A burst that is due with nothing before it goes out at
    /// once. One that is `apart` is held back until the host has read everything before it, so that
    /// no single read of the host returns both; a host that does not read at all gets it after a
    /// while anyway.
    void post(const Burst& burst, qint64 due_ns, bool apart);
    /// Drops everything that has not gone out.
    void clear();

    /// Bytes that were dropped: when this much or more waits to be read by the host, here or on the
    /// line, what is posted is lost, as on a serial port that nobody reads.
    static constexpr qint64 room = 256 * 1024;

    qint64 lost_bytes() const { return m_lost_bytes; }

private:
    struct Entry {
        Burst burst;
        qint64 due_ns;
        bool apart;
        int looks; ///< how often it was checked whether it may go yet
    };

    void send_due();
    qint64 next_chance(Entry& entry, qint64 now_ns) const;

    Line& m_line;
    std::list<Entry> m_entries;
    qint64 m_waiting_bytes = 0; ///< of the entries
    qint64 m_lost_bytes = 0;
    qint64 m_last_write_ns = 0;
    Alarm m_alarm;
};

} // namespace sim
