#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <list>

namespace sim
{

class PseudoTerminal;

/// Bytes that the device puts on the line, and how long after the command.
struct Delivery {
    QByteArray bytes;
    int delay_ms = 0;
};

/// Puts deliveries on the line when they are due, in the order of their times and, for equal times,
/// in the order in which they were posted.
class Outbox : public QObject
{
    Q_OBJECT

public:
    /// The terminal must outlive the outbox.
    explicit Outbox(PseudoTerminal& terminal);

    /// A delivery due now with nothing before it goes out at once. One that is `apart` is held back
    /// until the host has read everything before it, so that no single read of the host returns
    /// both; a host that does not read at all gets it after a while all the same.
    void post(const Delivery& delivery, bool apart);
    /// Drops everything that has not gone out.
    void clear();

private:
    struct Entry {
        QByteArray bytes;
        qint64 due_ms;
        bool apart;
    };

    void send_due();
    int time_until(const Entry& entry) const;

    PseudoTerminal& m_terminal;
    std::list<Entry> m_entries;
    QElapsedTimer m_clock;
    qint64 m_last_write_ms = 0;
    QTimer m_timer;
};

} // namespace sim
