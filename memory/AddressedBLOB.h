#pragma once

#include "memory/IntelHexFileRecordType.h"
#include "memory/zarnBLOB.h"

#include <QByteArray>

class QFile;

/// A blob placed in the device's address space: byte 0 lies at `address`.
class AddressedBLOB : public zarnBLOB
{
public:
    explicit AddressedBLOB(unsigned int chunk_size);
    ~AddressedBLOB() override;

    /// Frees the bytes and goes back to address 0.
    void clear() override;

    /// Strict order by ascending address; equal addresses have no order.
    static bool address_sort_compare(const AddressedBLOB* a, const AddressedBLOB* b);

    // Intel HEX out. `file` must be open for writing; record addresses are the low 16 bits of
    // byte addresses. False if not all of it could be written.
    bool write_record_to_file(QFile& file, IntelHexFileRecordType type,
                              unsigned short record_address, QByteArray data) const;
    bool write_data_record_to_file(QFile& file, unsigned short record_address,
                                   QByteArray data) const;
    /// The record that puts the upper half of `byte_address` in force.
    bool write_extended_linear_address_record_to_file(QFile& file, unsigned int byte_address) const;
    bool write_eof_to_file(QFile& file) const;
    /// The whole blob in records of 16 bytes; `upper` is the upper address half in force before it.
    bool write_content_to_file(QFile& file, unsigned short upper) const;

    /// Byte address of byte 0; set by the creator of the blob.
    unsigned int address = 0;
};
