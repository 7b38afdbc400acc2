// Bringing the pages that an image touches up to date: compare, erase, write, read back. A page
// that has a row without image bytes never matches and is always rewritten; what else it
// held is lost. EEPROM rows are written and not read back. The commands: Protocol.h.

#include "device/GeometryChecks.h"
#include "device/RowWriter.h"
#include "device/Rows.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "util/Util.h"

#include <QDebug>

#include <algorithm>
#include <set>

namespace
{

/// Both places of the text show the address; the size is not shown.
void warn_outside(unsigned int address)
{
    qDebug() << QStringLiteral("Warning, blob at address 0x%1 with size %1")
                    .arg(address, 8, 16, QLatin1Char('0'))
             << " not in flash or eeprom memory range";
}

void warn_skipped(unsigned int address, const AreaFilter& areas)
{
    const bool encrypted = areas.profile.is_encrypted_flash(address);
    qDebug() << "Skipping " << address
             << (encrypted ? " in encrypted area!" : " in unencrypted area!");
}

AddressRange range_of(const AddressedBLOB& blob)
{
    return {blob.address, blob.address + blob.size()};
}

/// Programming a row reads it back, so flash needs all figures of a read as well.
Reason check_pages(const Profile& profile, const AddressedBLOB& blob)
{
    if (auto reason = geometry::check_read(profile, MEMORY_FLASH)) {
        return reason;
    }
    if (auto reason = geometry::check_page(profile)) {
        return reason;
    }
    const unsigned int page_size = profile.get_page_size(MEMORY_FLASH);
    const quint64 end = quint64{blob.address} + blob.size();
    if (auto reason = geometry::check_no_wrap(profile, MEMORY_FLASH, ATTR_MEMORY_PAGE_SIZE,
                                              end + page_size - 1)) {
        return reason;
    }
    const AddressRange pages = range_of(blob).widened_to(page_size);
    const unsigned int row_size = profile.get_row_size(MEMORY_FLASH);
    return geometry::check_rows_read({profile, true, true}, MEMORY_FLASH,
                                     {pages.end - page_size, pages.end}, row_size, row_size);
}

Reason check_eeprom_rows(const Profile& profile, const AddressedBLOB& blob)
{
    if (auto reason = geometry::check_row(profile, MEMORY_EEPROM)) {
        return reason;
    }
    const quint64 end = quint64{blob.address} + blob.size();
    return geometry::check_no_wrap(profile, MEMORY_EEPROM, ATTR_MEMORY_ROW_SIZE,
                                   end + profile.get_row_size(MEMORY_EEPROM) - 1);
}

/// Why a blob that takes part cannot be written.
Reason check_blob(const Profile& profile, const AddressedBLOB& blob)
{
    return profile.is_flash(blob.address) ? check_pages(profile, blob)
                                          : check_eeprom_rows(profile, blob);
}

class PageUpdater
{
public:
    PageUpdater(ZarnSerialDevice& device, const MemoryMap& image, const AreaFilter& areas,
                const bool& abort_requested)
        : m_device(device),
          m_image(image),
          m_areas(areas),
          m_abort_requested(abort_requested),
          m_page_size(areas.profile.get_page_size(MEMORY_FLASH))
    {
    }

    bool check()
    {
        const auto& blobs = m_image.blobs();
        return std::all_of(blobs.begin(), blobs.end(), [this](const auto& blob) {
            return !m_areas.admits(blob->address) ||
                   rows::passes(m_device, check_blob(m_areas.profile, *blob));
        });
    }

    /// Pages go up in address order, so that a run that stops half way has done the lower part.
    bool update(bool skip_compare)
    {
        const std::set<unsigned int> pages = touched_pages();
        RowWriter writer(m_device, m_image, m_abort_requested,
                         static_cast<unsigned int>(pages.size()) * m_page_size + eeprom_size(),
                         RowWriter::Check::ReadBack);
        return writer.begin() &&
               std::all_of(
                   pages.begin(), pages.end(),
                   [&](unsigned int page) { return update_page(page, skip_compare, writer); }) &&
               write_eeprom(writer) && writer.complete();
    }

private:
    enum class Page { Matches, Differs, Aborted };

