#include "memory/IntelHexRecord.h"
#include "memory/IntelHexRecordReader.h"
#include "memory/MemoryMap.h"

#include <QDebug>
#include <QFile>

namespace
{

/// Always false.
bool report(const char* message)
{
    qDebug() << message;
    return false;
}

bool skip_past_colon(QFile& file)
{
    char character = 0;
    while (file.getChar(&character)) {
        if (character == ':') {
            return true;
        }
    }
    return false;
}

/// The digits of a record from after its colon, to the record's end or past the first character
/// that does not fit, which is left out.
QByteArray take_record_digits(QFile& file)
{
    QByteArray digits;
    char character = 0;
    unsigned char value = 0;
    while (digits.size() < intel_hex::record_length(digits) && file.getChar(&character) &&
           intel_hex::digit_value(character, value)) {
        digits += character;
    }
    return digits;
}

} // namespace

bool MemoryMap::read_hex_digit_from_file(QFile& file, unsigned char& value) const
{
    char character = 0;
    return file.getChar(&character) && intel_hex::digit_value(character, value);
}

bool MemoryMap::read_hex_byte_from_file(QFile& file, unsigned char& value,
                                        unsigned char& checksum) const
{
    unsigned char high = 0;
    unsigned char low = 0;
    if (!read_hex_digit_from_file(file, high) || !read_hex_digit_from_file(file, low)) {
        return false;
    }
    value = static_cast<unsigned char>(high * 16 + low);
    checksum = static_cast<unsigned char>(checksum + value);
    return true;
}

bool MemoryMap::read_hex_bytes_from_file(QFile& file, unsigned char count, QByteArray& data,
                                         unsigned char& checksum) const
{
    data.clear();
    for (unsigned char value = 0; data.size() < count;) {
        if (!read_hex_byte_from_file(file, value, checksum)) {
            return false;
        }
        data.append(static_cast<char>(value));
    }
    return true;
}

bool MemoryMap::read_record_from_file(QFile& file, IntelHexFileRecordType& type,
                                      unsigned short& address, QByteArray& data) const
{
    if (!skip_past_colon(file)) {
        return report(intel_hex::message_of(intel_hex::RecordOutcome::NoColon));
    }
    const QByteArray digits = take_record_digits(file);
    intel_hex::Record record{type, address, data};
    const auto outcome = intel_hex::parse_record(digits.begin(), digits.end(), record).outcome;
    type = record.type;
    address = record.address;
    data = record.data;
    return outcome == intel_hex::RecordOutcome::Complete || report(intel_hex::message_of(outcome));
}

bool MemoryMap::store_records(intel_hex::RecordReader& reader, const QSet<unsigned int>& boundaries,
                              const RecordObserver& observer)
{
    intel_hex::Record record;
    record.data.reserve(255); // the longest record, so that no record allocates
    unsigned int upper = 0;
    AddressedBLOB* current = nullptr;
    while (!reader.is_at_end()) {
        const intel_hex::ParsedRecord parsed = reader.next(record);
        if (observer) {
            observer(reader, parsed, record);
        }
        if (parsed.outcome != intel_hex::RecordOutcome::Complete) {
            report(intel_hex::message_of(parsed.outcome));
            return report("MemoryMap::load_from_hex_file(): failed to read record");
        }
        switch (record.type) {
        case IntelHexFileRecordType::Data:
            current = &store(current, upper + record.address, record.data, boundaries);
            break;
        case IntelHexFileRecordType::EndOfFile:
            return true;
        case IntelHexFileRecordType::ExtendedSegmentAddress:
            return report("MemoryMap::load_from_hex_file(): encountered ExtendedSegmentAddress in "
                          "hex file");
        case IntelHexFileRecordType::StartSegmentAddress:
            return report("MemoryMap::load_from_hex_file(): encountered StartSegmentAddress in hex "
                          "file");
        default: // other types are skipped
            upper = intel_hex::upper_address_after(record, upper);
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
        return report("MemoryMap::load_from_hex_file(): failed to open file");
    }
    intel_hex::RecordReader reader(file);
    return load_from_hex_records(reader, boundaries);
}

bool MemoryMap::load_from_hex_records(intel_hex::RecordReader& reader,
                                      const QSet<unsigned int>& boundaries,
                                      const RecordObserver& observer)
{
    if (!store_records(reader, boundaries, observer)) {
        return false;
    }
    if (has_overlaps()) {
        return report("MemoryMap::load_from_hex_file(): BLOBs overlap");
    }
    return true;
}
