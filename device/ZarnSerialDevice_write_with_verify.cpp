#include "device/GeometryFaults.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "util/Util.h"

#include <QDebug>

#include <algorithm>

namespace
{

/// Both places of the text show the address; the size is not shown.
void warn_outside(unsigned int address)
{
    qDebug() << QStringLiteral("Warning, blob at address 0x%1 with size %1")
                    .arg(address, 8, 16, QLatin1Char('0'))
             << " not in flash or eeprom memory range";
}

void tell_skipped(unsigned int address, const AreaFilter& areas)
{
    const bool encrypted = areas.profile.is_encrypted_flash(address);
    qDebug() << "Skipping " << address
             << (encrypted ? " in encrypted area!" : " in unencrypted area!");
}

Span range_of(const AddressedBLOB& blob)
{
    return {blob.address, blob.address + blob.size()};
}

/// Programming a row reads it back, so flash needs all figures of a read as well.
geometry::Fault pages_fault(const AreaFilter& areas, const AddressedBLOB& blob)
{
    const Profile& profile = areas.profile;
    if (auto fault = geometry::read_fault(profile, MEMORY_FLASH)) {
        return fault;
    }
    if (auto fault = geometry::page_fault(profile)) {
        return fault;
    }
    const unsigned int page_size = profile.get_page_size(MEMORY_FLASH);
    const quint64 end = quint64{blob.address} + blob.size();
    if (auto fault = geometry::wrap_fault(profile, MEMORY_FLASH, ATTR_MEMORY_PAGE_SIZE,
                                          end + page_size - 1)) {
        return fault;
    }
    const Span pages = range_of(blob).widened_to(page_size);
    const unsigned int row_size = profile.get_row_size(MEMORY_FLASH);
    return geometry::rows_read_fault({profile, true, true}, MEMORY_FLASH,
                                     {pages.end - page_size, pages.end}, row_size, row_size);
}

geometry::Fault eeprom_rows_fault(const AreaFilter& areas, const AddressedBLOB& blob)
{
    const Profile& profile = areas.profile;
    if (auto fault = geometry::row_fault(profile, MEMORY_EEPROM)) {
        return fault;
    }
    const quint64 end = quint64{blob.address} + blob.size();
    return geometry::wrap_fault(profile, MEMORY_EEPROM, ATTR_MEMORY_ROW_SIZE,
                                end + profile.get_row_size(MEMORY_EEPROM) - 1);
}

/// Why a blob that takes part cannot be written.
geometry::Fault blob_fault(const AreaFilter& areas, const AddressedBLOB& blob)
{
    return areas.profile.is_flash(blob.address) ? pages_fault(areas, blob)
                                                : eeprom_rows_fault(areas, blob);
}

} // namespace

/// Pages go up in address order, so that a run that stops half way has done the lower part.
bool ZarnSerialDevice::write_with_verify(const MemoryMap* map, const bool& abort_requested,
                                         bool include_encrypted, bool include_unencrypted,
                                         bool skip_compare)
{
    const AreaFilter areas{*m_profile, include_encrypted, include_unencrypted};
    if (!can_write_with_verify(*map, areas)) {
        return false;
    }
    const std::set<unsigned int> pages = touched_pages(*map, areas);
    Progress progress{0,
                      static_cast<unsigned int>(pages.size()) * get_attr(Profile::flash_page_size) +
                          eeprom_rows_size(*map)};
    Q_EMIT sig_upload_progress(progress.processed, progress.total);
    if (!open_port()) {
        return false;
    }
    for (const unsigned int page : pages) {
        if (!bring_up_to_date(*map, page, abort_requested, skip_compare, progress)) {
            return false;
        }
    }
    if (!write_eeprom_blobs(*map, abort_requested, progress)) {
        return false;
    }
    Q_EMIT sig_operation_complete();
    return true;
}

bool ZarnSerialDevice::can_write_with_verify(const MemoryMap& map, const AreaFilter& areas)
{
    const auto& blobs = map.blobs();
    return std::all_of(blobs.begin(), blobs.end(), [&](const auto& blob) {
        return !areas.admits(blob->address) || check_geometry(blob_fault(areas, *blob));
    });
}

