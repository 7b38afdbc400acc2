// The memory commands: read, write and erase, and the filler that a row begins with. Nothing is
// sent that CommandChecks refuses. A device reads whole blocks only, so a read asks for more than
// it returns. What the commands look like: Protocol.h and docs/protocol.md.

#include "device/CommandChecks.h"
#include "device/GeometryChecks.h"
#include "device/Protocol.h"
#include "device/ZarnSerialDevice.h"

#include <cstring>

namespace
{

/// Most significant byte first always begins at the top of the 32-bit filler value, even for words
/// shorter than that; the profile table gives its filler words accordingly.
QByteArray filler_word(const Profile& profile, MemoryType type)
{
    QByteArray word(static_cast<int>(profile.get_word_size(type)), '\0');
    const unsigned int filler = profile.get_filler_word(type);
    const int length = qMin(word.size(), 4);
    for (int i = 0; i < length; ++i) {
        // No profile has the least significant byte first.
        const int shift = 8 * (profile.get_endianness() == 0 ? i : 3 - i);
        word[i] = static_cast<char>((filler >> shift) & 0xFFU);
    }
    return word;
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

/// The block that holds the lowest flash bytes may begin in the bootloader area, for which the
/// profile alone has no word address.
unsigned int word_address(const Profile& profile, MemoryType type, unsigned int address)
{
    return type == MEMORY_FLASH ? address / profile.get_address_divisor(type)
                                : profile.byte_to_word_address(address);
}

/// Reads a range of one memory, request by request.
class BlockReader
{
public:
    BlockReader(ZarnSerialDevice& device, MemoryType type)
        : m_device(device),
          m_profile(*device.profile()),
          m_type(type)
    {
    }

    /// The range is widened to whole blocks, and what lies outside of it is dropped. A block that
    /// begins at or after the end of the memory is not requested.
    bool read(unsigned int address, QByteArray& data)
    {
        const quint64 block_size = m_profile.get_block_size(m_type);
        const quint64 row_size = m_profile.get_row_size(m_type);
        const quint64 end = quint64{address} + static_cast<unsigned int>(data.size());
        const quint64 aligned_end = (end + block_size - 1) / block_size * block_size;
        quint64 start = address / block_size * block_size;
        while (start < aligned_end && start < m_profile.get_max_address(m_type)) {
            const quint64 size = row_size <= aligned_end - start ? row_size : block_size;
            const auto count = static_cast<unsigned char>(size / m_profile.get_word_size(m_type));
            QByteArray received;
            if (!request(static_cast<unsigned int>(start), count, received)) {
                return false;
            }
            keep_overlap(received, start, data, address);
            start += count * m_profile.get_word_size(m_type);
        }
        return true;
    }

private:
    /// A transaction compares lengths in 16 bits; an answer that lacks a multiple of 65,536 bytes
    /// is found here.
    bool request(unsigned int address, unsigned char count, QByteArray& received)
    {
        const unsigned int length = count * m_profile.get_word_size(m_type);
        const QByteArray command =
            protocol::memory_command(protocol::MEMORY_READ_COMMANDS.at(m_type), count,
                                     word_address(m_profile, m_type, address));
        return m_device.send_and_receive(command, received, static_cast<unsigned short>(length),
                                         protocol::attempts, protocol::timeout_ms) &&
               static_cast<unsigned int>(received.size()) >= length;
    }

    ZarnSerialDevice& m_device;
    const Profile& m_profile;
    const MemoryType m_type;
};

/// Any byte but the command's own is a failure that the operation around it words for the user.
bool send_acknowledged(ZarnSerialDevice& device, const QByteArray& command)
{
    QByteArray response;
    return device.open_port() &&
           device.send_and_receive(command, response, protocol::acknowledgement_length,
                                   protocol::attempts, protocol::timeout_ms) &&
           response.at(0) == command.at(0);
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
    if (words * word_size <= 2 * quint64{geometry::longest_buffer}) {
        data = filler_word(*m_profile, type).repeated(static_cast<int>(words));
    }
}

bool ZarnSerialDevice::read_memory(unsigned int address, unsigned int num_bytes, QByteArray& data)
{
    if (const auto reason = check_read_command(*m_profile, address, num_bytes)) {
        return error(*reason);
    }
    data.resize(static_cast<int>(num_bytes));
    return open_port() &&
           BlockReader(*this, m_profile->get_memory_type(address)).read(address, data);
}

bool ZarnSerialDevice::write_memory(unsigned int address, QByteArray data)
{
    if (const auto reason =
            check_write_command(*m_profile, address, static_cast<unsigned int>(data.size()))) {
        return error(*reason);
    }
    const MemoryType type = m_profile->get_memory_type(address);
    const unsigned int words = m_profile->get_row_size(type) / m_profile->get_word_size(type);
    const auto count = static_cast<unsigned char>(type == MEMORY_FLASH ? 1 : words);
    const QByteArray command = protocol::memory_command(
        protocol::MEMORY_WRITE_COMMANDS.at(type), count, m_profile->byte_to_word_address(address));
    return send_acknowledged(*this, command + data);
}

bool ZarnSerialDevice::erase_flash(unsigned int address, unsigned char count)
{
    if (const auto reason = check_erase_command(*m_profile, address)) {
        return error(*reason);
    }
    return send_acknowledged(*this,
                             protocol::memory_command(protocol::erase_command, count,
                                                      m_profile->byte_to_word_address(address)));
}
