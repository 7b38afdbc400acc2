#include "device/GeometryFaults.h"
#include "device/ZarnSerialDevice.h"
#include "util/Util.h"

#include <array>
#include <cstring>

namespace
{

constexpr std::array<char, 2> MEMORY_READ_COMMANDS{0x01, 0x04};
constexpr std::array<char, 2> MEMORY_WRITE_COMMANDS{0x02, 0x05};
constexpr char erase_command = 0x03;

constexpr unsigned char attempts = 40;
constexpr int timeout_ms = 300;

/// Operation, count and 24-bit word address, low byte first.
QByteArray memory_command(char operation, unsigned char count, unsigned int word_address)
{
    QByteArray command(1, operation);
    command.append(static_cast<char>(count));
    for (unsigned int shift = 0; shift < 24; shift += 8) {
        command.append(static_cast<char>((word_address >> shift) & 0xFFU));
    }
    return command;
}

/// Copies what `received`, which begins at byte address `start`, holds of the range that `data`
/// stands for, which begins at `address`.
void keep_overlap(const QByteArray& received, quint64 start, QByteArray& data, quint64 address)
{
    const quint64 from = qMax(start, address);
    const quint64 to = qMin(start + static_cast<quint64>(received.size()),
                            address + static_cast<quint64>(data.size()));
    if (from < to) {
        std::memcpy(data.data() + (from - address), received.constData() + (from - start),
                    static_cast<std::size_t>(to - from));
    }
}

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

/// The block that holds the lowest flash bytes may begin in the bootloader area, for which the
/// profile alone has no word address.
unsigned int word_address(const Profile& profile, MemoryType type, unsigned int address)
{
    return type == MEMORY_FLASH ? address / profile.get_address_divisor(type)
                                : profile.byte_to_word_address(address);
}

} // namespace

void ZarnSerialDevice::initialize_array(unsigned int num_bytes, QByteArray& data,
                                        MemoryType type) const
{
    data.clear();
    const unsigned int word_size = m_profile->get_word_size(type);
    if (word_size == 0 || num_bytes == 0) {
        return;
    }
    const quint64 words = (quint64{num_bytes} + word_size - 1) / word_size;
    if (words * word_size > 2 * quint64{geometry::longest_buffer}) {
        return;
    }
    const QByteArray word = filler_word(m_profile->get_filler_word(type), word_size);
    data = word.repeated(static_cast<int>(words));
}

/// Most significant byte first always begins at the top of the 32-bit filler value, even for words
/// shorter than that; the profile table gives its filler words accordingly.
QByteArray ZarnSerialDevice::filler_word(unsigned int filler, unsigned int word_size) const
{
    QByteArray word(static_cast<int>(word_size), '\0');
    const int length = qMin(word.size(), 4);
    for (int i = 0; i < length; ++i) {
        const int shift = 8 * (m_profile->get_endianness() == 0 ? i : 3 - i);
        word[i] = static_cast<char>((filler >> shift) & 0xFFU);
    }
    return word;
}

bool ZarnSerialDevice::read_memory(unsigned int address, unsigned int num_bytes, QByteArray& data)
{
    const MemoryType type = m_profile->get_memory_type(address);
    if (const auto fault = read_fault(address, num_bytes, type)) {
        return error(*fault);
    }
    data.resize(static_cast<int>(num_bytes));
    return open_port() && read_blocks(type, address, data);
}

std::optional<QString> ZarnSerialDevice::read_fault(unsigned int address, unsigned int num_bytes,
                                                    MemoryType type) const
{
    if (m_profile->get_memory_type(address + num_bytes - 1) != type) {
        return different_types();
    }
    if (type == MEMORY_OTHER) {
        return QStringLiteral("unreadable memory area");
    }
    if (num_bytes == 0) {
        return QStringLiteral("attempting to read 0 bytes");
    }
    if (address < m_profile->get_min_address(type)) {
        return below_minimum(m_profile->get_min_address(type));
    }
    if (address + num_bytes > m_profile->get_max_address(type)) {
        return above_maximum(m_profile->get_max_address(type));
    }
    if (auto fault = geometry::read_fault(*m_profile, type)) {
        return fault;
    }
    if (auto fault = geometry::wrap_fault(*m_profile, type, ATTR_MEMORY_ROW_SIZE,
                                          quint64{address} + num_bytes)) {
        return fault;
    }
    return geometry::request_fault(*m_profile, type, address, num_bytes);
}

/// The device reads whole blocks from block addresses, so the range is widened to them; what lies
/// outside of it is dropped. What begins where the memory has ended is not asked for.
bool ZarnSerialDevice::read_blocks(MemoryType type, unsigned int address, QByteArray& data)
{
    const unsigned int word_size = m_profile->get_word_size(type);
    const quint64 block_size = m_profile->get_block_size(type);
    const quint64 row_size = m_profile->get_row_size(type);
    const quint64 end = quint64{address} + static_cast<unsigned int>(data.size());
    const quint64 aligned_end = (end + block_size - 1) / block_size * block_size;
    const quint64 maximum = m_profile->get_max_address(type);
    quint64 start = address / block_size * block_size;
    while (start < aligned_end && start < maximum) {
        const quint64 chunk = row_size <= aligned_end - start ? row_size : block_size;
        const auto count = static_cast<unsigned char>(chunk / word_size);
        const unsigned int length = count * word_size;
        QByteArray received;
        if (!read_words(type, static_cast<unsigned int>(start), count, length, received)) {
            return false;
        }
        keep_overlap(received, start, data, address);
        start += length;
    }
    return true;
}

