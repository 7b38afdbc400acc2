#pragma once

#include <QtGlobal>

#include <optional>

namespace sim
{

/// The share of the time from the first byte on the line to the last in which bytes were passing.
/// The rest is pauses of the host, the device and the machine.
class LineUse
{
public:
    /// Bytes that take `line_ns` come onto the line at `now_ns`.
    void add(qint64 line_ns, qint64 now_ns)
    {
        m_first_ns = m_first_ns.value_or(now_ns);
        m_busy_ns += line_ns;
    }

    /// The last of the bytes so far has really passed.
    void pass(qint64 now_ns) { m_last_ns = now_ns; }

    qint64 busy_ns() const { return m_busy_ns; }

    /// 0 until something has passed.
    qint64 span_ns() const { return m_last_ns ? *m_last_ns - *m_first_ns : 0; }

private:
    std::optional<qint64> m_first_ns;
    std::optional<qint64> m_last_ns;
    qint64 m_busy_ns = 0;
};

} // namespace sim
