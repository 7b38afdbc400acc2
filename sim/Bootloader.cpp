#include "sim/Bootloader.h"

#include "profile/Profile.h"

namespace sim
{

namespace
{

constexpr char probe_byte = '\x55';
constexpr unsigned int probe_baud = 9600;
constexpr unsigned int identification_baud = 460800;

constexpr int header_length = 5; ///< command, count and word address
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
    const bool only_header = payload.size() == header_length;
    const bool has_data = payload.size() > header_length;
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

std::uint64_t byte_at(const QByteArray& payload, int index)
{
    return static_cast<unsigned char>(payload.at(index));
}

std::uint64_t count_of(const QByteArray& payload)
{
    return byte_at(payload, 1);
}

std::uint64_t word_address_of(const QByteArray& payload)
{
    return byte_at(payload, 2) | byte_at(payload, 3) << 8U | byte_at(payload, 4) << 16U;
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

/// The first probe ends the state in which probes are heard, unless the device is a silent one.
void Bootloader::hear_probe(const QByteArray& bytes, unsigned int baud,
                            std::vector<Exchange>& exchanges)
{
    for (const char byte : bytes) {
        if (byte != probe_byte || !listens_to_probe(baud)) {
            continue;
        }
        Exchange exchange{{Command::Kind::Probe, QByteArray(1, byte), baud}, {}};
        if (m_entry != Entry::Silent) {
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
    // A silent device is listened through, not with: it hears what any of the others would.
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
    if (m_entry == Entry::Silent) {
        return exchange;
    }
    m_running = true;
    const QByteArray answer_payload = carry_out(exchange.command);
    if (!answer_payload.isEmpty()) {
        exchange.answer = make_frame(answer_payload);
    }
    return exchange;
}

/// The payload of the answer, empty where there is none; marks a command that is refused.
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
    const Geometry memory = geometry(command.is_eeprom());
    const std::uint64_t address = memory.byte_address(word_address_of(command.payload));
    const std::uint64_t length = count_of(command.payload) * memory.word_size;
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
    const Geometry memory = geometry(command.is_eeprom());
    const std::uint64_t address = memory.byte_address(word_address_of(command.payload));
    if (!memory.is_usable() || memory.row_size == 0 || address > 0xFFFFFFFFU) {
        return {};
    }
    const auto target = static_cast<unsigned int>(address);
    const bool done = command.is_eeprom() ? write_eeprom(command.payload, memory, target)
                                          : program_row(command.payload, memory, target);
    return done ? command.payload.left(1) : QByteArray();
}

/// One row at a time, at its place in the row grid: that is how the cells are wired.
bool Bootloader::program_row(const QByteArray& payload, const Geometry& flash, unsigned int address)
{
    const QByteArray data = payload.mid(header_length);
    return count_of(payload) == 1 && static_cast<std::uint64_t>(data.size()) == flash.row_size &&
           address % flash.row_size == 0 && m_memory.program_flash(address, data);
}

/// The count names the words of one row, however many rows of data follow.
bool Bootloader::write_eeprom(const QByteArray& payload, const Geometry& eeprom,
                              unsigned int address)
{
    const QByteArray data = payload.mid(header_length);
    return count_of(payload) == eeprom.row_size / eeprom.word_size &&
           static_cast<std::uint64_t>(data.size()) % eeprom.row_size == 0 &&
           m_memory.write_eeprom(address, data);
}

QByteArray Bootloader::erase(const Command& command)
{
    const Geometry flash = geometry(false);
    const std::uint64_t address = flash.byte_address(word_address_of(command.payload));
    const auto pages = static_cast<unsigned int>(count_of(command.payload));
    const bool done = flash.is_usable() && pages != 0 && address <= 0xFFFFFFFFU &&
                      m_memory.erase_pages(static_cast<unsigned int>(address), pages);
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

/// Worked out from the bare table values, so that the device shares no arithmetic with the host.
Bootloader::Geometry Bootloader::geometry(bool eeprom) const
{
    const auto& values = m_profile.attributes;
    Geometry memory;
    memory.start = eeprom ? values[Profile::eeprom_start_address] : 0;
    memory.word_size = values[eeprom ? Profile::eeprom_word_size : Profile::flash_word_size];
    memory.row_size = values[eeprom ? Profile::eeprom_row_size : Profile::flash_row_size];
    const unsigned int words_per_address =
        values[eeprom ? Profile::eeprom_words_per_address : Profile::flash_words_per_address];
    memory.bytes_per_address = words_per_address == 0 ? 0 : memory.word_size / words_per_address;
    return memory;
}

} // namespace sim
