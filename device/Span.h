#pragma once

#include <QtGlobal>

#include <limits>

/// A stretch of byte addresses, end exclusive.
struct Span {
    unsigned int start;
    unsigned int end;

    bool is_empty() const { return start >= end; }

    /// Bytes in the whole rows that fit; a row left over at the end does not count.
    unsigned int whole_rows(unsigned int row_size) const
    {
        return is_empty() ? 0 : (end - start) / row_size * row_size;
    }

    /// The smallest stretch of whole units that holds this one; a unit that would end beyond the
    /// highest address is cut there.
    Span widened_to(unsigned int unit) const
    {
        constexpr quint64 highest = std::numeric_limits<unsigned int>::max();
        const quint64 widened_end = (quint64{end} + unit - 1) / unit * unit;
        return {start / unit * unit, static_cast<unsigned int>(qMin(widened_end, highest))};
    }
};

/// The part of `range` that lies in the memory `limits`.
inline Span clip(Span range, Span limits)
{
    Span part{limits.start, limits.start};
    if (limits.start < range.start && range.start < limits.end) {
        part.start = range.start;
    }
    if (limits.start < range.end && range.end < limits.end) {
        part.end = range.end;
    } else if (range.end >= limits.end && range.start < limits.end) {
        part.end = limits.end;
    }
    return part;
}

/// Calls `body` with start, start + step, ... below the end for as long as it returns true; true
/// when it always did. `step` must not be 0. Addresses near the top of the 32 bits do not wrap the
/// walk round to its beginning.
template <typename Body>
bool walk(Span span, unsigned int step, Body body)
{
    for (quint64 address = span.start; address < span.end; address += step) {
        if (!body(static_cast<unsigned int>(address))) {
            return false;
        }
    }
    return true;
}
