#include "device/GeometryFaults.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "util/Util.h"

#include <QFile>

namespace
{

QString hex8(unsigned int address)
{
    return QStringLiteral("%1").arg(address, 8, 16, QLatin1Char('0'));
}

QString outside_range()
{
    return QStringLiteral("Cannot read to address range 0x%1 0x%1 outside of flash addresses "
                          "0x%1 0x%1 or eeprom addresses 0x%1 0x%1");
}

/// Whatever the map holds is saved under the file's name. How that went shows on the debug channel
/// only; nothing read is a failure.
bool save(const MemoryMap& map, const QFile& file)
{
    if (map.size() == 0) {
        return false;
    }
    map.save_to_hex_file(file.fileName());
    return true;
}

} // namespace

bool ZarnSerialDevice::read(QFile& file, const bool& abort_requested, bool include_encrypted,
                            bool include_unencrypted)
{
    return read_parts(file, {*m_profile, include_encrypted, include_unencrypted},
                      limits_of(MEMORY_FLASH), limits_of(MEMORY_EEPROM),
                      get_attr(Profile::eeprom_row_size), abort_requested);
}

/// Within a range EEPROM is read in one request, however large.
bool ZarnSerialDevice::read_range(QFile& file, const bool& abort_requested, bool include_encrypted,
                                  bool include_unencrypted, unsigned int start_address,
                                  unsigned int end_address)
{
    const Span range{start_address, end_address};
    if (!check_range(range, outside_range())) {
        return false;
    }
    const Span eeprom = clip(range, limits_of(MEMORY_EEPROM));
    if (eeprom.start > eeprom.end) {
        return error(outside_range().arg(Util::uint_to_hex(start_address, -1)));
    }
    return read_parts(file, {*m_profile, include_encrypted, include_unencrypted},
                      clip(range, limits_of(MEMORY_FLASH)), eeprom, eeprom.end - eeprom.start,
                      abort_requested);
}

bool ZarnSerialDevice::read_parts(const QFile& file, const AreaFilter& areas, Span flash,
                                  Span eeprom, unsigned int eeprom_request,
                                  const bool& abort_requested)
{
    MemoryMap map(MemoryMap::default_chunk_size);
    return check_geometry(!flash.is_empty(), geometry::block_fault(*m_profile, MEMORY_FLASH)) &&
           check_geometry(!eeprom.is_empty(), geometry::block_fault(*m_profile, MEMORY_EEPROM)) &&
           check_geometry(!eeprom.is_empty(),
                          geometry::block_start_fault(*m_profile, MEMORY_EEPROM, eeprom.start)) &&
           read_flash(map, areas, flash, abort_requested) &&
           read_eeprom(map, eeprom, eeprom_request, abort_requested) && save(map, file);
}

/// One row is read at the start of each block; on most devices the two have the same size.
bool ZarnSerialDevice::read_flash(MemoryMap& map, const AreaFilter& areas, Span flash,
                                  const bool& abort_requested)
{
    const unsigned int row_size = get_attr(Profile::flash_row_size);
    return walk_rows(
        flash, get_attr(Profile::flash_block_size), abort_requested, [&](unsigned int row) {
            return areas.excludes(row) || read_into(map, MEMORY_FLASH, row, row_size) ||
                   error(QStringLiteral("read() at %1 could not be performed").arg(hex8(row)));
        });
}

bool ZarnSerialDevice::read_eeprom(MemoryMap& map, Span eeprom, unsigned int request_size,
                                   const bool& abort_requested)
{
    return walk_rows(eeprom, request_size, abort_requested, [&](unsigned int row) {
        return read_into(map, MEMORY_EEPROM, row, request_size) ||
               error(QStringLiteral("eeprom read() at %1 could not be performed").arg(hex8(row)));
    });
}

bool ZarnSerialDevice::read_into(MemoryMap& map, MemoryType type, unsigned int address,
                                 unsigned int num_bytes)
{
    QByteArray bytes;
    if (!read_row(type, address, num_bytes, bytes)) {
        return false;
    }
    map.write(address, bytes);
    return true;
}
