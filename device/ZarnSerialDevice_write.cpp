// Writing an image, row by row. Flash rows that the image does not touch are skipped, EEPROM rows
// within its range are always written. Nothing is erased and nothing is read back. The command:
// Protocol.h.

#include "device/GeometryChecks.h"
#include "device/RowWriter.h"
#include "device/Rows.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"

namespace
{

/// From the first byte of an image in one memory to its last; `empty` if there is none.
struct ImageRange {
    unsigned int start;
    quint64 end;
};

ImageRange range_of(const MemoryMap& image, const AreaFilter& areas, MemoryType type,
                    unsigned int empty)
{
    ImageRange range{empty, empty};
    bool seen = false;
    for (const auto& blob : image.blobs()) {
        if (areas.profile.get_memory_type(blob->address) != type || areas.excludes(blob->address)) {
            continue;
        }
        range.start = seen ? qMin(range.start, blob->address) : blob->address;
        range.end = qMax(range.end, quint64{blob->address} + blob->size());
        seen = true;
    }
    return range;
}

/// Bytes in the whole rows of a range; a row left over at its end does not count.
unsigned int whole_rows_size(AddressRange rows, unsigned int row_size)
{
    return row_size == 0 ? 0 : rows.size() / row_size * row_size;
}

class ImageWriter
{
public:
    ImageWriter(ZarnSerialDevice& device, const MemoryMap& image, const AreaFilter& areas,
                const bool& abort_requested)
        : m_device(device),
          m_image(image),
          m_areas(areas),
          m_abort_requested(abort_requested)
    {
    }

    bool write(AddressRange flash, AddressRange eeprom)
    {
        const unsigned int flash_row = m_areas.profile.get_row_size(MEMORY_FLASH);
        const unsigned int eeprom_row = m_areas.profile.get_row_size(MEMORY_EEPROM);
        RowWriter writer(m_device, m_image, m_abort_requested,
                         whole_rows_size(eeprom, eeprom_row) + whole_rows_size(flash, flash_row),
                         RowWriter::Check::None);
        return check(MEMORY_FLASH, flash) && check(MEMORY_EEPROM, eeprom) && writer.begin() &&
               rows::walk(m_device, flash, flash_row, m_abort_requested,
                          [&](unsigned int row) {
                              return m_areas.excludes(row) || writer.write_flash_row(row);
                          }) &&
               writer.write_eeprom_rows(eeprom) && writer.complete();
    }

private:
    bool check(MemoryType type, AddressRange rows)
    {
        return rows::passes(m_device, geometry::check_rows_written(m_areas, type, rows));
    }

    ZarnSerialDevice& m_device;
    const MemoryMap& m_image;
    const AreaFilter m_areas;
    const bool& m_abort_requested;
};

} // namespace

/// Rows before the image's first byte are skipped, so starting at the flash
/// minimum costs nothing. Where EEPROM lies below the image (or there is none) the walk starts at
/// the image itself, which must then begin on a row.
bool ZarnSerialDevice::write(const MemoryMap* map, const bool& abort_requested,
                             bool include_encrypted, bool include_unencrypted)
{
    const AreaFilter areas{*m_profile, include_encrypted, include_unencrypted};
    const AddressRange flash = rows::limits_of(*m_profile, MEMORY_FLASH);
    const AddressRange eeprom = rows::limits_of(*m_profile, MEMORY_EEPROM);
    const ImageRange in_flash = range_of(*map, areas, MEMORY_FLASH, flash.start);
    const ImageRange in_eeprom = range_of(*map, areas, MEMORY_EEPROM, eeprom.start);
    const auto end_is_reached = [&](MemoryType type, quint64 end) {
        return rows::passes(*this,
                            geometry::check_no_wrap(*m_profile, type, ATTR_MEMORY_ROW_SIZE, end));
    };
    return end_is_reached(MEMORY_FLASH, in_flash.end) &&
           end_is_reached(MEMORY_EEPROM, in_eeprom.end) &&
           ImageWriter(*this, *map, areas, abort_requested)
               .write({in_flash.start >= eeprom.start ? in_flash.start : flash.start,
                       qMin(flash.end, static_cast<unsigned int>(in_flash.end))},
                      {qMax(eeprom.start, in_eeprom.start),
                       qMin(eeprom.end, static_cast<unsigned int>(in_eeprom.end))});
}

bool ZarnSerialDevice::write_range(const MemoryMap* map, unsigned int start_address,
                                   unsigned int end_address, const bool& abort_requested,
                                   bool include_encrypted, bool include_unencrypted)
{
    const AddressRange range{start_address, end_address};
    const QString outside = QStringLiteral("Cannot write to address range 0x%1 0x%1 outside"
                                           "                 of flash addresses 0x%1 0x%1 or "
                                           "eeprom addresses 0x%1 0x%1");
    return rows::passes(*this, rows::check_range(*m_profile, range, outside)) &&
           ImageWriter(*this, *map, {*m_profile, include_encrypted, include_unencrypted},
                       abort_requested)
               .write(clip(range, rows::limits_of(*m_profile, MEMORY_FLASH)),
                      clip(range, rows::limits_of(*m_profile, MEMORY_EEPROM)));
}
