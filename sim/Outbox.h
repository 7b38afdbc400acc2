#pragma once

#include "sim/Alarm.h"
#include "sim/PacedQueue.h"

#include <QByteArray>
#include <QObject>

#include <list>

namespace sim
{

class Line;

/// Bytes that the device puts on the line, and how long after the command.
struct Delivery {
    QByteArray bytes;
    int delay_ms = 0;
};

/// Puts pieces on the line when they are due, in the order of their times and, for equal times,
/// in the order in which they were posted.
class Outbox : public QObject
{
    Q_OBJECT

public:
    /// The line must outlive the outbox.
    explicit Outbox(Line& line);

    /// `due_ns` is by the clock of Alarm. A piece that is due with nothing before it goes out at
    /// once. One that is `apart` is held back until the host has read everything before it, so that
    /// no single read of the host returns both; a host that does not read at all gets it after a
    /// while all the same.
    void post(const Piece& piece, qint64 due_ns, bool apart);
    /// Drops everything that has not gone out.
    void clear();

private:
    struct Entry {
        Piece piece;
        qint64 due_ns;
        bool apart;
        int looks; ///< at whether it may go yet
    };

    void send_due();
    qint64 next_chance(Entry& entry, qint64 now_ns) const;

    Line& m_line;
    std::list<Entry> m_entries;
    qint64 m_last_write_ns = 0;
    Alarm m_alarm;
};

} // namespace sim