    /// The pages that hold the image's flash bytes; a blob belongs to the area that it begins in.
    std::set<unsigned int> touched_pages() const
    {
        std::set<unsigned int> pages;
        for (const auto& blob : m_image.blobs()) {
            const MemoryType type = m_areas.profile.get_memory_type(blob->address);
            if (type == MEMORY_OTHER) {
                warn_outside(blob->address);
            } else if (m_areas.excludes(blob->address)) {
                warn_skipped(blob->address, m_areas);
            } else if (type == MEMORY_FLASH) {
                walk(range_of(*blob).widened_to(m_page_size), m_page_size, [&](unsigned int page) {
                    pages.insert(page);
                    return true;
                });
            }
        }
        return pages;
    }

    bool is_in_eeprom(const AddressedBLOB& blob) const
    {
        return m_areas.profile.get_memory_type(blob.address) == MEMORY_EEPROM;
    }

    AddressRange eeprom_rows_of(const AddressedBLOB& blob) const
    {
        return range_of(blob).widened_to(m_areas.profile.get_row_size(MEMORY_EEPROM));
    }

    unsigned int eeprom_size() const
    {
        unsigned int size = 0;
        for (const auto& blob : m_image.blobs()) {
            size += is_in_eeprom(*blob) ? eeprom_rows_of(*blob).size() : 0;
        }
        return size;
    }

    bool update_page(unsigned int page, bool skip_compare, RowWriter& writer)
    {
        const AddressRange range{page, page + m_page_size};
        switch (skip_compare ? Page::Differs : compare(range)) {
        case Page::Aborted:
            return false;
        case Page::Matches:
            writer.advance(m_page_size);
            return true;
        case Page::Differs:
            break;
        }
        if (!m_device.erase_flash(page, 1)) {
            return m_device.error(QStringLiteral("unable to erase flash page at address 0x%1")
                                      .arg(Util::uint_to_hex(page, -1)));
        }
        return rows::walk(m_device, range, m_areas.profile.get_row_size(MEMORY_FLASH),
                          m_abort_requested,
                          [&](unsigned int row) { return writer.write_flash_row(row); });
    }

    /// Stops at the first row that differs.
    Page compare(AddressRange page)
    {
        bool matches = true;
        const bool compared = rows::walk(m_device, page, m_areas.profile.get_row_size(MEMORY_FLASH),
                                         m_abort_requested, [&](unsigned int row) {
                                             matches = row_matches(row);
                                             return matches;
                                         });
        if (!matches) {
            return Page::Differs;
        }
        return compared ? Page::Matches : Page::Aborted;
    }

    /// A row without image bytes counts as different: its page is brought to the erased state
    /// there. So does one that cannot be read, unless the image holds exactly the filler.
    bool row_matches(unsigned int address)
    {
        QByteArray device_row;
        rows::read(m_device, MEMORY_FLASH, address, device_row);
        QByteArray row;
        return rows::fill(m_device, m_image, MEMORY_FLASH, address, row) && device_row == row;
    }

    bool write_eeprom(RowWriter& writer)
    {
        const auto& blobs = m_image.blobs();
        return std::all_of(blobs.begin(), blobs.end(), [&](const auto& blob) {
            return !is_in_eeprom(*blob) || writer.write_eeprom_rows(eeprom_rows_of(*blob));
        });
    }

    ZarnSerialDevice& m_device;
    const MemoryMap& m_image;
    const AreaFilter m_areas;
    const bool& m_abort_requested;
    const unsigned int m_page_size;
};

} // namespace

bool ZarnSerialDevice::write_with_verify(const MemoryMap* map, const bool& abort_requested,
                                         bool include_encrypted, bool include_unencrypted,
                                         bool skip_compare)
{
    PageUpdater updater(*this, *map, {*m_profile, include_encrypted, include_unencrypted},
                        abort_requested);
    return updater.check() && updater.update(skip_compare);
}
