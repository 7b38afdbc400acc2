#include "sim/Outbox.h"

#include "sim/Line.h"

#include <algorithm>

namespace sim
{

namespace
{

/// Bytes just written need a moment to get through the terminal before they count as waiting for
/// the host; until then "nothing waiting" does not mean that they have been read.
constexpr qint64 settle_ms = 2;
/// A host that has not read after so many looks, a millisecond or more apart, is not going to tell
/// pieces apart. Looks are counted and not time, for a machine that stands still for a while is not
/// a host that doesn't read.
constexpr int patience = 50;

} // namespace

Outbox::Outbox(Line& line) : m_line(line)
{
    m_clock.start();
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Outbox::send_due);
}

void Outbox::post(const Piece& piece, int delay_ms, bool apart)
{
    const qint64 due_ms = m_clock.elapsed() + std::max(delay_ms, 0);
    const auto later = std::find_if(m_entries.begin(), m_entries.end(),
                                    [due_ms](const Entry& e) { return e.due_ms > due_ms; });
    m_entries.insert(later, {piece, due_ms, apart, 0});
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
        const Piece piece = m_entries.front().piece;
        m_entries.pop_front();
        m_line.send(piece);
        m_last_write_ms = m_clock.elapsed();
    }
}

int Outbox::time_until(Entry& entry) const
{
    const qint64 now_ms = m_clock.elapsed();
    if (entry.due_ms > now_ms) {
        return static_cast<int>(entry.due_ms - now_ms);
    }
    const bool unread = now_ms - m_last_write_ms < settle_ms || m_line.host_has_unread();
    const bool held_back = entry.apart && unread && entry.looks < patience;
    ++entry.looks;
    return held_back ? 1 : 0;
}

} // namespace sim
