// Where memories and areas lie.

#include "inspect/Figures.h"
#include "inspect/RowLint.h"
#include "profile/MemoryAttributes.h"

namespace inspect
{

namespace
{

/// The lowest address from which data records cannot be placed with an ordinary address record.
constexpr quint64 bit_23 = 0x800000;
constexpr quint64 reachable_again = 0xFF800000;

struct Range {
    quint64 start;
    quint64 end;

    bool overlaps(const Range& other) const
    {
        return qMax(start, other.start) < qMin(end, other.end);
    }

    QString text() const
    {
        return QStringLiteral("%1 to %2").arg(address_text(start), address_text(end));
    }
};

Range range_of(const Profile& profile, Profile::Attr start, Profile::Attr end)
{
    return {profile.attributes.at(static_cast<std::size_t>(start)),
            profile.attributes.at(static_cast<std::size_t>(end))};
}

Range range_of(const Profile& profile, MemoryType memory)
{
    return {profile.get_min_address(memory), profile.get_max_address(memory)};
}

void check_unencrypted_area(RowLint& lint)
{
    const Range area = range_of(lint.profile, Profile::flash_unencrypted_start_address,
                                Profile::flash_unencrypted_end_address);
    const Range flash = range_of(lint.profile, MEMORY_FLASH);
    if (area.start == area.end) {
        return;
    }
    if (area.start > area.end || area.start < flash.start || area.end > flash.end) {
        lint.add(
            Code::AreaOutsideFlash, Profile::flash_unencrypted_start_address,
            QStringLiteral("The area goes from %1, flash from %2.").arg(area.text(), flash.text()));
        return;
    }
    const unsigned int page = lint.profile.get_page_size(MEMORY_FLASH);
    for (const Profile::Attr limit :
         {Profile::flash_unencrypted_start_address, Profile::flash_unencrypted_end_address}) {
        const quint64 address = lint.raw(limit);
        if (address != flash.end && (address - flash.start) % page != 0) {
            lint.add(Code::AreaOffPage, limit,
                     QStringLiteral("%1 lies inside a page of %2.")
                         .arg(address_text(address), size_text(page)));
        }
    }
}

void check_bootloader(RowLint& lint)
{
    const Range bootloader =
        range_of(lint.profile, Profile::bootloader_start_address, Profile::bootloader_end_address);
    if (bootloader.start >= bootloader.end) {
        lint.add(Code::NoBootloader, Profile::bootloader_end_address,
                 QStringLiteral("The bootloader goes from %1.").arg(bootloader.text()));
    }
}

void check_overlaps(RowLint& lint)
{
    const Range eeprom = range_of(lint.profile, MEMORY_EEPROM);
    const Range flash = range_of(lint.profile, MEMORY_FLASH);
    const Range bootloader =
        range_of(lint.profile, Profile::bootloader_start_address, Profile::bootloader_end_address);
    for (const auto& [name, range] :
         {std::pair("Flash", flash), std::pair("The bootloader", bootloader)}) {
        if (eeprom.overlaps(range)) {
            lint.add(Code::MemoriesOverlap, Profile::eeprom_start_address,
                     QStringLiteral("%1 goes from %2, EEPROM from %3.")
                         .arg(QLatin1String(name), range.text(), eeprom.text()));
        }
    }
}

void check_reach(RowLint& lint, MemoryType memory)
{
    const Range range = range_of(lint.profile, memory);
    const bool begins_there = (range.start & bit_23) != 0;
    const quint64 first = begins_there ? range.start : (range.start | (bit_23 - 1)) + 1;
    if (first < range.end && first < reachable_again) {
        lint.add(Code::MemoryBeyondHex, ATTR_MEMORY_MIN_ADDR.at(memory),
                 QStringLiteral("%1 goes from %2; from %3 on, addresses have bit 23 set.")
                     .arg(name_of(memory), range.text(), address_text(first)));
    }
}

} // namespace

void check_areas(RowLint& lint)
{
    for (const MemoryType memory : memories) {
        if (lint.profile.has_memory_type(memory)) {
            check_reach(lint, memory);
        }
    }
    if (lint.profile.get_address_divisor(MEMORY_FLASH) != 0) {
        check_bootloader(lint);
    }
    if (lint.is_usable(MEMORY_FLASH)) {
        check_unencrypted_area(lint);
    }
    if (lint.profile.has_memory_type(MEMORY_EEPROM)) {
        check_overlaps(lint);
    }
}

} // namespace inspect
