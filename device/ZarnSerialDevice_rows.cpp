#include "device/GeometryFaults.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "util/Util.h"

namespace
{

bool is_misaligned(const Profile& profile, unsigned int address)
{
    return profile.is_flash(address) && address % profile.get_block_size(MEMORY_FLASH) != 0;
}

} // namespace

/// Refuses a range that reads and writes cannot work on. The one value that is substituted into
/// either message fills all of its places.
bool ZarnSerialDevice::check_range(Span range, const QString& outside_message)
{
    if (m_profile->get_block_size(MEMORY_FLASH) == 0 &&
        (m_profile->is_flash(range.start) || m_profile->is_flash(range.end))) {
        return error(*geometry::block_fault(*m_profile, MEMORY_FLASH));
    }
    for (const unsigned int address : {range.start, range.end}) {
        if (is_misaligned(*m_profile, address)) {
            return error(QStringLiteral("Start address 0x%1 is in flash memory but is not but "
                                        "must be a multiple of block size %1")
                             .arg(Util::uint_to_hex(address, -1)));
        }
    }
    const Span flash = limits_of(MEMORY_FLASH);
    const Span eeprom = limits_of(MEMORY_EEPROM);
    if ((range.start < flash.start && range.start < eeprom.start) ||
        (range.end > flash.end && range.end > eeprom.end)) {
        return error(outside_message.arg(Util::uint_to_hex(range.start, -1)));
    }
    return true;
}

Span ZarnSerialDevice::limits_of(MemoryType type) const
{
    return {m_profile->get_min_address(type), m_profile->get_max_address(type)};
}

/// Makes `row` the `row_size` bytes that belong at `address`: filler, overlaid with what the image
/// holds. False when the image holds none of them.
bool ZarnSerialDevice::fill_row(const MemoryMap& map, MemoryType type, unsigned int address,
                                unsigned int row_size, QByteArray& row) const
{
    initialize_array(row_size, row, type);
    return map.read(address, row_size, row);
}

/// Calls `row` with the address of each row for as long as it returns true and nobody asks to
/// stop.
bool ZarnSerialDevice::walk_rows(Span rows, unsigned int row_size, const bool& abort_requested,
                                 const std::function<bool(unsigned int)>& row)
{
    return walk(rows, row_size, [&](unsigned int address) {
        if (abort_requested) {
            return error(QStringLiteral("upload_firmware() aborted by user"));
        }
        return row(address);
    });
}

/// The row that the device holds at `address`; on failure what is in `row` must not be used.
bool ZarnSerialDevice::read_row(MemoryType type, unsigned int address, unsigned int row_size,
                                QByteArray& row)
{
    initialize_array(row_size, row, type);
    return read_memory(address, row_size, row);
}

/// Reports a geometry fault if there is one.
bool ZarnSerialDevice::check_geometry(const std::optional<QString>& fault)
{
    return !fault || error(*fault);
}
