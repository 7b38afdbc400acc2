#include "device/GeometryChecks.h"

#include "util/Util.h"

#include <limits>

namespace geometry
{

namespace
{

constexpr unsigned int highest_number = std::numeric_limits<unsigned int>::max();

QString unusable(const Profile& profile, Profile::Attr attr, const QString& value,
                 const QString& complaint)
{
    return QStringLiteral("unusable geometry in device profile '%1': %2 is %3, %4")
        .arg(profile.name, QLatin1String(meta_attr.valueToKey(attr)), value, complaint);
}

Reason outside(const Profile& profile, Profile::Attr attr, unsigned int lowest,
               unsigned int highest)
{
    const unsigned int value = profile.attributes.at(static_cast<std::size_t>(attr));
    if (lowest <= value && value <= highest) {
        return std::nullopt;
    }
    return unusable(
        profile, attr, QString::number(value),
        QStringLiteral("expected %1 to %2").arg(QString::number(lowest), QString::number(highest)));
}

/// Whether the bytes lie in the memory as a whole.
bool fits(const Profile& profile, MemoryType type, unsigned int address, unsigned int num_bytes)
{
    return profile.get_min_address(type) <= address &&
           quint64{address} + num_bytes <= profile.get_max_address(type);
}

/// The result of a walk over addresses.
struct Walk {
    bool any_admitted = false;
    quint64 highest = 0;                ///< the highest number that it counts to
    std::optional<unsigned int> lowest; ///< the lowest admitted address whose `length` bytes fit
    std::optional<unsigned int> last;
};

Walk rehearse(const AreaFilter& areas, MemoryType type, AddressRange range, unsigned int step,
              unsigned int length)
{
    Walk result;
    walk(range, step, [&](unsigned int address) {
        result.highest = qMax(result.highest, quint64{address} + step);
        if (areas.excludes(address)) {
            return true;
        }
        result.any_admitted = true;
        result.highest = qMax(result.highest, quint64{address} + length);
        if (fits(areas.profile, type, address, length)) {
            result.lowest = result.lowest.value_or(address);
            result.last = address;
        }
        return true;
    });
    return result;
}

} // namespace

Reason check_words(const Profile& profile, MemoryType type)
{
    if (auto reason = outside(profile, ATTR_MEMORY_WORD_SIZE.at(type), 1, highest_number)) {
        return reason;
    }
    return outside(profile, ATTR_WORDS_PER_ADDRESS.at(type), 1, profile.get_word_size(type));
}

Reason check_row(const Profile& profile, MemoryType type)
{
    if (auto reason = check_words(profile, type)) {
        return reason;
    }
    if (auto reason = outside(profile, ATTR_MEMORY_WORD_SIZE.at(type), 1, longest_buffer)) {
        return reason;
    }
    return outside(profile, ATTR_MEMORY_ROW_SIZE.at(type), 1, longest_buffer);
}

Reason check_block(const Profile& profile, MemoryType type)
{
    return outside(profile, ATTR_MEMORY_BLOCK_SIZE.at(type), 1, highest_number);
}

Reason check_page(const Profile& profile)
{
    return outside(profile, ATTR_MEMORY_PAGE_SIZE.at(MEMORY_FLASH), 1, highest_number);
}

unsigned int page_step(const Profile& profile)
{
    const unsigned int words_per_address = profile.get_words_per_address(MEMORY_FLASH);
    return words_per_address == 0 ? 0
                                  : profile.get_page_size(MEMORY_FLASH) *
                                        profile.get_word_size(MEMORY_FLASH) / words_per_address;
}

Reason check_page_step(const Profile& profile)
{
    if (page_step(profile) != 0) {
        return std::nullopt;
    }
    if (auto reason = check_page(profile)) {
        return reason;
    }
    if (auto reason = check_words(profile, MEMORY_FLASH)) {
        return reason;
    }
    return outside(profile, ATTR_MEMORY_PAGE_SIZE.at(MEMORY_FLASH), 1,
                   highest_number / profile.get_word_size(MEMORY_FLASH));
}

Reason check_no_wrap(const Profile& profile, MemoryType type, const MemoryAttributes& unit,
                     quint64 last)
{
    if (last <= highest_number) {
        return std::nullopt;
    }
    const Profile::Attr attr = unit.at(type);
    return unusable(profile, ATTR_MEMORY_MAX_ADDR.at(type),
                    QStringLiteral("0x") + Util::uint_to_hex(profile.get_max_address(type), -1),
                    QStringLiteral("and %1 %2 leads beyond address 0xFFFFFFFF")
                        .arg(QLatin1String(meta_attr.valueToKey(attr)))
                        .arg(profile.attributes.at(static_cast<std::size_t>(attr))));
}

Reason check_read(const Profile& profile, MemoryType type)
{
    if (auto reason = check_row(profile, type)) {
        return reason;
    }
    return check_block(profile, type);
}

Reason check_block_start(const Profile& profile, MemoryType type, unsigned int address)
{
    const unsigned int block_size = profile.get_block_size(type);
    const unsigned int minimum = profile.get_min_address(type);
    if (type != MEMORY_EEPROM || block_size == 0 || address / block_size * block_size >= minimum) {
        return std::nullopt;
    }
    return unusable(profile, Profile::eeprom_start_address,
                    QStringLiteral("0x") + Util::uint_to_hex(minimum, -1),
                    QStringLiteral("expected a multiple of eeprom_block_size %1").arg(block_size));
}

Reason check_length(const Profile& profile, MemoryType type, unsigned int num_bytes)
{
    if (num_bytes <= longest_buffer) {
        return std::nullopt;
    }
    const unsigned int minimum = profile.get_min_address(type);
    return outside(profile, ATTR_MEMORY_MAX_ADDR.at(type), 0,
                   qMin(minimum, highest_number - longest_buffer) + longest_buffer);
}

Reason check_request(const Profile& profile, MemoryType type, unsigned int address,
                     unsigned int num_bytes)
{
    if (auto reason = check_length(profile, type, num_bytes)) {
        return reason;
    }
    const quint64 block_size = profile.get_block_size(type);
    const quint64 end = (quint64{address} + num_bytes + block_size - 1) / block_size * block_size;
    if (auto reason = check_no_wrap(profile, type, ATTR_MEMORY_BLOCK_SIZE, end)) {
        return reason;
    }
    return check_block_start(profile, type, address);
}

Reason check_rows_read(const AreaFilter& areas, MemoryType type, AddressRange rows,
                       unsigned int step, unsigned int length)
{
    const Profile& profile = areas.profile;
    if (rows.is_empty()) {
        return std::nullopt;
    }
    if (step == 0) { // flash is walked by its blocks, EEPROM by its rows
        return type == MEMORY_FLASH ? check_block(profile, type) : check_row(profile, type);
    }
    const Walk walk = rehearse(areas, type, rows, step, length);
    const MemoryAttributes& unit =
        step == profile.get_block_size(type) ? ATTR_MEMORY_BLOCK_SIZE : ATTR_MEMORY_ROW_SIZE;
    if (auto reason = walk.any_admitted ? check_read(profile, type) : std::nullopt) {
        return reason;
    }
    if (auto reason = check_no_wrap(profile, type, unit, walk.highest)) {
        return reason;
    }
    if (!walk.lowest) {
        return std::nullopt;
    }
    if (auto reason = check_request(profile, type, *walk.lowest, length)) {
        return reason;
    }
    return check_request(profile, type, *walk.last, length);
}

Reason check_rows_written(const AreaFilter& areas, MemoryType type, AddressRange rows)
{
    const Profile& profile = areas.profile;
    const unsigned int row_size = profile.get_row_size(type);
    if (rows.is_empty()) {
        return std::nullopt;
    }
    if (row_size == 0) {
        return check_row(profile, type);
    }
    const Walk walk = rehearse(areas, type, rows, row_size, row_size);
    if (auto reason = walk.any_admitted ? check_row(profile, type) : std::nullopt) {
        return reason;
    }
    return check_no_wrap(profile, type, ATTR_MEMORY_ROW_SIZE, walk.highest);
}

Reason check_pages_erased(const AreaFilter& areas, AddressRange pages, unsigned int step)
{
    const Walk walk = rehearse(areas, MEMORY_FLASH, pages, step, step);
    if (auto reason = walk.any_admitted ? check_words(areas.profile, MEMORY_FLASH) : std::nullopt) {
        return reason;
    }
    return check_no_wrap(areas.profile, MEMORY_FLASH, ATTR_MEMORY_PAGE_SIZE, walk.highest);
}

} // namespace geometry
