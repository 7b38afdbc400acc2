#pragma once

#include "memory/IntelHexFileRecordType.h"

#include <QByteArray>

#include <cstddef>

/// Intel HEX records: their content, and how they are parsed. Pure functions over
/// characters, without files or messages.
namespace intel_hex
{

struct Record {
    IntelHexFileRecordType type{}; ///< any byte: it is not checked
    unsigned short address = 0;
    QByteArray data;
};

/// The outcome of parsing a record. A field is missing if the text ends within it or if it holds a
/// character that is not a hexadecimal digit.
enum class RecordOutcome {
    Complete,
    NoColon, ///< no record begins before the end of the text
    NoByteCount,
    NoAddressHigh,
    NoAddressLow,
    NoType,
    NoData,
    NoChecksum,
    ChecksumMismatch,
};

/// The uploader's message about an outcome; empty for a complete record.
const char* message_of(RecordOutcome outcome);

struct ParsedRecord {
    RecordOutcome outcome;
    /// How many characters after the colon fit. If the record is neither complete nor damaged by
    /// its checksum alone, the next one is not a digit, or there is none.
    std::ptrdiff_t consumed;
};

/// Parses the record whose colon is right before `begin`. A record without all of its data
/// changes only `record.data`, to the bytes that came before; one with a missing or wrong checksum
/// is filled in.
ParsedRecord parse_record(const char* begin, const char* end, Record& record);

/// Whether more text after `end` could change the outcome.
bool is_cut_short(const ParsedRecord& parsed, const char* begin, const char* end);

/// How many characters follow the colon of a record that goes on like `text`, which holds digits
/// only. While the byte count is missing it counts as 0.
int record_length(const QByteArray& text);

/// The value of a hexadecimal digit in either case; leaves `value` alone and returns false for any
/// other character.
bool digit_value(char character, unsigned char& value);

/// The upper address in force after a record, given the one before it: only address records (types
/// 4 and 5) change it.
unsigned int upper_address_after(const Record& record, unsigned int upper);

} // namespace intel_hex
