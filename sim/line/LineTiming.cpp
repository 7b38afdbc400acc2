#include "sim/line/LineTiming.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr qint64 bits_per_byte = 10;
constexpr qint64 ns_per_second = 1000000000;

/// Short enough that no host notices, long enough that fast lines don't wake the machine for
/// every byte.
constexpr qint64 slice_ns = 1000000;
/// Longer than a host on a system that is not busy takes to wake: it is awake when the end comes.
constexpr qint64 ending_ns = 200000;
/// Twice as long as the system takes to hand a slice to the host, so that no slice waits for the
/// one before, even when it is rounded down to whole bytes.
constexpr qint64 ending_slice_ns = 100000;

/// At least one, however long it takes.
int bytes_within(qint64 time_ns, unsigned int baud)
{
    return static_cast<int>(std::max<qint64>(1, time_ns * baud / (bits_per_byte * ns_per_second)));
}

} // namespace

qint64 line_time_ns(int count, unsigned int baud)
{
    return baud == 0 ? 0 : count * bits_per_byte * ns_per_second / baud;
}

std::vector<Slice> slices(qint64 start_ns, int count, unsigned int baud)
{
    if (baud == 0 && count > 0) {
        return {{0, count, start_ns, true}};
    }
    const int ending_begin = count - bytes_within(ending_ns, baud);
    std::vector<Slice> result;
    for (int offset = 0; offset < count; offset += result.back().count) {
        const bool ending = offset >= ending_begin;
        const int most = bytes_within(ending ? ending_slice_ns : slice_ns, baud);
        // The short slice comes first, so that the last one does not wait for the one before it.
        const int size = ((ending ? count : ending_begin) - offset - 1) % most + 1;
        result.push_back({offset, size, start_ns + line_time_ns(offset + size, baud), ending});
    }
    return result;
}

} // namespace sim
