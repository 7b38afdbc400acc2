#include "sim/line/PacedQueue.h"

#include "sim/line/LineTiming.h"

#include <algorithm>

namespace sim
{

void PacedQueue::add(const Burst& burst, qint64 now_ns)
{
    const qint64 start_ns = std::max(now_ns, m_free_ns);
    const QByteArray timed = burst.bytes.mid(burst.passed);
    if (burst.whole) {
        m_free_ns = start_ns + line_time_ns(timed.size(), burst.baud);
        append({burst.bytes, burst.baud, m_free_ns, true, true});
        return;
    }
    if (burst.passed > 0) {
        append({burst.bytes.left(burst.passed), burst.baud, start_ns, timed.isEmpty(),
                timed.isEmpty()});
    }
    add_slices(timed, burst.baud, start_ns);
}

void PacedQueue::append(const Due& due)
{
    m_waiting.push_back(due);
    m_waiting_bytes += due.bytes.size();
}

void PacedQueue::clear()
{
    m_waiting.clear();
    m_waiting_bytes = 0;
}

void PacedQueue::add_slices(const QByteArray& bytes, unsigned int baud, qint64 start_ns)
{
    for (const Slice& slice : slices(start_ns, bytes.size(), baud)) {
        const bool last = slice.offset + slice.count == bytes.size();
        append({bytes.mid(slice.offset, slice.count), baud, slice.due_ns, last, slice.ending});
        m_free_ns = slice.due_ns;
    }
}

std::optional<PacedQueue::Due> PacedQueue::take(qint64 now_ns)
{
    if (m_waiting.empty() || m_waiting.front().due_ns > now_ns) {
        return std::nullopt;
    }
    Due due = m_waiting.front();
    m_waiting.pop_front();
    m_waiting_bytes -= due.bytes.size();
    return due;
}

std::optional<qint64> PacedQueue::next_due_ns() const
{
    return m_waiting.empty() ? std::nullopt : std::optional(m_waiting.front().due_ns);
}

bool PacedQueue::next_is_ending() const
{
    return !m_waiting.empty() && m_waiting.front().ending;
}

} // namespace sim
