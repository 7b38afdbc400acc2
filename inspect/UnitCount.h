#pragma once

#include <QtGlobal>

#include <algorithm>

namespace inspect
{

/// Counts the rows or pages that ranges of an image touch. The ranges must be added in ascending
/// order and must not overlap.
class UnitCount
{
public:
    /// `size`: bytes of a row or page; 0 counts nothing.
    explicit UnitCount(quint64 size) : m_size(size) {}

    void add(quint64 start, quint64 end)
    {
        while (m_size != 0 && start < end) {
            enter(start / m_size);
            const quint64 taken = std::min(end, (m_unit + 1) * m_size) - start;
            m_filled += taken;
            start += taken;
            if (m_filled == m_size) {
                start += skip_whole((end - start) / m_size);
            }
        }
    }

    quint64 touched() const { return m_touched; }

    /// Of these, the ones that have other bytes, too.
    quint64 partial() const { return m_partial + (m_filled < m_size && m_touched != 0 ? 1 : 0); }

private:
    void enter(quint64 unit)
    {
        if (m_touched != 0 && unit == m_unit) {
            return;
        }
        m_partial = partial();
        m_unit = unit;
        m_filled = 0;
        ++m_touched;
    }

    quint64 skip_whole(quint64 units)
    {
        m_touched += units;
        m_unit += units;
        return units * m_size;
    }

    quint64 m_size;
    quint64 m_unit = 0;
    quint64 m_filled = 0;
    quint64 m_touched = 0;
    quint64 m_partial = 0;
};

} // namespace inspect
