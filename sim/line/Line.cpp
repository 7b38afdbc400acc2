#include "sim/line/Line.h"

#include "sim/line/LineTiming.h"

#include <algorithm>
#include <initializer_list>

namespace sim
{

namespace
{

constexpr qint64 ns_per_ms = 1000000;
/// When this much is on its way to the device, the host has to wait until it can write more.
constexpr qint64 most_to_device = 64 * 1024;

std::optional<qint64> earliest(std::initializer_list<std::optional<qint64>> times)
{
    std::optional<qint64> result;
    for (const std::optional<qint64>& time : times) {
        if (time && (!result || *time < *result)) {
            result = time;
        }
    }
    return result;
}

} // namespace

Line::Line(LineOptions options) : m_options(options), m_adapter(options.latency_ms * ns_per_ms)
{
    connect(&m_terminal, &PseudoTerminal::received, this, &Line::take_from_host);
    connect(&m_alarm, &Alarm::went_off, this, &Line::move_on);
}

bool Line::host_has_unread() const
{
    return m_terminal.host_has_unread() || !m_to_host.is_empty() || m_adapter.deadline_ns();
}

qint64 Line::bytes_for_host() const
{
    return m_terminal.pending_bytes() + m_to_host.waiting_bytes() + m_adapter.size();
}

void Line::take_from_host(const QByteArray& bytes, unsigned int baud)
{
    if (!m_options.paced) {
        Q_EMIT received(bytes, baud);
        return;
    }
    const qint64 now_ns = Alarm::now_ns();
    m_use.add(line_time_ns(bytes.size(), baud), now_ns);
    m_to_device.add({bytes, baud, 0, m_options.keeps_writes_whole}, now_ns);
    m_terminal.set_listening(m_to_device.waiting_bytes() < most_to_device);
    move_on();
}

void Line::send(const Burst& burst)
{
    if (!m_terminal.is_plugged_in()) {
        return;
    }
    const qint64 now_ns = Alarm::now_ns();
    if (m_options.paced) {
        m_use.add(line_time_ns(burst.bytes.size() - burst.passed, burst.baud), now_ns);
        m_to_host.add(burst, m_hearing_ns.value_or(now_ns));
    } else {
        hand_to_host(m_adapter.add(burst.bytes, now_ns));
    }
    if (!m_hearing_ns) {
        move_on();
    }
}

void Line::unplug()
{
    m_to_device.clear();
    m_to_host.clear();
    m_adapter.clear();
    m_alarm.stop();
    m_terminal.unplug();
}

void Line::move_on()
{
    while (move_one(Alarm::now_ns())) {
    }
    set_alarm();
}

/// Whatever is due first goes first, so that a line that is late still has everything in order.
bool Line::move_one(qint64 now_ns)
{
    const std::optional<qint64> to_device = m_to_device.next_due_ns();
    const std::optional<qint64> first = earliest({to_device, m_to_host.next_due_ns()});
    const std::optional<qint64> packet = m_adapter.deadline_ns();
    if (packet && *packet <= now_ns && (!first || *packet < *first)) {
        hand_to_host(m_adapter.expire(now_ns));
        return true;
    }
    return first && first == to_device ? deliver_to_device(now_ns) : deliver_to_host(now_ns);
}

bool Line::deliver_to_device(qint64 now_ns)
{
    const std::optional<PacedQueue::Due> due = m_to_device.take(now_ns);
    if (due) {
        note_lateness(*due, now_ns);
        m_terminal.set_listening(m_to_device.waiting_bytes() < most_to_device);
        m_hearing_ns = due->due_ns;
        Q_EMIT received(due->bytes, due->baud);
        m_hearing_ns.reset();
    }
    return due.has_value();
}

bool Line::deliver_to_host(qint64 now_ns)
{
    const std::optional<PacedQueue::Due> due = m_to_host.take(now_ns);
    if (due) {
        note_lateness(*due, now_ns);
        m_use.pass(now_ns);
        hand_to_host(m_adapter.add(due->bytes, due->due_ns));
    }
    return due.has_value();
}

void Line::note_lateness(const PacedQueue::Due& due, qint64 now_ns)
{
    if (due.last) {
        m_lateness.add(now_ns - due.due_ns);
    }
}

void Line::hand_to_host(const QByteArray& bytes)
{
    m_bytes_to_host += bytes.size();
    m_terminal.write(bytes);
}

void Line::set_alarm()
{
    const std::optional<qint64> next =
        earliest({m_to_device.next_due_ns(), m_to_host.next_due_ns(), m_adapter.deadline_ns()});
    if (!next) {
        return;
    }
    // A receiver waits for the end of a burst; exact timing of every slice would keep a core busy.
    if (m_to_device.next_is_ending() || m_to_host.next_is_ending()) {
        m_alarm.set_exactly(*next);
    } else {
        m_alarm.set(*next);
    }
}

} // namespace sim
