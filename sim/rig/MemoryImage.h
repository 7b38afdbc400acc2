#pragma once

#include "memory/MemoryMap.h"

#include <QString>

namespace sim
{

class DeviceMemory;

/// An Intel HEX file beside a device's memory.
class MemoryImage
{
public:
    /// Loads the file. Throws Error when that fails.
    explicit MemoryImage(const QString& path);

    /// Fills the memory; returns how many bytes of the image the device has no place for.
    unsigned int fill(DeviceMemory& memory) const;

    struct Comparison {
        bool matches;
        QString report;                 ///< one line for the user
        unsigned int outside_bytes = 0; ///< of the image, that lie neither in flash nor in EEPROM
    };

    /// Compares what the image holds for user flash and EEPROM with the memory. The rest of an
    /// image, the bootloader's part included, is nothing that an uploader could have written. An
    /// image that holds nothing for the device does not match. Bytes outside of the device are
    /// counted and are no difference.
    Comparison compare(const DeviceMemory& memory) const;

private:
    QString m_path;
    MemoryMap m_map;
};

/// Writes what is not erased as an Intel HEX file, or leaves what is there and throws Error.
void save_memory(const DeviceMemory& memory, const QString& path);

} // namespace sim
