#include "memory/IntelHexRecord.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace intel_hex
{

namespace
{

/// Greater than the value of any pair of digits, so that a pair that includes another character
/// also exceeds it.
constexpr unsigned short not_a_digit = 0x100;

constexpr std::array<unsigned short, 256> digit_values()
{
    std::array<unsigned short, 256> values{};
    for (unsigned int c = 0; c < values.size(); ++c) {
        values[c] = static_cast<unsigned short>(c >= '0' && c <= '9'   ? c - '0'
                                                : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                                                       : not_a_digit);
    }
    return values;
}

constexpr std::array<unsigned short, 256> DIGIT_VALUES = digit_values();

unsigned int value_of(char character)
{
    return DIGIT_VALUES[static_cast<unsigned char>(character)];
}

/// Reads digits in pairs and sums up the bytes. Stops before the first character that is not a
/// digit.
class ByteScanner
{
public:
    ByteScanner(const char* at, const char* end) : m_at(at), m_end(end) {}

    /// Takes `count` bytes, or as many as there are; returns how many.
    int take(char* bytes, int count)
    {
        // Locals stay in registers: a store through `bytes` could change any member.
        const char* const digits = m_at;
        const auto whole = std::min<std::ptrdiff_t>(count, (m_end - digits) / 2);
        unsigned int sum = m_sum;
        std::ptrdiff_t taken = 0;
        for (; taken < whole; ++taken) {
            const unsigned int value =
                value_of(digits[2 * taken]) * 16 + value_of(digits[2 * taken + 1]);
            if (value > 0xFF) {
                break;
            }
            sum += value;
            bytes[taken] = static_cast<char>(value);
        }
        m_sum = sum;
        m_at = digits + 2 * taken;
        if (taken < count && m_at != m_end && value_of(*m_at) != not_a_digit) {
            ++m_at; // the first half of a byte
        }
        return static_cast<int>(taken);
    }

    const char* position() const { return m_at; }

    /// Of all bytes taken, modulo 256.
    unsigned char sum() const { return static_cast<unsigned char>(m_sum); }

private:
    const char* m_at;
    const char* m_end;
    unsigned int m_sum = 0;
};

bool take_data(ByteScanner& bytes, int count, QByteArray& data)
{
    data.resize(count);
    const int taken = bytes.take(data.data(), count);
    if (taken < count) {
        data.resize(taken);
    }
    return taken == count;
}

RecordOutcome take_fields(ByteScanner& bytes, Record& record)
{
    constexpr std::array<RecordOutcome, 4> missing = {
        RecordOutcome::NoByteCount, RecordOutcome::NoAddressHigh, RecordOutcome::NoAddressLow,
        RecordOutcome::NoType};
    std::array<char, missing.size()> header{};
    const auto taken = static_cast<std::size_t>(bytes.take(header.data(), header.size()));
    if (taken < header.size()) {
        return missing[taken];
    }
    const auto [byte_count, address_high, address_low, type] = header;
    if (!take_data(bytes, static_cast<unsigned char>(byte_count), record.data)) {
        return RecordOutcome::NoData;
    }
    record.type = static_cast<IntelHexFileRecordType>(type);
    record.address = static_cast<unsigned short>(static_cast<unsigned char>(address_high) * 256 +
                                                 static_cast<unsigned char>(address_low));
    char checksum = 0;
    if (bytes.take(&checksum, 1) == 0) {
        return RecordOutcome::NoChecksum;
    }
    // The checksum byte makes up the sum of all before it to a multiple of 256.
    return bytes.sum() == 0 ? RecordOutcome::Complete : RecordOutcome::ChecksumMismatch;
}

/// Up to `max_bytes` bytes from the top down. Each is widened as a signed number, so one of 0x80 or
/// more sets all bits above it.
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

const char* message_of(RecordOutcome outcome)
{
    switch (outcome) {
    case RecordOutcome::NoColon:
        return "MemoryMap::read_record(): failed to read character";
    case RecordOutcome::NoByteCount:
        return "MemoryMap::read_record(): failed to read byte_count";
    case RecordOutcome::NoAddressHigh:
        return "MemoryMap::read_record(): failed to read address_hi";
    case RecordOutcome::NoAddressLow:
        return "MemoryMap::read_record(): failed to read address_lo";
    case RecordOutcome::NoType:
        return "MemoryMap::read_record(): failed to read record_type_byte";
    case RecordOutcome::NoData:
        return "MemoryMap::read_record(): failed to read data";
    case RecordOutcome::NoChecksum:
        return "MemoryMap::read_record(): failed to read checksum";
    case RecordOutcome::ChecksumMismatch:
        return "MemoryMap::read_record(): checksum mismatch";
    case RecordOutcome::Complete:
        break;
    }
    return "";
}

ParsedRecord parse_record(const char* begin, const char* end, Record& record)
{
    ByteScanner bytes(begin, end);
    const RecordOutcome outcome = take_fields(bytes, record);
    return {outcome, bytes.position() - begin};
}

bool is_cut_short(const ParsedRecord& parsed, const char* begin, const char* end)
{
    return parsed.outcome != RecordOutcome::Complete &&
           parsed.outcome != RecordOutcome::ChecksumMismatch && begin + parsed.consumed == end;
}

int record_length(const QByteArray& text)
{
    char byte_count = 0;
    ByteScanner(text.begin(), text.end()).take(&byte_count, 1);
    // Count, address and type before the data, the checksum after them.
    return 2 * (4 + static_cast<unsigned char>(byte_count) + 1);
}

bool digit_value(char character, unsigned char& value)
{
    const unsigned int digit = value_of(character);
    if (digit == not_a_digit) {
        return false;
    }
    value = static_cast<unsigned char>(digit);
    return true;
}

unsigned int upper_address_after(const Record& record, unsigned int upper)
{
    switch (record.type) {
    case IntelHexFileRecordType::ExtendedLinearAddress:
        return upper_address(record.data, 2);
    case IntelHexFileRecordType::StartLinearAddress:
        return upper_address(record.data, 4);
    default:
        return upper;
    }
}

} // namespace intel_hex
