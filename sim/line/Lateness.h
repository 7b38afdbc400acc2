#pragma once

#include <QtGlobal>

#include <algorithm>

namespace sim
{

/// How late the simulator was against its own schedule: the part of what a host saw that is due to
/// a busy machine.
class Lateness
{
public:
    void add(qint64 late_ns)
    {
        ++m_count;
        m_total_ns += late_ns;
        m_most_ns = std::max(m_most_ns, late_ns);
    }

    qint64 count() const { return m_count; }

    qint64 mean_ns() const { return m_count == 0 ? 0 : m_total_ns / m_count; }

    qint64 most_ns() const { return m_most_ns; }

private:
    qint64 m_count = 0;
    qint64 m_total_ns = 0;
    qint64 m_most_ns = 0;
};

} // namespace sim
