#pragma once

#include <QtGlobal>

#include <vector>

namespace sim
{

/// Bytes that pass on the line together, as far as the host can observe.
struct Slice {
    int offset = 0; ///< of its first byte in the original bytes
    int count = 0;
    qint64 due_ns = 0;   ///< when its last byte has passed
    bool ending = false; ///< among the last, which a receiver waits for

    bool operator==(const Slice& other) const
    {
        return offset == other.offset && count == other.count && due_ns == other.due_ns &&
               ending == other.ending;
    }
};

/// How long `count` bytes take at `baud`: eight data bits each, a start bit and a stop bit. At the
/// rate 0, that of a line that is hung up, nothing takes time.
qint64 line_time_ns(int count, unsigned int baud);

/// Cuts `count` bytes, the first of which begins at `start_ns`, into slices of up to a millisecond,
/// and of up to a tenth of one for the last fifth of a millisecond: a process that waits for
/// the end of a frame is woken by the bytes before it, as on a wire. A byte that takes longer is a
/// slice of its own, and bytes that take less share one. Every due time is calculated from the
/// start, so that rounding errors do not add up.
std::vector<Slice> slices(qint64 start_ns, int count, unsigned int baud);

} // namespace sim
