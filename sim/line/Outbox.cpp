#include "sim/line/Outbox.h"

#include "sim/line/Line.h"

#include <algorithm>

namespace sim
{

namespace
{

/// Bytes just written need a moment to get through the terminal before they count as waiting for
/// the host; until then "nothing waiting" does not mean that they have been read.
constexpr qint64 settle_ns = 2000000;
/// A host that has not read after this many checks, at least this far apart, will not read bursts
/// separately. Checks are counted instead of time, because a stalled machine does not mean that the
/// host does not read.
constexpr int patience = 50;
constexpr qint64 look_ns = 1000000;

} // namespace

Outbox::Outbox(Line& line) : m_line(line)
{
    connect(&m_alarm, &Alarm::went_off, this, &Outbox::send_due);
}

void Outbox::post(const Burst& burst, qint64 due_ns, bool apart)
{
    if (m_waiting_bytes + m_line.bytes_for_host() >= room) {
        m_lost_bytes += burst.bytes.size();
        return;
    }
    // From the end, where nearly every burst belongs.
    const auto earlier = std::find_if(m_entries.rbegin(), m_entries.rend(),
                                      [due_ns](const Entry& e) { return e.due_ns <= due_ns; });
    m_entries.insert(earlier.base(), {burst, due_ns, apart, 0});
    m_waiting_bytes += burst.bytes.size();
    send_due();
}

void Outbox::clear()
{
    m_entries.clear();
    m_waiting_bytes = 0;
    m_alarm.stop();
}

void Outbox::send_due()
{
    while (!m_entries.empty()) {
        const qint64 now_ns = Alarm::now_ns();
        const qint64 next_ns = next_chance(m_entries.front(), now_ns);
        if (next_ns > now_ns) {
            m_alarm.set(next_ns);
            return;
        }
        const Burst burst = m_entries.front().burst;
        m_entries.pop_front();
        m_waiting_bytes -= burst.bytes.size();
        m_line.send(burst);
        m_last_write_ns = Alarm::now_ns();
    }
}

/// When the entry may go, or when to check again.
qint64 Outbox::next_chance(Entry& entry, qint64 now_ns) const
{
    if (entry.due_ns > now_ns) {
        return entry.due_ns;
    }
    const bool unread = now_ns - m_last_write_ns < settle_ns || m_line.host_has_unread();
    const bool held_back = entry.apart && unread && entry.looks < patience;
    ++entry.looks;
    return held_back ? now_ns + look_ns : now_ns;
}

} // namespace sim
