// Erasing flash. Pages are gathered into runs as long as the one-byte count of a command allows;
// pages that are left out split the runs. The first run is always addressed at the lowest page of
// flash, wherever the pages begin. The command: Protocol.h.

#include "device/GeometryChecks.h"
#include "device/Rows.h"
#include "device/ZarnSerialDevice.h"
#include "util/Util.h"

#include <QDebug>

#include <limits>

namespace
{

/// The offending address stands at both places of `text`; the bound that it offends is not shown.
QString out_of_bounds(const QString& text, unsigned int address)
{
    return text.arg(Util::uint_to_hex(address, -1));
}

Reason check_bounds(AddressRange flash, unsigned int start_address, unsigned int end_address)
{
    if (flash.start > start_address) {
        return out_of_bounds(QStringLiteral("unable to erase at %1 below min flash address 0x%1"),
                             start_address);
    }
    if (flash.end < end_address) {
        return out_of_bounds(QStringLiteral("unable to erase at %1 above max flash address 0x%1"),
                             end_address);
    }
    return std::nullopt;
}

class FlashEraser
{
public:
    FlashEraser(ZarnSerialDevice& device, const AreaFilter& areas, unsigned int page_step)
        : m_device(device),
          m_areas(areas),
          m_step(page_step),
          m_run_start(areas.profile.get_min_address(MEMORY_FLASH))
    {
    }

    bool erase(AddressRange pages)
    {
        return rows::passes(m_device, geometry::check_pages_erased(m_areas, pages, m_step)) &&
               walk(pages, m_step, [&](unsigned int page) { return take(page); }) && erase_run();
    }

private:
    static constexpr unsigned char longest_run = std::numeric_limits<unsigned char>::max();

    bool take(unsigned int page)
    {
        const bool left_out = m_areas.excludes(page);
        m_count = static_cast<unsigned char>(m_count + (left_out ? 0 : 1));
        if (!left_out && m_count < longest_run) {
            return true;
        }
        const bool erased = erase_run();
        m_run_start = page + m_step;
        m_count = 0;
        return erased;
    }

    bool erase_run()
    {
        return m_count == 0 || m_device.erase_flash(m_run_start, m_count) ||
               m_device.error(
                   QStringLiteral("unable to erase %1 flash pages at address 0x%2")
                       .arg(QString::number(m_count), Util::uint_to_hex(m_run_start, -1)));
    }

    ZarnSerialDevice& m_device;
    const AreaFilter m_areas;
    const unsigned int m_step;
    unsigned int m_run_start;
    unsigned char m_count = 0;
};

} // namespace

bool ZarnSerialDevice::erase_all(bool include_encrypted, bool include_unencrypted)
{
    const unsigned int step = geometry::page_step(*m_profile);
    const AddressRange flash = rows::limits_of(*m_profile, MEMORY_FLASH);
    qDebug() << "Min: " << flash.start << " max: " << flash.end << " page:" << step;
    if (flash.is_empty()) {
        return true;
    }
    return rows::passes(*this, geometry::check_page_step(*m_profile)) &&
           FlashEraser(*this, {*m_profile, include_encrypted, include_unencrypted}, step)
               .erase(flash);
}

bool ZarnSerialDevice::erase_range(bool include_encrypted, bool include_unencrypted,
                                   unsigned int start_address, unsigned int end_address)
{
    const AddressRange flash = rows::limits_of(*m_profile, MEMORY_FLASH);
    if (!rows::passes(*this, check_bounds(flash, start_address, end_address)) ||
        !rows::passes(*this, geometry::check_page(*m_profile))) {
        return false;
    }
    const unsigned int step = m_profile->get_page_size(MEMORY_FLASH);
    const quint64 limit = (quint64{end_address} / step + 1) * step;
    return rows::passes(*this, geometry::check_no_wrap(*m_profile, MEMORY_FLASH,
                                                       ATTR_MEMORY_PAGE_SIZE, limit)) &&
           FlashEraser(*this, {*m_profile, include_encrypted, include_unencrypted}, step)
               .erase({start_address / step * step, static_cast<unsigned int>(limit)});
}
