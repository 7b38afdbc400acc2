#include "memory/MemoryMap.h"

#include <QDebug>
#include <QFile>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace
{

bool fail(const char* message)
{
    qDebug() << message;
    return false;
}

// Where characters come from. The rules below are the same for a file that a caller goes through
// in steps of its own and for one that is read from end to end. What follows a record's colon is
// read from what record() returns, and leave() goes on behind it.

class FileCharacters
{
public:
    explicit FileCharacters(QFile& file) : m_file(file) {}

    bool next(char& character) { return m_file.getChar(&character); }

    bool skip_past(char wanted)
    {
        char character = 0;
        while (next(character)) {
            if (character == wanted) {
                return true;
            }
        }
        return false;
    }

    FileCharacters& record() { return *this; }

    void leave(const FileCharacters& /*record*/) {}

private:
    QFile& m_file;
};

/// Characters in memory. Small enough to live in registers while a record is read.
class Run
{
public:
    Run(const char* at, const char* end) : m_at(at), m_end(end) {}

    bool next(char& character)
    {
        if (m_at == m_end) {
            return false;
        }
        character = *m_at++;
        return true;
    }

    const char* position() const { return m_at; }

private:
    const char* m_at;
    const char* m_end;
};

class BlockCharacters
{
public:
    explicit BlockCharacters(QFile& file) : m_file(file) {}

    /// Looks at whole blocks at once: of a large file that is no HEX file, all is gone through.
    bool skip_past(char wanted)
    {
        while (m_at != m_end || read_block()) {
            const auto* found = static_cast<const char*>(
                std::memchr(m_at, wanted, static_cast<std::size_t>(m_end - m_at)));
            if (found != nullptr) {
                m_at = found + 1;
                return true;
            }
            m_at = m_end;
        }
        return false;
    }

    /// Goes past line ends and blanks; true when that leads to the end of the file. A file that
    /// cannot be read any further has not come to its end.
    bool only_blanks_left()
    {
        while (m_at != m_end || read_block()) {
            if (*m_at != ' ' && *m_at != '\t' && *m_at != '\r' && *m_at != '\n') {
                return false;
            }
            ++m_at;
        }
        return m_file.error() == QFileDevice::NoError;
    }

    /// The rest of the block, with all in it that the file has of a record. More is asked for only
    /// when the line goes on behind it: whoever types or pipes an image may stop after its end.
    Run record()
    {
        const std::ptrdiff_t rest = m_end - m_at;
        if (rest < longest_record &&
            std::memchr(m_at, '\n', static_cast<std::size_t>(rest)) == nullptr) {
            read_block();
        }
        return {m_at, m_end};
    }

    void leave(const Run& record) { m_at = record.position(); }

private:
    /// Two digits for each of the four bytes before the data, 255 of data and the checksum.
    static constexpr std::ptrdiff_t longest_record = 2 * (4 + 255 + 1);

    /// Fills the block up behind what is left of it; false when there is nothing at all. A file
    /// that has given nothing, at its end or for an error, is not asked again.
    bool read_block()
    {
        if (m_has_more) {
            char* const rest_end = std::copy(m_at, m_end, m_block.data());
            const qint64 count = m_file.read(rest_end, m_block.data() + m_block.size() - rest_end);
            m_has_more = count > 0;
            m_at = m_block.data();
            m_end = rest_end + qMax<qint64>(count, 0);
        }
        return m_at != m_end;
    }

    QFile& m_file;
    bool m_has_more = true;
    std::array<char, 64 * 1024> m_block;
    const char* m_at = nullptr;
    const char* m_end = nullptr;
};

constexpr unsigned char not_a_digit = 0xFF;

constexpr std::array<unsigned char, 256> digit_values()
{
    std::array<unsigned char, 256> values{};
    for (unsigned int c = 0; c < values.size(); ++c) {
        values[c] = static_cast<unsigned char>(c >= '0' && c <= '9'   ? c - '0'
                                               : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                               : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                                                      : not_a_digit);
    }
    return values;
}

constexpr std::array<unsigned char, 256> DIGIT_VALUES = digit_values();

template <typename Characters>
bool read_digit(Characters& in, unsigned char& value)
{
    char character = 0;
    if (!in.next(character)) {
        return false;
    }
    const unsigned char digit = DIGIT_VALUES[static_cast<unsigned char>(character)];
    if (digit == not_a_digit) {
        return false;
    }
    value = digit;
    return true;
}

template <typename Characters>
bool read_byte(Characters& in, unsigned char& value, unsigned char& checksum)
{
    unsigned char high = 0;
    unsigned char low = 0;
    if (!read_digit(in, high) || !read_digit(in, low)) {
        return false;
    }
    value = static_cast<unsigned char>(high * 16 + low);
    checksum = static_cast<unsigned char>(checksum + value);
    return true;
}

template <typename Characters>
bool read_bytes(Characters& in, unsigned char count, QByteArray& data, unsigned char& checksum)
{
    data.resize(count);
    char* const bytes = data.data();
    for (int i = 0; i < count; ++i) {
        unsigned char value = 0;
        if (!read_byte(in, value, checksum)) {
            data.resize(i);
            return false;
        }
        bytes[i] = static_cast<char>(value);
    }
    return true;
}

template <typename Characters>
bool read_fields(Characters& in, IntelHexFileRecordType& type, unsigned short& address,
                 QByteArray& data)
{
    unsigned char sum = 0;
    unsigned char byte_count = 0;
    unsigned char address_hi = 0;
    unsigned char address_lo = 0;
    unsigned char record_type_byte = 0;
    unsigned char checksum = 0;
    if (!read_byte(in, byte_count, sum)) {
        return fail("MemoryMap::read_record(): failed to read byte_count");
    }
    if (!read_byte(in, address_hi, sum)) {
        return fail("MemoryMap::read_record(): failed to read address_hi");
    }
    if (!read_byte(in, address_lo, sum)) {
        return fail("MemoryMap::read_record(): failed to read address_lo");
    }
    if (!read_byte(in, record_type_byte, sum)) {
        return fail("MemoryMap::read_record(): failed to read record_type_byte");
    }
    if (!read_bytes(in, byte_count, data, sum)) {
        return fail("MemoryMap::read_record(): failed to read data");
    }
    if (!read_byte(in, checksum, sum)) {
        return fail("MemoryMap::read_record(): failed to read checksum");
    }
    if (sum != 0) { // the checksum byte makes up the sum of all before it to a multiple of 256
        return fail("MemoryMap::read_record(): checksum mismatch");
    }
    type = static_cast<IntelHexFileRecordType>(record_type_byte);
    address = static_cast<unsigned short>(address_hi * 256 + address_lo);
    return true;
}

template <typename Characters>
bool read_record(Characters& in, IntelHexFileRecordType& type, unsigned short& address,
                 QByteArray& data)
{
    if (!in.skip_past(':')) {
        return fail("MemoryMap::read_record(): failed to read character");
    }
    auto&& record = in.record();
    const bool is_read = read_fields(record, type, address, data);
    in.leave(record);
    return is_read;
}

/// The address in force after an address record: up to `max_bytes` of its data from the top down.
/// Each byte is widened as a signed number, so one of 0x80 or more sets all bits above it.
unsigned int upper_address(const QByteArray& data, int max_bytes)
{
    unsigned int address = 0;
    for (int i = 0; i < std::min(data.size(), max_bytes); ++i) {
        const auto byte = static_cast<qint8>(data.at(i));
        address |= static_cast<unsigned int>(qint32{byte}) << (24 - 8 * i);
    }
    return address;
}

} // namespace

