#include "device/Rows.h"

#include "device/GeometryChecks.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "util/Util.h"

namespace rows
{

namespace
{

/// An address in flash must lie on a block.
Reason check_alignment(const Profile& profile, unsigned int address)
{
    if (!profile.is_flash(address)) {
        return std::nullopt;
    }
    if (auto reason = geometry::check_block(profile, MEMORY_FLASH)) {
        return reason;
    }
    if (address % profile.get_block_size(MEMORY_FLASH) == 0) {
        return std::nullopt;
    }
    return QStringLiteral("Start address 0x%1 is in flash memory but is not but "
                          "must be a multiple "
                          "of block size %1")
        .arg(Util::uint_to_hex(address, -1));
}

} // namespace

AddressRange limits_of(const Profile& profile, MemoryType type)
{
    return {profile.get_min_address(type), profile.get_max_address(type)};
}

bool passes(ZarnSerialDevice& device, const Reason& reason)
{
    return !reason || device.error(*reason);
}

Reason check_range(const Profile& profile, AddressRange range, const QString& outside_message)
{
    for (const unsigned int address : {range.start, range.end}) {
        if (auto reason = check_alignment(profile, address)) {
            return reason;
        }
    }
    const AddressRange flash = limits_of(profile, MEMORY_FLASH);
    const AddressRange eeprom = limits_of(profile, MEMORY_EEPROM);
    if ((range.start < flash.start && range.start < eeprom.start) ||
        (range.end > flash.end && range.end > eeprom.end)) {
        return outside_message.arg(Util::uint_to_hex(range.start, -1));
    }
    return std::nullopt;
}

bool goes_on(ZarnSerialDevice& device, const bool& abort_requested)
{
    return !abort_requested || device.error(QStringLiteral("upload_firmware() aborted by user"));
}

bool walk(ZarnSerialDevice& device, AddressRange rows, unsigned int step,
          const bool& abort_requested, const std::function<bool(unsigned int)>& row)
{
    return ::walk(rows, step, [&](unsigned int address) {
        return goes_on(device, abort_requested) && row(address);
    });
}

bool fill(const ZarnSerialDevice& device, const MemoryMap& image, MemoryType type,
          unsigned int address, QByteArray& row)
{
    const unsigned int row_size = device.profile()->get_row_size(type);
    device.initialize_array(row_size, row, type);
    return image.read(address, row_size, row);
}

bool read(ZarnSerialDevice& device, MemoryType type, unsigned int address, QByteArray& row)
{
    const unsigned int row_size = device.profile()->get_row_size(type);
    device.initialize_array(row_size, row, type);
    return device.read_memory(address, row_size, row);
}

} // namespace rows
