#pragma once

// This folder is the wire: a pseudo-terminal whose far end the host opens, and the times that it
// lacks. It knows bytes and rates, but no frames. Classes with timers (Alarm, Line, Outbox) are
// separate from classes that only calculate with times passed in (AdapterBuffer, PacedQueue,
// LineTiming), so that the latter can be tested without waiting. docs/simulator.md describes what
// can be measured with it, under "Times".

#include "sim/line/AdapterBuffer.h"
#include "sim/line/Alarm.h"
#include "sim/line/Lateness.h"
#include "sim/line/LineUse.h"
#include "sim/line/PacedQueue.h"
#include "sim/line/PseudoTerminal.h"

namespace sim
{

/// How the line between host and device behaves.
struct LineOptions {
    /// Bytes take the time that they would take on a wire at the rate in force, both ways.
    bool paced = false;
    int latency_ms = 0; ///< of the host's adapter, for short packets; 0 for none
    /// What the host writes at once reaches the device at once.
    bool keeps_writes_whole = false;
};

/// The line with the host's adapter at its end: a pseudo-terminal with the times that it lacks.
class Line : public QObject
{
    Q_OBJECT

public:
    /// Throws std::system_error if the system provides no pseudo-terminal or timer.
    explicit Line(LineOptions options);

    QString path() const { return m_terminal.path(); }

    unsigned int host_baud() const { return m_terminal.host_baud(); }

    /// Bytes are on their way to the host, or wait for it to read them.
    bool host_has_unread() const;

    /// The number of bytes on their way to the host, or waiting for it to read them, except those
    /// in the system's own buffer.
    qint64 bytes_for_host() const;

    /// Bytes are on their way to the device.
    bool device_has_unread() const { return !m_to_device.is_empty(); }

    /// Sends to the host, as long as the line is plugged in.
    void send(const Burst& burst);
    /// See PseudoTerminal::unplug().
    void unplug();

    /// Bytes handed to the host so far, echoes included.
    qint64 bytes_to_host() const { return m_bytes_to_host; }

    /// Of the last bytes of everything that was paced.
    const Lateness& lateness() const { return m_lateness; }

    /// By what was paced.
    const LineUse& use() const { return m_use; }

Q_SIGNALS:
    /// Bytes have reached the device; `baud` as in PseudoTerminal.
    void received(const QByteArray& bytes, unsigned int baud);

private:
    void take_from_host(const QByteArray& bytes, unsigned int baud);
    void move_on();
    bool move_one(qint64 now_ns);
    bool deliver_to_device(qint64 now_ns);
    bool deliver_to_host(qint64 now_ns);
    void note_lateness(const PacedQueue::Due& due, qint64 now_ns);
    void hand_to_host(const QByteArray& bytes);
    void set_alarm();

    LineOptions m_options;
    PseudoTerminal m_terminal;
    PacedQueue m_to_device;
    PacedQueue m_to_host;
    AdapterBuffer m_adapter;
    Alarm m_alarm;
    /// While the device receives bytes, the time at which they were due: an immediate answer is
    /// timed from that, so that one late wake-up does not delay everything after it.
    std::optional<qint64> m_hearing_ns;
    Lateness m_lateness;
    LineUse m_use;
    qint64 m_bytes_to_host = 0;
};

} // namespace sim
