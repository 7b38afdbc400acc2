#include "device/GeometryFaults.h"
#include "device/ZarnSerialDevice.h"
#include "util/Util.h"

#include <QDebug>

#include <limits>

namespace
{

constexpr unsigned char longest_run = std::numeric_limits<unsigned char>::max();

/// The offending address stands at both places of `text`; the bound that it offends is not shown.
QString out_of_bounds(const QString& text, unsigned int address)
{
    return text.arg(Util::uint_to_hex(address, -1));
}

} // namespace

bool ZarnSerialDevice::erase_all(bool include_encrypted, bool include_unencrypted)
{
    const unsigned int step = geometry::page_step(*m_profile);
    const Span flash = limits_of(MEMORY_FLASH);
    qDebug() << "Min: " << flash.start << " max: " << flash.end << " page:" << step;
    if (flash.is_empty()) {
        return true;
    }
    return check_geometry(geometry::page_step_fault(*m_profile)) &&
           erase_pages({*m_profile, include_encrypted, include_unencrypted}, flash, step);
}

bool ZarnSerialDevice::erase_range(bool include_encrypted, bool include_unencrypted,
                                   unsigned int start_address, unsigned int end_address)
{
    if (m_profile->get_min_address(MEMORY_FLASH) > start_address) {
        return error(out_of_bounds(
            QStringLiteral("unable to erase at %1 below min flash address 0x%1"), start_address));
    }
    if (m_profile->get_max_address(MEMORY_FLASH) < end_address) {
        return error(out_of_bounds(
            QStringLiteral("unable to erase at %1 above max flash address 0x%1"), end_address));
    }
    if (!check_geometry(geometry::page_fault(*m_profile))) {
        return false;
    }
    const unsigned int step = m_profile->get_page_size(MEMORY_FLASH);
    const quint64 limit = (quint64{end_address} / step + 1) * step;
    return check_geometry(
               geometry::wrap_fault(*m_profile, MEMORY_FLASH, ATTR_MEMORY_PAGE_SIZE, limit)) &&
           erase_pages({*m_profile, include_encrypted, include_unencrypted},
                       {start_address / step * step, static_cast<unsigned int>(limit)}, step);
}

/// Erases the pages in runs as long as one command can carry; excluded pages split the runs. The
/// first run is deliberately addressed at the lowest page of flash, wherever the pages begin; only
/// a split moves the address on to the pages themselves.
bool ZarnSerialDevice::erase_pages(const AreaFilter& areas, Span pages, unsigned int step)
{
    if (!check_geometry(geometry::pages_erase_fault(areas, pages, step))) {
        return false;
    }
    unsigned int run_start = m_profile->get_min_address(MEMORY_FLASH);
    unsigned char count = 0;
    const auto erase_pending_run = [&](unsigned int next_page) {
        const bool erased = count == 0 || erase_run(run_start, count);
        run_start = next_page;
        count = 0;
        return erased;
    };
    const bool walked = walk(pages, step, [&](unsigned int page) {
        if (areas.excludes(page)) {
            return erase_pending_run(page + step);
        }
        ++count;
        return count < longest_run || erase_pending_run(page + step);
    });
    return walked && erase_pending_run(0);
}

bool ZarnSerialDevice::erase_run(unsigned int address, unsigned char count)
{
    return erase_flash(address, count) ||
           error(QStringLiteral("unable to erase %1 flash pages at address 0x%2")
                     .arg(QString::number(count), Util::uint_to_hex(address, -1)));
}
