#pragma once

#include <QtGlobal>

#include <vector>

namespace sim
{

/// Bytes that pass on the line together, as far as the host can observe.
struct Slice {
    int offset = 0; ///< of its first byte in the bytes it was cut from
    int count = 0;
    qint64 due_ns = 0;   ///< when its last byte has passed
    bool ending = false; ///< among the last, which a receiver waits for

    bool operator==(const Slice& other) const
    {
        return offset == other.offset && count == other.count && due_ns == other.due_ns &&
               ending == other.ending;
    }
};

/// How long `count` bytes take at `baud`: eight data bits each, a start bit and a stop bit. Nothing
/// takes time at the rate 0, which is that of a line that is hung up.
qint64 line_time_ns(int count, unsigned int baud);

/// Cuts `count` bytes, the first of which begins at `start_ns`, into slices of up to a millisecond,
/// and of up to a tenth of one for the last fifth of a millisecond: whoever waits for the end of a
/// frame is woken by the bytes before, as on a wire. A byte that takes longer is a slice by itself,
/// and what takes less comes in one slice. Every due time is reckoned from the start, so that no
/// rounding adds up.
std::vector<Slice> slices(qint64 start_ns, int count, unsigned int baud);

} // namespace sim
