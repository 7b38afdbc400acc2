#pragma once

#include "tests/device/OperationImages.h"
#include "tests/device/TargetFile.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/ProfileTable.h"

namespace test
{

/// A device full of bytes that show where they belong, and a file to read them into.
class ReadBench
{
public:
    explicit ReadBench(const char* name) : line(name)
    {
        const Profile& profile = profile_named(name);
        fill(0, profile.get_max_address(MEMORY_FLASH));
        fill(profile.get_min_address(MEMORY_EEPROM), profile.get_max_address(MEMORY_EEPROM));
    }

    bool read(bool encrypted = true, bool unencrypted = true)
    {
        return line.device.read(target.file, abort, encrypted, unencrypted);
    }

    bool read_range(unsigned int start, unsigned int end, bool encrypted = true,
                    bool unencrypted = true)
    {
        return line.device.read_range(target.file, abort, encrypted, unencrypted, start, end);
    }

    DeviceOnLine line;
    TargetFile target;
    bool abort = false;

private:
    void fill(unsigned int start, unsigned int end)
    {
        line.simulated.memory().preset(start, bytes_at(start, static_cast<int>(end - start)));
    }
};

} // namespace test
