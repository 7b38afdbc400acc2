#pragma once

#include <QtGlobal>

/// A stretch of byte addresses, end exclusive.
struct Span {
    unsigned int start;
    unsigned int end;

    bool is_empty() const { return start >= end; }

    /// The smallest stretch of whole units that holds this one.
    Span widened_to(unsigned int unit) const
    {
        return {start / unit * unit, (end + unit - 1) / unit * unit};
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
