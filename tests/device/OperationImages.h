#pragma once

#include "memory/MemoryMap.h"

#include <QByteArray>

#include <map>
#include <vector>

namespace test
{

// Contents of memories and images in which the value of each byte shows where it belongs.

inline QByteArray bytes_at(unsigned int address, int count)
{
    QByteArray bytes(count, '\0');
    for (int i = 0; i < count; ++i, ++address) {
        bytes[i] = static_cast<char>((address * 7 + (address >> 8U) * 13 + 1) & 0xFFU);
    }
    return bytes;
}

/// The filler of the devices in operations_data, which differs from erased cells.
inline QByteArray flash_filler(int count)
{
    return QByteArray::fromHex("ABCD").repeated(count / 2);
}

inline QByteArray eeprom_filler(int count)
{
    return QByteArray(count, '\x5A');
}

struct Extent {
    unsigned int address;
    int size;
};

using Extents = std::vector<Extent>;

/// One blob for each extent, in this order.
inline MemoryMap image_of(const Extents& extents)
{
    constexpr unsigned int largest_blob = 0x10000;
    MemoryMap image(largest_blob);
    for (const Extent& extent : extents) {
        image.write(extent.address, bytes_at(extent.address, extent.size));
    }
    return image;
}

/// Ranges of bytes by their first address.
using Content = std::map<unsigned int, QByteArray>;

inline Content content_of(const Extents& extents)
{
    Content content;
    for (const Extent& extent : extents) {
        content[extent.address] = bytes_at(extent.address, extent.size);
    }
    return content;
}

/// A row of filler, overlaid with an image of these extents.
inline QByteArray row_with(const Extents& image, unsigned int address, QByteArray filler)
{
    for (const Extent& extent : image) {
        for (int i = 0; i < extent.size; ++i) {
            const unsigned int byte = extent.address + static_cast<unsigned int>(i);
            if (byte >= address && byte - address < static_cast<unsigned int>(filler.size())) {
                filler[static_cast<int>(byte - address)] = bytes_at(byte, 1).at(0);
            }
        }
    }
    return filler;
}

inline QByteArray flash_row_of(const Extents& image, unsigned int address)
{
    return row_with(image, address, flash_filler(0x40));
}

inline QByteArray eeprom_row_of(const Extents& image, unsigned int address)
{
    return row_with(image, address, eeprom_filler(0x10));
}

} // namespace test
