#include "device/GeometryFaults.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "util/Util.h"

namespace
{

/// How far the blobs of one memory reach; `empty` until there is one.
struct Reach {
    unsigned int start;
    quint64 end;
};

Reach reach_of(const MemoryMap& map, const AreaFilter& areas, MemoryType type, unsigned int empty)
{
    Reach reach{empty, empty};
    bool seen = false;
    for (const auto& blob : map.blobs()) {
        if (areas.profile.get_memory_type(blob->address) != type || areas.excludes(blob->address)) {
            continue;
        }
        reach.start = seen ? qMin(reach.start, blob->address) : blob->address;
        reach.end = qMax(reach.end, quint64{blob->address} + blob->size());
        seen = true;
    }
    return reach;
}

/// Bytes in the whole rows of a span; a row left over at its end does not count. A span that ends
/// before it starts counts as what the 32 bits make of it.
unsigned int whole_rows_size(Span rows, unsigned int row_size)
{
    return row_size == 0 ? 0 : (rows.end - rows.start) / row_size * row_size;
}

} // namespace

/// Rows before the image's first byte are passed over without being sent, so starting at the flash
/// minimum costs nothing. Where EEPROM lies below the image (or there is none) the walk starts at
/// the image itself, which must then begin on a row.
bool ZarnSerialDevice::write(const MemoryMap* map, const bool& abort_requested,
                             bool include_encrypted, bool include_unencrypted)
{
    const AreaFilter areas{*m_profile, include_encrypted, include_unencrypted};
    const Span flash_limits = limits_of(MEMORY_FLASH);
    const Span eeprom_limits = limits_of(MEMORY_EEPROM);
    const Reach flash = reach_of(*map, areas, MEMORY_FLASH, flash_limits.start);
    const Reach eeprom = reach_of(*map, areas, MEMORY_EEPROM, eeprom_limits.start);
    if (!check_geometry(
            geometry::wrap_fault(*m_profile, MEMORY_FLASH, ATTR_MEMORY_ROW_SIZE, flash.end)) ||
        !check_geometry(
            geometry::wrap_fault(*m_profile, MEMORY_EEPROM, ATTR_MEMORY_ROW_SIZE, eeprom.end))) {
        return false;
    }
    return write_parts(*map, areas,
                       {flash.start >= eeprom_limits.start ? flash.start : flash_limits.start,
                        qMin(flash_limits.end, static_cast<unsigned int>(flash.end))},
                       {qMax(eeprom_limits.start, eeprom.start),
                        qMin(eeprom_limits.end, static_cast<unsigned int>(eeprom.end))},
                       abort_requested);
}

bool ZarnSerialDevice::write_range(const MemoryMap* map, unsigned int start_address,
                                   unsigned int end_address, const bool& abort_requested,
                                   bool include_encrypted, bool include_unencrypted)
{
    const Span range{start_address, end_address};
    if (!check_range(range, QStringLiteral("Cannot write to address range 0x%1 0x%1 outside"
                                           "                 of flash addresses 0x%1 0x%1 or "
                                           "eeprom addresses 0x%1 0x%1"))) {
        return false;
    }
    return write_parts(*map, {*m_profile, include_encrypted, include_unencrypted},
                       clip(range, limits_of(MEMORY_FLASH)), clip(range, limits_of(MEMORY_EEPROM)),
                       abort_requested);
}

bool ZarnSerialDevice::write_parts(const MemoryMap& map, const AreaFilter& areas, Span flash,
                                   Span eeprom, const bool& abort_requested)
{
    if (!check_geometry(geometry::rows_write_fault(areas, MEMORY_FLASH, flash)) ||
        !check_geometry(geometry::rows_write_fault(areas, MEMORY_EEPROM, eeprom))) {
        return false;
    }
    const unsigned int flash_row = get_attr(Profile::flash_row_size);
    const unsigned int eeprom_row = get_attr(Profile::eeprom_row_size);
    Progress progress{0, whole_rows_size(eeprom, eeprom_row) + whole_rows_size(flash, flash_row)};
    Q_EMIT sig_upload_progress(progress.processed, progress.total);
    if (!open_port()) {
        return false;
    }
    const bool written =
        walk_rows(flash, flash_row, abort_requested,
                  [&](unsigned int row) {
                      return areas.excludes(row) || write_flash_row(map, row, progress);
                  }) &&
        walk_rows(eeprom, eeprom_row, abort_requested,
                  [&](unsigned int row) { return write_eeprom_row(map, row, progress); });
    if (written) {
        Q_EMIT sig_operation_complete();
    }
    return written;
}

/// A row that the image does not touch counts as processed but is not sent: the device's bytes
/// there are none of the image's business.
bool ZarnSerialDevice::write_flash_row(const MemoryMap& map, unsigned int address,
                                       Progress& progress)
{
    const unsigned int row_size = get_attr(Profile::flash_row_size);
    QByteArray row;
    if (fill_row(map, MEMORY_FLASH, address, row_size, row) && !send_flash_row(address, row)) {
        return false;
    }
    advance(progress, row_size);
    return true;
}

bool ZarnSerialDevice::send_flash_row(unsigned int address, const QByteArray& row)
{
    return write_memory(address, row) ||
           error(QStringLiteral("unable to write flash row at address 0x%1")
                     .arg(Util::uint_to_hex(address, -1)));
}

/// EEPROM rows within reach of the image are always written, with filler where it has no bytes.
bool ZarnSerialDevice::write_eeprom_row(const MemoryMap& map, unsigned int address,
                                        Progress& progress)
{
    const unsigned int row_size = get_attr(Profile::eeprom_row_size);
    QByteArray row;
    fill_row(map, MEMORY_EEPROM, address, row_size, row);
    if (!write_memory(address, row)) {
        return error(QStringLiteral("unable to write EEPROM row at address 0x%1")
                         .arg(Util::uint_to_hex(address, -1)));
    }
    advance(progress, row_size);
    return true;
}

void ZarnSerialDevice::advance(Progress& progress, unsigned int bytes)
{
    progress.processed += bytes;
    Q_EMIT sig_upload_progress(progress.processed, progress.total);
}
