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
    const AreaFilter areas{*m_profile, include_encrypted, include_unencrypted};
    const Span flash = limits_of(MEMORY_FLASH);
    const Span eeprom = limits_of(MEMORY_EEPROM);
    const unsigned int eeprom_row = get_attr(Profile::eeprom_row_size);
    MemoryMap map(MemoryMap::default_chunk_size);
    return check_readable(areas, flash, eeprom, eeprom_row) &&
           read_flash(map, areas, flash, abort_requested) &&
           walk(eeprom, eeprom_row,
                [&](unsigned int row) {
                    return read_eeprom(map, row, eeprom_row, abort_requested);
                }) &&
           save(map, file);
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
    if (m_profile->is_eeprom(start_address) && eeprom.start > eeprom.end) {
        return error(outside_range().arg(Util::uint_to_hex(start_address, -1)));
    }
    const AreaFilter areas{*m_profile, include_encrypted, include_unencrypted};
    const Span flash = clip(range, limits_of(MEMORY_FLASH));
    const unsigned int eeprom_size = eeprom.end - eeprom.start;
    MemoryMap map(MemoryMap::default_chunk_size);
    return check_readable(areas, flash, eeprom, eeprom_size) &&
           read_flash(map, areas, flash, abort_requested) &&
           (eeprom_size == 0 || read_eeprom(map, eeprom.start, eeprom_size, abort_requested)) &&
           save(map, file);
}

bool ZarnSerialDevice::check_readable(const AreaFilter& areas, Span flash, Span eeprom,
                                      unsigned int eeprom_request)
{
    return check_geometry(geometry::rows_read_fault(areas, MEMORY_FLASH, flash,
                                                    get_attr(Profile::flash_block_size),
                                                    get_attr(Profile::flash_row_size))) &&
           check_geometry(geometry::rows_read_fault(areas, MEMORY_EEPROM, eeprom, eeprom_request,
                                                    eeprom_request));
}

/// One row is read at the start of each block; on most devices the two have the same size.
bool ZarnSerialDevice::read_flash(MemoryMap& map, const AreaFilter& areas, Span flash,
                                  const bool& abort_requested)
{
    const unsigned int row_size = get_attr(Profile::flash_row_size);
    return walk_rows(
        flash, get_attr(Profile::flash_block_size), abort_requested, [&](unsigned int row) {
            return areas.excludes(row) || read_into(map, row, row_size) ||
                   error(QStringLiteral("read() at %1 could not be performed").arg(hex8(row)));
        });
}

bool ZarnSerialDevice::read_eeprom(MemoryMap& map, unsigned int address, unsigned int num_bytes,
                                   const bool& abort_requested)
{
    if (abort_requested) {
        return error(QStringLiteral("upload_firmware() aborted by user"));
    }
    return read_into(map, address, num_bytes) ||
           error(QStringLiteral("eeprom read() at %1 could not be performed").arg(hex8(address)));
}

bool ZarnSerialDevice::read_into(MemoryMap& map, unsigned int address, unsigned int num_bytes)
{
    QByteArray bytes;
    if (!read_memory(address, num_bytes, bytes)) {
        return false;
    }
    map.write(address, bytes);
    return true;
}
