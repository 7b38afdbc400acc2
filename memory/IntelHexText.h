#pragma once

#include "memory/IntelHexFileRecordType.h"

#include <QByteArray>

class AddressedBLOB;

/// Intel HEX records as text. Each function appends to what the text holds.
namespace intel_hex
{

/// One line of `count` data bytes. The record has a single byte for the count: 255 at most fit.
void append_record(QByteArray& text, IntelHexFileRecordType type, unsigned short address,
                   const char* data, int count);

/// The record that puts the upper half of `byte_address` in force.
void append_extended_linear_address_record(QByteArray& text, unsigned int byte_address);

/// `count` bytes of the blob from `offset` on, in records of 16 bytes, with an address record
/// wherever the upper half of the address differs from `upper`, the one in force, which is kept up
/// to date. The bytes must be in the blob.
void append_content(QByteArray& text, const AddressedBLOB& blob, unsigned int offset,
                    unsigned int count, unsigned short& upper);

void append_end_record(QByteArray& text);

} // namespace intel_hex