/// A transaction compares lengths in 16 bits; an answer that lacks a multiple of 65,536 bytes is
/// found here.
bool ZarnSerialDevice::read_words(MemoryType type, unsigned int address, unsigned char count,
                                  unsigned int length, QByteArray& received)
{
    const QByteArray command = memory_command(MEMORY_READ_COMMANDS.at(type), count,
                                              word_address(*m_profile, type, address));
    return send_and_receive(command, received, static_cast<unsigned short>(length), attempts,
                            timeout_ms) &&
           static_cast<unsigned int>(received.size()) >= length;
}

bool ZarnSerialDevice::write_memory(unsigned int address, QByteArray data)
{
    const MemoryType type = m_profile->get_memory_type(address);
    if (const auto fault = write_fault(address, static_cast<unsigned int>(data.size()), type)) {
        return error(*fault);
    }
    const unsigned int words = m_profile->get_row_size(type) / m_profile->get_word_size(type);
    const auto count = static_cast<unsigned char>(type == MEMORY_FLASH ? 1 : words);
    const char operation = MEMORY_WRITE_COMMANDS.at(type);
    return send_acknowledged(
        memory_command(operation, count, m_profile->byte_to_word_address(address)) + data);
}

std::optional<QString> ZarnSerialDevice::write_fault(unsigned int address, unsigned int num_bytes,
                                                     MemoryType type) const
{
    if (type == MEMORY_OTHER) {
        return QStringLiteral("unwritable memory area");
    }
    if (m_profile->get_memory_type(address + num_bytes - 1) != type) {
        return different_types();
    }
    if (num_bytes == 0) {
        return QStringLiteral("attempting to write 0 bytes");
    }
    const unsigned int row_size = m_profile->get_row_size(type);
    if (type == MEMORY_FLASH && num_bytes != row_size) {
        return QStringLiteral("num_bytes must be exactly row_size (%1)").arg(row_size);
    }
    if (row_size == 0) {
        return geometry::row_fault(*m_profile, type);
    }
    if (num_bytes % row_size != 0) {
        return QStringLiteral("num_bytes must be a multiple of row_size (%1)").arg(row_size);
    }
    if (address < m_profile->get_min_address(type)) {
        return below_minimum(m_profile->get_min_address(type));
    }
    // Only the first row is checked, even when several EEPROM rows are written.
    if (address + row_size > m_profile->get_max_address(type)) {
        return above_maximum(m_profile->get_max_address(type));
    }
    if (address % row_size != 0) {
        return QStringLiteral("address must be a multiple of row_size (%1)").arg(row_size);
    }
    return unwritable(address, num_bytes, type);
}

/// Geometry that the command cannot be built from.
std::optional<QString> ZarnSerialDevice::unwritable(unsigned int address, unsigned int num_bytes,
                                                    MemoryType type) const
{
    if (auto fault = geometry::row_fault(*m_profile, type)) {
        return fault;
    }
    if (auto fault = geometry::length_fault(*m_profile, type, num_bytes)) {
        return fault;
    }
    return geometry::wrap_fault(*m_profile, type, ATTR_MEMORY_ROW_SIZE,
                                quint64{address} + num_bytes);
}

bool ZarnSerialDevice::erase_flash(unsigned int address, unsigned char count)
{
    if (const auto fault = erase_fault(address)) {
        return error(*fault);
    }
    return send_acknowledged(
        memory_command(erase_command, count, m_profile->byte_to_word_address(address)));
}

/// Only the first page is checked, whatever the count.
std::optional<QString> ZarnSerialDevice::erase_fault(unsigned int address) const
{
    const unsigned int minimum = m_profile->get_min_address(MEMORY_FLASH);
    const unsigned int maximum = m_profile->get_max_address(MEMORY_FLASH);
    const unsigned int page_size = m_profile->get_page_size(MEMORY_FLASH);
    if (address < minimum) {
        return QStringLiteral("address < 0x%1").arg(Util::uint_to_hex(minimum, -1));
    }
    if (address + page_size > maximum) {
        return QStringLiteral("address + page_size > 0x%1").arg(Util::uint_to_hex(maximum, -1));
    }
    if (auto fault = geometry::page_fault(*m_profile)) {
        return fault;
    }
    if (address % page_size != 0) {
        return QStringLiteral("address must be a multiple of %1").arg(page_size);
    }
    if (auto fault = geometry::address_fault(*m_profile, MEMORY_FLASH)) {
        return fault;
    }
    return geometry::wrap_fault(*m_profile, MEMORY_FLASH, ATTR_MEMORY_PAGE_SIZE,
                                quint64{address} + page_size);
}

/// Writes and erases are acknowledged by one byte that repeats the command's first. Any other byte
/// is a failure that the operation behind it words for the user.
bool ZarnSerialDevice::send_acknowledged(const QByteArray& command)
{
    QByteArray response;
    return open_port() && send_and_receive(command, response, 1, attempts, timeout_ms) &&
           response.at(0) == command.at(0);
}
