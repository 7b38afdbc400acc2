#include "device/CommandChecks.h"

#include "device/GeometryChecks.h"
#include "util/Util.h"

namespace
{

QString below_minimum(unsigned int minimum)
{
    return QStringLiteral("address < min_address (0x%1)").arg(Util::uint_to_hex(minimum, -1));
}

QString above_maximum(unsigned int maximum)
{
    return QStringLiteral("address + num_bytes > max_address (0x%1)")
        .arg(Util::uint_to_hex(maximum, -1));
}

QString different_types()
{
    return QStringLiteral("start and end addresses correspond to different memory types");
}

/// A write of some bytes to `type`, by the size of its rows.
Reason check_written_length(const Profile& profile, MemoryType type, unsigned int num_bytes)
{
    const unsigned int row_size = profile.get_row_size(type);
    if (type == MEMORY_FLASH && num_bytes != row_size) {
        return QStringLiteral("num_bytes must be exactly row_size (%1)").arg(row_size);
    }
    if (row_size == 0) {
        return geometry::check_row(profile, type);
    }
    if (num_bytes % row_size != 0) {
        return QStringLiteral("num_bytes must be a multiple of row_size (%1)").arg(row_size);
    }
    return std::nullopt;
}

/// Only the first row is checked, even when several EEPROM rows are written.
Reason check_written_row(const Profile& profile, MemoryType type, unsigned int address)
{
    const unsigned int row_size = profile.get_row_size(type);
    // The next two are never true: bytes that belong to one memory lie within its limits.
    if (address < profile.get_min_address(type)) {
        return below_minimum(profile.get_min_address(type));
    }
    if (address + row_size > profile.get_max_address(type)) {
        return above_maximum(profile.get_max_address(type));
    }
    if (address % row_size != 0) {
        return QStringLiteral("address must be a multiple of row_size (%1)").arg(row_size);
    }
    return std::nullopt;
}

Reason check_written_geometry(const Profile& profile, MemoryType type, unsigned int address,
                              unsigned int num_bytes)
{
    if (auto reason = geometry::check_row(profile, type)) {
        return reason;
    }
    if (auto reason = geometry::check_length(profile, type, num_bytes)) {
        return reason;
    }
    return geometry::check_no_wrap(profile, type, ATTR_MEMORY_ROW_SIZE,
                                   quint64{address} + num_bytes);
}

} // namespace

Reason check_read_command(const Profile& profile, unsigned int address, unsigned int num_bytes)
{
    const MemoryType type = profile.get_memory_type(address);
    if (profile.get_memory_type(address + num_bytes - 1) != type) {
        return different_types();
    }
    if (type == MEMORY_OTHER) {
        return QStringLiteral("unreadable memory area");
    }
    if (num_bytes == 0) {
        return QStringLiteral("attempting to read 0 bytes");
    }
    // The next two are never true: bytes that belong to one memory lie within its limits.
    if (address < profile.get_min_address(type)) {
        return below_minimum(profile.get_min_address(type));
    }
    if (address + num_bytes > profile.get_max_address(type)) {
        return above_maximum(profile.get_max_address(type));
    }
    if (auto reason = geometry::check_read(profile, type)) {
        return reason;
    }
    if (auto reason = geometry::check_no_wrap(profile, type, ATTR_MEMORY_ROW_SIZE,
                                              quint64{address} + num_bytes)) {
        return reason;
    }
    return geometry::check_request(profile, type, address, num_bytes);
}

Reason check_write_command(const Profile& profile, unsigned int address, unsigned int num_bytes)
{
    const MemoryType type = profile.get_memory_type(address);
    if (type == MEMORY_OTHER) {
        return QStringLiteral("unwritable memory area");
    }
    if (profile.get_memory_type(address + num_bytes - 1) != type) {
        return different_types();
    }
    if (num_bytes == 0) {
        return QStringLiteral("attempting to write 0 bytes");
    }
    if (auto reason = check_written_length(profile, type, num_bytes)) {
        return reason;
    }
    if (auto reason = check_written_row(profile, type, address)) {
        return reason;
    }
    return check_written_geometry(profile, type, address, num_bytes);
}

Reason check_erase_command(const Profile& profile, unsigned int address)
{
    const unsigned int minimum = profile.get_min_address(MEMORY_FLASH);
    const unsigned int maximum = profile.get_max_address(MEMORY_FLASH);
    const unsigned int page_size = profile.get_page_size(MEMORY_FLASH);
    if (address < minimum) {
        return QStringLiteral("address < 0x%1").arg(Util::uint_to_hex(minimum, -1));
    }
    if (address + page_size > maximum) {
        return QStringLiteral("address + page_size > 0x%1").arg(Util::uint_to_hex(maximum, -1));
    }
    if (auto reason = geometry::check_page(profile)) {
        return reason;
    }
    if (address % page_size != 0) {
        return QStringLiteral("address must be a multiple of %1").arg(page_size);
    }
    if (auto reason = geometry::check_words(profile, MEMORY_FLASH)) {
        return reason;
    }
    return geometry::check_no_wrap(profile, MEMORY_FLASH, ATTR_MEMORY_PAGE_SIZE,
                                   quint64{address} + page_size);
}
