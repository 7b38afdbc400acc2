#include "sim/device/Bootloader.h"

#include "profile/Profile.h"

namespace sim
{

namespace
{

constexpr char probe_byte = '\x55';
constexpr unsigned int probe_baud = 9600;
constexpr unsigned int identification_baud = 460800;

/// A device has a buffer for a row or a few; this also keeps a table's absurd word sizes harmless.
constexpr std::uint64_t longest_answer = 0xFFFF;

const QByteArray version_request = QByteArray::fromRawData("\x00\x02", 2);
const QByteArray reset_request = QByteArray::fromRawData("\x00\x00", 2);

Command::Kind kind_of(const QByteArray& payload)
{
    if (payload == version_request) {
        return Command::Kind::Version;
    }
    if (payload == reset_request) {
        return Command::Kind::Reset;
    }
    const bool only_header = payload.size() == Command::header_length;
    const bool has_data = payload.size() > Command::header_length;
    switch (payload.at(0)) {
    case 0x01:
    case 0x04:
        return only_header ? Command::Kind::Read : Command::Kind::Unknown;
    case 0x02:
    case 0x05:
        return has_data ? Command::Kind::Write : Command::Kind::Unknown;
    case 0x03:
        return only_header ? Command::Kind::Erase : Command::Kind::Unknown;
    default:
        return Command::Kind::Unknown;
    }
}

} // namespace

Bootloader::Bootloader(const Profile& profile, DeviceMemory& memory, Entry entry)
    : m_profile(profile),
      m_memory(memory),
      m_entry(entry)
{
    power_on();
}

void Bootloader::power_on()
{
    m_running = m_entry == Entry::Version;
}

std::vector<Exchange> Bootloader::hear(const QByteArray& bytes, unsigned int baud)
{
    if (baud != m_last_baud) {
        m_receiver.reset();
        m_last_baud = baud;
    }
    std::vector<Exchange> exchanges;
    hear_probe(bytes, baud, exchanges);
    if (!listens_to_frames(baud)) {
        m_receiver.reset();
        return exchanges;
    }
    for (const QByteArray& payload : m_receiver.receive(bytes)) {
        if (understands(payload, baud)) {
            exchanges.push_back(handle(payload, baud));
        }
    }
    return exchanges;
}

/// The first probe ends the state in which probes are answered, unless the device is a silent one.
void Bootloader::hear_probe(const QByteArray& bytes, unsigned int baud,
                            std::vector<Exchange>& exchanges)
{
    for (const char byte : bytes) {
        if (byte != probe_byte || !listens_to_probe(baud)) {
            continue;
        }
        Exchange exchange{{Command::Kind::Probe, QByteArray(1, byte), baud}, {}};
        if (let_through(exchange.command) && m_entry != Entry::Silent) {
            exchange.answer = "QV" + version_bytes();
            m_running = true;
        }
        exchanges.push_back(exchange);
    }
}

bool Bootloader::listens_to_probe(unsigned int baud) const
{
    return !m_running && baud == probe_baud;
}

bool Bootloader::listens_to_frames(unsigned int baud) const
{
    // A silent device records what a device in any other state would receive.
    const bool identifies = m_running || m_entry == Entry::Silent;
    return baud == m_profile.attributes[Profile::max_baud] ||
           (identifies && baud == identification_baud);
}

bool Bootloader::understands(const QByteArray& payload, unsigned int baud) const
{
    return baud == m_profile.attributes[Profile::max_baud] || payload == version_request;
}

Exchange Bootloader::handle(const QByteArray& payload, unsigned int baud)
{
    Exchange exchange{{kind_of(payload), payload, baud}, {}};
    const std::optional<QByteArray> taken = let_through(exchange.command);
    if (!taken || m_entry == Entry::Silent) {
        return exchange;
    }
    exchange.command.payload = *taken;
    exchange.command.kind = kind_of(*taken);
    m_running = true;
    const QByteArray answer_payload = carry_out(exchange.command);
    if (!answer_payload.isEmpty()) {
        exchange.answer = make_frame(answer_payload);
    }
    return exchange;
}

/// The payload that reaches the device; marks a command that does not.
std::optional<QByteArray> Bootloader::let_through(Command& command) const
{
    std::optional<QByteArray> payload = m_gate ? m_gate(command) : command.payload;
    command.ignored = !payload;
    return payload;
}

/// The payload of the answer, empty if there is none; marks a command that is refused.
QByteArray Bootloader::carry_out(Command& command)
{
    QByteArray answer;
    switch (command.kind) {
    case Command::Kind::Version:
        return command.payload + version_bytes();
    case Command::Kind::Reset:
        power_on();
        return {};
    case Command::Kind::Read:
        answer = read(command);
        break;
    case Command::Kind::Write:
        answer = write(command);
        break;
    case Command::Kind::Erase:
        answer = erase(command);
        break;
    case Command::Kind::Probe:
    case Command::Kind::Unknown:
        return {};
    }
    command.refused = answer.isEmpty();
    return answer;
}

QByteArray Bootloader::read(const Command& command) const
{
    const MemoryGeometry memory = geometry_of(m_profile, command.is_eeprom());
    const std::uint64_t address = memory.byte_address(command.word_address());
    const std::uint64_t length = command.count() * memory.word_size;
    const bool inside = command.is_eeprom() ? m_memory.is_in_eeprom(address, length)
                                            : m_memory.is_in_flash(address, length);
    if (!memory.is_usable() || length == 0 || length > longest_answer || !inside) {
        return {};
    }
    return command.payload +
           m_memory.read(static_cast<unsigned int>(address), static_cast<unsigned int>(length));
}

QByteArray Bootloader::write(const Command& command)
{
    const MemoryGeometry memory = geometry_of(m_profile, command.is_eeprom());
    const std::uint64_t address = memory.byte_address(command.word_address());
    if (!memory.is_usable() || memory.row_size == 0 || address > 0xFFFFFFFFU) {
        return {};
    }
    const auto target = static_cast<unsigned int>(address);
    const bool done =
        command.is_eeprom() ? write_eeprom(command, target) : program_row(command, target);
    return done ? command.payload.left(1) : QByteArray();
}

/// One row at a time, at its place in the row grid, as the cells are wired.
bool Bootloader::program_row(const Command& command, unsigned int address)
{
    const MemoryGeometry flash = geometry_of(m_profile, false);
    const auto size = static_cast<std::uint64_t>(command.data().size());
    if (command.count() != 1 || size != flash.row_size || address % flash.row_size != 0 ||
        !m_memory.is_in_user_flash(address, size)) {
        return false;
    }
    const QByteArray stored = stored_part(command);
    return stored.isEmpty() || m_memory.program_flash(address, stored);
}

/// The count names the words of one row, however many rows of data follow.
bool Bootloader::write_eeprom(const Command& command, unsigned int address)
{
    const MemoryGeometry eeprom = geometry_of(m_profile, true);
    const auto size = static_cast<std::uint64_t>(command.data().size());
    if (command.count() != eeprom.row_size / eeprom.word_size || size % eeprom.row_size != 0 ||
        !m_memory.is_in_eeprom(address, size)) {
        return false;
    }
    const QByteArray stored = stored_part(command);
    return stored.isEmpty() || m_memory.write_eeprom(address, stored);
}

QByteArray Bootloader::stored_part(const Command& command) const
{
    return m_store ? m_store(command, command.data()) : command.data();
}

QByteArray Bootloader::erase(const Command& command)
{
    const MemoryGeometry flash = geometry_of(m_profile, false);
    const std::uint64_t address = flash.byte_address(command.word_address());
    const bool done = flash.is_usable() && command.count() != 0 && address <= 0xFFFFFFFFU &&
                      m_memory.erase_pages(static_cast<unsigned int>(address), command.count());
    return done ? command.payload.left(1) : QByteArray();
}

QByteArray Bootloader::version_bytes() const
{
    const unsigned int version = m_profile.attributes[Profile::bootloader_version];
    QByteArray bytes;
    bytes.append(static_cast<char>(version >> 8U & 0xFFU));
    bytes.append(static_cast<char>(version & 0xFFU));
    return bytes;
}

} // namespace sim
