#pragma once

#include "memory/MemoryMap.h"

#include <QString>

namespace sim
{

class DeviceMemory;

/// An Intel HEX file that fills a device's memory or is compared with it.
class MemoryImage
{
public:
    /// Loads the file. Throws Error when that fails.
    explicit MemoryImage(const QString& path);

    /// Fills the memory; returns the number of bytes of the image that lie outside the device.
    unsigned int fill(DeviceMemory& memory) const;

    struct Comparison {
        bool matches;
        QString report;                 ///< one line for the user
        unsigned int outside_bytes = 0; ///< of the image, that lie neither in flash nor in EEPROM
    };

    /// Compares what the image holds for user flash and EEPROM with the memory. An uploader
    /// cannot have written the rest of an image, the bootloader's part included. An image without
    /// bytes for the device does not match. Bytes outside of the device are
    /// counted, but are not differences.
    Comparison compare(const DeviceMemory& memory) const;

private:
    QString m_path;
    MemoryMap m_map;
};

/// Writes what is not erased as an Intel HEX file, or leaves what is there and throws Error.
void save_memory(const DeviceMemory& memory, const QString& path);

} // namespace sim
