#include "sim/LineTiming.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr qint64 bits_per_byte = 10;
constexpr qint64 ns_per_second = 1000000000;

} // namespace

qint64 line_time_ns(int count, unsigned int baud)
{
    return baud == 0 ? 0 : count * bits_per_byte * ns_per_second / baud;
}

std::vector<Slice> slices(qint64 start_ns, int count, unsigned int baud, qint64 slice_ns)
{
    if (baud == 0 && count > 0) {
        return {{0, count, start_ns}};
    }
    const qint64 most = slice_ns * baud / (bits_per_byte * ns_per_second);
    std::vector<Slice> result;
    for (int offset = 0; offset < count; offset += result.back().count) {
        const qint64 before_the_last = count - offset - most;
        const int size = static_cast<int>(std::max<qint64>(1, std::min(most, before_the_last)));
        result.push_back({offset, size, start_ns + line_time_ns(offset + size, baud)});
    }
    return result;
}

} // namespace sim
