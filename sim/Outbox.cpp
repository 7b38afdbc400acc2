#include "sim/Outbox.h"

#include "sim/PseudoTerminal.h"

#include <algorithm>

namespace sim
{

namespace
{

/// Bytes just written need a moment to get through the terminal before they count as waiting for
/// the host; until then "nothing waiting" does not mean that they have been read.
constexpr qint64 settle_ms = 2;
/// A host that has not read for this long is not going to tell pieces apart.
constexpr qint64 patience_ms = 50;

} // namespace

Outbox::Outbox(PseudoTerminal& terminal) : m_terminal(terminal)
{
    m_clock.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Outbox::send_due);
}

void Outbox::post(const Delivery& delivery, bool apart)
{
    const qint64 due_ms = m_clock.elapsed() + std::max(delivery.delay_ms, 0);
    const auto later = std::find_if(m_entries.begin(), m_entries.end(),
                                    [due_ms](const Entry& e) { return e.due_ms > due_ms; });
    m_entries.insert(later, {delivery.bytes, due_ms, apart});
    send_due();
}

void Outbox::clear()
{
    m_entries.clear();
    m_timer.stop();
}

void Outbox::send_due()
{
    while (!m_entries.empty()) {
        const int wait_ms = time_until(m_entries.front());
        if (wait_ms > 0) {
            m_timer.start(wait_ms);
            return;
        }
        m_terminal.write(m_entries.front().bytes);
        m_entries.pop_front();
        m_last_write_ms = m_clock.elapsed();
    }
}

int Outbox::time_until(const Entry& entry) const
{
    const qint64 now_ms = m_clock.elapsed();
    if (entry.due_ms > now_ms) {
        return static_cast<int>(entry.due_ms - now_ms);
    }
    const bool unread = now_ms - m_last_write_ms < settle_ms || m_terminal.host_has_unread();
    const bool held_back = entry.apart && unread && now_ms - entry.due_ms < patience_ms;
    return held_back ? 1 : 0;
}

} // namespace sim