/// The pages that hold the image's flash bytes; a blob belongs to the area that it begins in.
std::set<unsigned int> ZarnSerialDevice::touched_pages(const MemoryMap& map,
                                                       const AreaFilter& areas) const
{
    std::set<unsigned int> pages;
    for (const auto& blob : map.blobs()) {
        const MemoryType type = m_profile->get_memory_type(blob->address);
        if (type == MEMORY_OTHER) {
            warn_outside(blob->address);
        } else if (areas.excludes(blob->address)) {
            tell_skipped(blob->address, areas);
        } else if (type == MEMORY_FLASH) {
            const unsigned int page_size = get_attr(Profile::flash_page_size);
            walk(range_of(*blob).widened_to(page_size), page_size, [&](unsigned int page) {
                pages.insert(page);
                return true;
            });
        }
    }
    return pages;
}

unsigned int ZarnSerialDevice::eeprom_rows_size(const MemoryMap& map) const
{
    unsigned int size = 0;
    for (const auto& blob : map.blobs()) {
        if (m_profile->get_memory_type(blob->address) == MEMORY_EEPROM) {
            const Span rows = range_of(*blob).widened_to(get_attr(Profile::eeprom_row_size));
            size += rows.end - rows.start;
        }
    }
    return size;
}

bool ZarnSerialDevice::bring_up_to_date(const MemoryMap& map, unsigned int page,
                                        const bool& abort_requested, bool skip_compare,
                                        Progress& progress)
{
    const unsigned int page_size = get_attr(Profile::flash_page_size);
    const Span rows{page, page + page_size};
    bool differs = skip_compare;
    if (!skip_compare && !compare_rows(map, rows, abort_requested, differs)) {
        return false;
    }
    if (!differs) {
        advance(progress, page_size);
        return true;
    }
    if (!erase_flash(page, 1)) {
        return error(QStringLiteral("unable to erase flash page at address 0x%1")
                         .arg(Util::uint_to_hex(page, -1)));
    }
    return walk_rows(rows, get_attr(Profile::flash_row_size), abort_requested,
                     [&](unsigned int row) { return write_checked_row(map, row, progress); });
}

/// Stops at the first row that differs and says so in `differs`; false when aborted.
bool ZarnSerialDevice::compare_rows(const MemoryMap& map, Span rows, const bool& abort_requested,
                                    bool& differs)
{
    const bool all_compared =
        walk_rows(rows, get_attr(Profile::flash_row_size), abort_requested, [&](unsigned int row) {
            differs = !device_holds_row(map, row);
            return !differs;
        });
    return all_compared || differs;
}

/// A row that the image has no byte of counts as different: its page is brought to the erased
/// state there. So does one that cannot be read, unless the filler is what the image asks for.
bool ZarnSerialDevice::device_holds_row(const MemoryMap& map, unsigned int address)
{
    const unsigned int row_size = get_attr(Profile::flash_row_size);
    QByteArray device_row;
    read_row(MEMORY_FLASH, address, row_size, device_row);
    QByteArray row;
    return fill_row(map, MEMORY_FLASH, address, row_size, row) && device_row == row;
}

bool ZarnSerialDevice::write_checked_row(const MemoryMap& map, unsigned int address,
                                         Progress& progress)
{
    const unsigned int row_size = get_attr(Profile::flash_row_size);
    QByteArray row;
    if (fill_row(map, MEMORY_FLASH, address, row_size, row) &&
        !(send_flash_row(address, row) && read_back(address, row))) {
        return false;
    }
    advance(progress, row_size);
    return true;
}

bool ZarnSerialDevice::read_back(unsigned int address, const QByteArray& written)
{
    QByteArray device_row;
    if (!read_row(MEMORY_FLASH, address, get_attr(Profile::flash_row_size), device_row)) {
        return error(QStringLiteral("unable to verify read flash row at address 0x%1")
                         .arg(Util::uint_to_hex(address, -1)));
    }
    return device_row == written || error(QStringLiteral("Row verify failure at address 0x%1")
                                              .arg(Util::uint_to_hex(address, -1)));
}

/// EEPROM rows are not read back.
bool ZarnSerialDevice::write_eeprom_blobs(const MemoryMap& map, const bool& abort_requested,
                                          Progress& progress)
{
    const unsigned int row_size = get_attr(Profile::eeprom_row_size);
    for (const auto& blob : map.blobs()) {
        if (m_profile->get_memory_type(blob->address) == MEMORY_EEPROM &&
            !walk_rows(range_of(*blob).widened_to(row_size), row_size, abort_requested,
                       [&](unsigned int row) { return write_eeprom_row(map, row, progress); })) {
            return false;
        }
    }
    return true;
}
