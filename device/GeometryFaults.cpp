#include "device/GeometryFaults.h"

#include "profile/MemoryAttributes.h"
#include "util/Util.h"

#include <limits>

namespace geometry
{

namespace
{

constexpr unsigned int unlimited = std::numeric_limits<unsigned int>::max();
/// Far above the row of any device, far below what would exhaust memory.
constexpr unsigned int largest_row = 0x1000000;

Fault outside(const Profile& profile, Profile::Attr attr, unsigned int lowest, unsigned int highest)
{
    const unsigned int value = profile.attributes.at(static_cast<std::size_t>(attr));
    if (lowest <= value && value <= highest) {
        return std::nullopt;
    }
    return QStringLiteral("unusable geometry in device profile '%1': %2 is %3, expected %4 to %5")
        .arg(profile.name, QLatin1String(meta_attr.valueToKey(attr)), QString::number(value),
             QString::number(lowest), QString::number(highest));
}

} // namespace

Fault address_fault(const Profile& profile, MemoryType type)
{
    if (auto fault = outside(profile, ATTR_MEMORY_WORD_SIZE.at(type), 1, largest_row)) {
        return fault;
    }
    return outside(profile, ATTR_WORDS_PER_ADDRESS.at(type), 1, profile.get_word_size(type));
}

Fault row_fault(const Profile& profile, MemoryType type)
{
    if (auto fault = address_fault(profile, type)) {
        return fault;
    }
    return outside(profile, ATTR_MEMORY_ROW_SIZE.at(type), profile.get_word_size(type),
                   largest_row);
}

Fault block_fault(const Profile& profile, MemoryType type)
{
    if (auto fault = row_fault(profile, type)) {
        return fault;
    }
    return outside(profile, ATTR_MEMORY_BLOCK_SIZE.at(type), profile.get_word_size(type),
                   profile.get_max_address(type));
}

Fault block_start_fault(const Profile& profile, MemoryType type, unsigned int address)
{
    const unsigned int block_size = profile.get_block_size(type);
    if (type != MEMORY_EEPROM || block_size == 0 ||
        address / block_size * block_size >= profile.get_min_address(type)) {
        return std::nullopt;
    }
    return QStringLiteral("unusable geometry in device profile '%1': eeprom_start_address is "
                          "0x%2, expected a multiple of eeprom_block_size %3")
        .arg(profile.name, Util::uint_to_hex(profile.get_min_address(type), -1),
             QString::number(block_size));
}

Fault page_fault(const Profile& profile)
{
    if (auto fault = address_fault(profile, MEMORY_FLASH)) {
        return fault;
    }
    return outside(profile, ATTR_MEMORY_PAGE_SIZE.at(MEMORY_FLASH), 1,
                   qMin(profile.get_max_address(MEMORY_FLASH),
                        unlimited / profile.get_word_size(MEMORY_FLASH)));
}

} // namespace geometry
