#pragma once

#include <QtGlobal>

/// Byte addresses from `start` up to, not including, `end`.
struct AddressRange {
    unsigned int start;
    unsigned int end;

    bool is_empty() const { return start >= end; }

    /// The number of bytes, modulo 2^32 for a range that ends before it starts.
    unsigned int size() const { return end - start; }

    /// The smallest range of whole units that holds this one.
    AddressRange widened_to(unsigned int unit) const
    {
        return {start / unit * unit, (end + unit - 1) / unit * unit};
    }
};

/// The part of `range` that lies in the memory `limits`.
inline AddressRange clip(AddressRange range, AddressRange limits)
{
    AddressRange part{limits.start, limits.start};
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

/// Calls `body` with start, start + step, ... below the end while it returns true. True if it
/// always did. `step` must not be 0.
template <typename Body>
bool walk(AddressRange range, unsigned int step, Body body)
{
    for (quint64 address = range.start; address < range.end; address += step) {
        if (!body(static_cast<unsigned int>(address))) {
            return false;
        }
    }
    return true;
}
