// Reading flash and EEPROM into an Intel HEX file. Flash is read in rows, one at the start of each
// block, EEPROM in rows or, within a range, in a single request. Nothing is sent before all of it
// has been checked, and nothing is saved before all of it has been read. The command: Protocol.h.

#include "device/GeometryChecks.h"
#include "device/Rows.h"
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

class MemoryReader
{
public:
    MemoryReader(ZarnSerialDevice& device, const AreaFilter& areas, const bool& abort_requested)
        : m_device(device),
          m_areas(areas),
          m_abort_requested(abort_requested)
    {
    }

    bool check(AddressRange flash, AddressRange eeprom, unsigned int eeprom_request)
    {
        const Profile& profile = m_areas.profile;
        return rows::passes(m_device,
                            geometry::check_rows_read(m_areas, MEMORY_FLASH, flash,
                                                      profile.get_block_size(MEMORY_FLASH),
                                                      profile.get_row_size(MEMORY_FLASH))) &&
               rows::passes(m_device, geometry::check_rows_read(m_areas, MEMORY_EEPROM, eeprom,
                                                                eeprom_request, eeprom_request));
    }

    bool read_flash(AddressRange range)
    {
        const unsigned int row_size = m_areas.profile.get_row_size(MEMORY_FLASH);
        return rows::walk(
            m_device, range, m_areas.profile.get_block_size(MEMORY_FLASH), m_abort_requested,
            [&](unsigned int row) {
                return m_areas.excludes(row) || keep(row, row_size) ||
                       m_device.error(
                           QStringLiteral("read() at %1 could not be performed").arg(hex8(row)));
            });
    }

    bool read_eeprom_rows(AddressRange range)
    {
        const unsigned int row_size = m_areas.profile.get_row_size(MEMORY_EEPROM);
        return walk(range, row_size, [&](unsigned int row) { return read_eeprom(row, row_size); });
    }

    bool read_eeprom(unsigned int address, unsigned int num_bytes)
    {
        return rows::goes_on(m_device, m_abort_requested) &&
               (keep(address, num_bytes) ||
                m_device.error(QStringLiteral("eeprom read() at %1 could not be performed")
                                   .arg(hex8(address))));
    }

    /// Saves under the file's name. A failed save is reported on the debug channel only; having
    /// read nothing is a failure.
    bool save(const QFile& file) const
    {
        if (m_map.size() == 0) {
            return false;
        }
        m_map.save_to_hex_file(file.fileName());
        return true;
    }

private:
    bool keep(unsigned int address, unsigned int num_bytes)
    {
        QByteArray bytes;
        if (!m_device.read_memory(address, num_bytes, bytes)) {
            return false;
        }
        m_map.write(address, bytes);
        return true;
    }

    ZarnSerialDevice& m_device;
    const AreaFilter m_areas;
    const bool& m_abort_requested;
    MemoryMap m_map{MemoryMap::default_chunk_size};
};

} // namespace

bool ZarnSerialDevice::read(QFile& file, const bool& abort_requested, bool include_encrypted,
                            bool include_unencrypted)
{
    const AddressRange flash = rows::limits_of(*m_profile, MEMORY_FLASH);
    const AddressRange eeprom = rows::limits_of(*m_profile, MEMORY_EEPROM);
    MemoryReader reader(*this, {*m_profile, include_encrypted, include_unencrypted},
                        abort_requested);
    return reader.check(flash, eeprom, get_attr(Profile::eeprom_row_size)) &&
           reader.read_flash(flash) && reader.read_eeprom_rows(eeprom) && reader.save(file);
}

bool ZarnSerialDevice::read_range(QFile& file, const bool& abort_requested, bool include_encrypted,
                                  bool include_unencrypted, unsigned int start_address,
                                  unsigned int end_address)
{
    const AddressRange range{start_address, end_address};
    if (!rows::passes(*this, rows::check_range(*m_profile, range, outside_range()))) {
        return false;
    }
    const AddressRange flash = clip(range, rows::limits_of(*m_profile, MEMORY_FLASH));
    const AddressRange eeprom = clip(range, rows::limits_of(*m_profile, MEMORY_EEPROM));
    if (m_profile->is_eeprom(start_address) && eeprom.start > eeprom.end) {
        return error(outside_range().arg(Util::uint_to_hex(start_address, -1)));
    }
    MemoryReader reader(*this, {*m_profile, include_encrypted, include_unencrypted},
                        abort_requested);
    return reader.check(flash, eeprom, eeprom.size()) && reader.read_flash(flash) &&
           (eeprom.size() == 0 || reader.read_eeprom(eeprom.start, eeprom.size())) &&
           reader.save(file);
}
