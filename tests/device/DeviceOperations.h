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

inline Operation write_memory(unsigned int address, int num_bytes)
{
    return [=](ZarnSerialDevice& device) {
        return device.write_memory(address, counting(num_bytes));
    };
}

struct NamedOperation {
    const char* name;
    Operation run;
};

/// On the device `sample`, each with one command that is answered.
inline const NamedOperation single_commands[] = {
    {"Version",
     [](ZarnSerialDevice& device) {
         unsigned short version = 0;
         return device.request_bootloader_version(&version);
     }},
    {"ReadFlash", read_memory(0x1000, 1)},
    {"ReadEeprom", read_memory(0x8000, 1)},
    {"WriteFlash", write_memory(0x1000, 64)},
    {"WriteEeprom", write_memory(0x8000, 16)},
    {"Erase",
     [](ZarnSerialDevice& device) {
         return device.erase_flash(0x1000, 1);
     }},
};

} // namespace test