bool MemoryMap::read_hex_digit_from_file(QFile& file, unsigned char& value) const
{
    FileCharacters in(file);
    return read_digit(in, value);
}

bool MemoryMap::read_hex_byte_from_file(QFile& file, unsigned char& value,
                                        unsigned char& checksum) const
{
    FileCharacters in(file);
    return read_byte(in, value, checksum);
}

bool MemoryMap::read_hex_bytes_from_file(QFile& file, unsigned char count, QByteArray& data,
                                         unsigned char& checksum) const
{
    FileCharacters in(file);
    return read_bytes(in, count, data, checksum);
}

bool MemoryMap::read_record_from_file(QFile& file, IntelHexFileRecordType& type,
                                      unsigned short& address, QByteArray& data) const
{
    FileCharacters in(file);
    return read_record(in, type, address, data);
}

bool MemoryMap::load_records(QFile& file, const QSet<unsigned int>& boundaries)
{
    BlockCharacters in(file);
    QByteArray data;
    data.reserve(255); // the longest record, so that no record allocates
    unsigned int upper = 0;
    AddressedBLOB* current = nullptr;
    while (!in.only_blanks_left()) {
        IntelHexFileRecordType type{};
        unsigned short low = 0;
        if (!read_record(in, type, low, data)) {
            return fail("MemoryMap::load_from_hex_file(): failed to read record");
        }
        switch (type) { // any other type has no meaning here and is passed over
        case IntelHexFileRecordType::Data:
            current = &store(current, upper + low, data, boundaries);
            break;
        case IntelHexFileRecordType::EndOfFile:
            return true;
        case IntelHexFileRecordType::ExtendedSegmentAddress:
            return fail("MemoryMap::load_from_hex_file(): encountered ExtendedSegmentAddress in "
                        "hex file");
        case IntelHexFileRecordType::StartSegmentAddress:
            return fail("MemoryMap::load_from_hex_file(): encountered StartSegmentAddress in hex "
                        "file");
        case IntelHexFileRecordType::ExtendedLinearAddress:
            upper = upper_address(data, 2);
            break;
        case IntelHexFileRecordType::StartLinearAddress:
            upper = upper_address(data, 4);
            break;
        }
    }
    return true;
}

AddressedBLOB& MemoryMap::store(AddressedBLOB* current, unsigned int address,
                                const QByteArray& data, const QSet<unsigned int>& boundaries)
{
    const bool continues = current != nullptr && address == current->address + current->size() &&
                           !boundaries.contains(address);
    AddressedBLOB& blob = continues ? *current : append_blob(address);
    blob.write(address - blob.address, static_cast<unsigned int>(data.size()), data.constData());
    return blob;
}

bool MemoryMap::load_from_hex_file(QString path, QSet<unsigned int> boundaries)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return fail("MemoryMap::load_from_hex_file(): failed to open file");
    }
    if (!load_records(file, boundaries)) {
        return false;
    }
    file.close();
    if (has_overlaps()) {
        return fail("MemoryMap::load_from_hex_file(): BLOBs overlap");
    }
    return true;
}
