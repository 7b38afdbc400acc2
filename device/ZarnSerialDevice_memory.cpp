#include "device/GeometryFaults.h"
#include "device/ZarnSerialDevice.h"
#include "util/Util.h"

#include <array>
#include <cstring>
#include <limits>

namespace
{

constexpr std::array<char, 2> MEMORY_READ_COMMANDS{0x01, 0x04};
constexpr std::array<char, 2> MEMORY_WRITE_COMMANDS{0x02, 0x05};
constexpr char erase_command = 0x03;

constexpr unsigned char attempts = 40;
constexpr int timeout_ms = 300;
/// Responses are counted in 16 bits.
constexpr unsigned int longest_response = std::numeric_limits<unsigned short>::max();
/// More than this does not fit a byte array.
constexpr unsigned int largest_request = std::numeric_limits<int>::max();

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
    if (word_size == 0) {
        return;
    }
    const quint64 words = (quint64{num_bytes} + word_size - 1) / word_size;
    if (words * word_size > largest_request) {
        return;
    }
    QByteArray word;
    append_filler_word(m_profile->get_filler_word(type), word_size, word);
    data = word.repeated(static_cast<int>(words));
}

/// Most significant byte first always begins at the top of the 32-bit filler value, even for words
/// shorter than that; the profile table gives its filler words accordingly.
void ZarnSerialDevice::append_filler_word(unsigned int filler, unsigned int word_size,
                                          QByteArray& data) const
{
    for (unsigned int i = 0; i < word_size; ++i) {
        switch (m_profile->get_endianness()) {
        case 0:
            data.append(static_cast<char>(filler & 0xFFU));
            filler >>= 8;
            break;
        case 1:
            data.append(static_cast<char>(filler >> 24));
            filler <<= 8;
            break;
        default:
            break;
        }
    }
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
    if (num_bytes > largest_request) {
        return QStringLiteral("cannot read %1 bytes at once, at most %2")
            .arg(num_bytes)
            .arg(largest_request);
    }
    if (auto fault = geometry::block_fault(*m_profile, type)) {
        return fault;
    }
    return geometry::block_start_fault(*m_profile, type, address);
}

/// The device reads whole blocks from block addresses, so the range is widened to them; what lies
/// outside of it is dropped.
bool ZarnSerialDevice::read_blocks(MemoryType type, unsigned int address, QByteArray& data)
{
    const unsigned int word_size = m_profile->get_word_size(type);
    const unsigned int block_size = m_profile->get_block_size(type);
    const unsigned int row_size = m_profile->get_row_size(type);
    const quint64 end = quint64{address} + static_cast<unsigned int>(data.size());
    const quint64 aligned_end = (end + block_size - 1) / block_size * block_size;
    quint64 start = address / block_size * block_size;
    while (start < aligned_end) {
        const unsigned int chunk = row_size <= aligned_end - start ? row_size : block_size;
        const auto count = static_cast<unsigned char>(chunk / word_size);
        QByteArray received;
        if (!read_words(type, static_cast<unsigned int>(start), count, received)) {
            return false;
        }
        keep_overlap(received, start, data, address);
        start += quint64{count} * word_size;
    }
    return true;
}

bool ZarnSerialDevice::read_words(MemoryType type, unsigned int address, unsigned char count,
                                  QByteArray& received)
{
    const QByteArray command = memory_command(MEMORY_READ_COMMANDS.at(type), count,
                                              word_address(*m_profile, type, address));
    const unsigned int length = count * m_profile->get_word_size(type);
    if (length > longest_response) {
        return error(QStringLiteral("cannot read %1 bytes in one response, at most %2")
                         .arg(length)
                         .arg(longest_response));
    }
    return send_and_receive(command, received, static_cast<unsigned short>(length), attempts,
                            timeout_ms);
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
    if (auto fault = geometry::row_fault(*m_profile, type)) {
        return fault;
    }
    const unsigned int row_size = m_profile->get_row_size(type);
    if (type == MEMORY_FLASH && num_bytes != row_size) {
        return QStringLiteral("num_bytes must be exactly row_size (%1)").arg(row_size);
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
    return std::nullopt;
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
    return std::nullopt;
}

/// Writes and erases are acknowledged by one byte that repeats the command's first. Any other byte
/// is a failure that the operation behind it words for the user.
bool ZarnSerialDevice::send_acknowledged(const QByteArray& command)
{
    QByteArray response;
    return open_port() && send_and_receive(command, response, 1, attempts, timeout_ms) &&
           response.at(0) == command.at(0);
}
