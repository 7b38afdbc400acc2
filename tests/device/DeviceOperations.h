#pragma once

#include "device/ZarnSerialDevice.h"
#include "tests/support/Bytes.h"
#include "tests/support/Image.h"

#include <functional>
#include <utility>
#include <vector>

namespace test
{

// Operations of a device object, for tables of tests. None of them is aborted.

using Operation = std::function<bool(ZarnSerialDevice&)>;

inline const bool never = false;

inline Operation read_memory(unsigned int address, unsigned int num_bytes)
{
    return [=](ZarnSerialDevice& device) {
        QByteArray data;
        return device.read_memory(address, num_bytes, data);
    };
}

inline Operation write(const std::vector<std::pair<unsigned int, QByteArray>>& pieces)
{
    return [=](ZarnSerialDevice& device) {
        const MemoryMap map = image(pieces);
        return device.write(&map, never, true, true);
    };
}

/// Of 16 bytes at the start of the range.
inline Operation write_range(unsigned int start, unsigned int end)
{
    return [=](ZarnSerialDevice& device) {
        const MemoryMap map = image({{start, counting(16)}});
        return device.write_range(&map, start, end, never, true, true);
    };
}

} // namespace test
