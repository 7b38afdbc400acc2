#pragma once

#include "memory/AddressedBLOB.h"

#include <QByteArray>
#include <QSet>
#include <QString>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class QFile;

namespace intel_hex
{
struct ParsedRecord;
struct Record;
class RecordReader;
} // namespace intel_hex

/// A sparse image of device memory: blobs in the order in which they were added. Where blobs
/// overlap, the later one wins. Addresses are 32-bit byte addresses and wrap.
class MemoryMap
{
public:
    using Blobs = std::vector<std::unique_ptr<const AddressedBLOB>>;

    /// The chunk size, in bytes, of the tool's images: what it loads and what it reads back.
    static constexpr unsigned int default_chunk_size = 16;

    /// An empty map. `chunk_size`, in bytes and not 0, is both the chunk size of the blobs that the
    /// map makes and the length of the pieces into which write() cuts data.
    explicit MemoryMap(unsigned int chunk_size);

    /// Index of the first blob that holds `address`, or -1.
    int get_blob_index(unsigned int address) const;
    /// The blobs in list order, owned by the map and valid until it changes.
    const Blobs& blobs() const;

    /// Copies the image's bytes of [address, address + count) to `dst`, which must have room for
    /// `count`; bytes that no blob covers stay as they are. True when any byte was copied.
    bool read(unsigned int address, unsigned int count, char* dst) const;
    /// The same into `dst`, resized to `count` first.
    bool read(unsigned int address, unsigned int count, QByteArray& dst) const;

    /// Appends the data as new blobs of at most chunk_size bytes; existing blobs are never changed.
    void write(unsigned int address, unsigned int count, const char* src);
    void write(unsigned int address, QByteArray data);

    /// Sum of all blobs' sizes; overlapping bytes count once per blob.
    unsigned int size() const;
    /// Destroys every blob; the chunk size stays.
    void clear();
    /// Sorts the blobs by address and reports the first overlap on the debug channel.
    bool has_overlaps();

    // Intel HEX in. Each reads from the file's current position and returns false at the end of
    // the file or past a character that does not fit. Checksums are running sums modulo 256.
    bool read_hex_digit_from_file(QFile& file, unsigned char& value) const;
    bool read_hex_byte_from_file(QFile& file, unsigned char& value, unsigned char& checksum) const;
    bool read_hex_bytes_from_file(QFile& file, unsigned char count, QByteArray& data,
                                  unsigned char& checksum) const;
    /// Type, address and data are those of the record even when its checksum is missing or wrong.
    bool read_record_from_file(QFile& file, IntelHexFileRecordType& type, unsigned short& address,
                               QByteArray& data) const;

    /// Adds the content of an Intel HEX file to the map; a data record that begins on one of the
    /// `boundaries` (byte addresses) begins a new blob. Failures are reported on the debug channel
    /// and may leave the blobs read so far in the map. The map is left sorted by address.
    bool load_from_hex_file(QString path, QSet<unsigned int> boundaries);
    /// Called with each record that has been read and its outcome, before it is stored or refused.
    using RecordObserver = std::function<void(
        const intel_hex::RecordReader&, const intel_hex::ParsedRecord&, const intel_hex::Record&)>;
    /// The same with the records of a reader, from where it stands up to the end record.
    bool load_from_hex_records(intel_hex::RecordReader& reader,
                               const QSet<unsigned int>& boundaries,
                               const RecordObserver& observer = {});
    /// Writes all blobs in list order as an Intel HEX file. An existing file keeps its owner, mode
    /// and links and loses its content as soon as it is open. One that cannot be opened, or that
    /// cannot be written in full, is reported on the debug channel; false then.
    bool save_to_hex_file(QString path) const;

private:
    AddressedBLOB& append_blob(unsigned int address);
    /// The blobs, as a range of the list, that may hold any of [first_address, last_address].
    std::pair<Blobs::const_iterator, Blobs::const_iterator>
    candidates(unsigned int first_address, unsigned int last_address) const;
    void sort_blobs();
    bool store_records(intel_hex::RecordReader& reader, const QSet<unsigned int>& boundaries,
                       const RecordObserver& observer);
    /// Adds a data record to `current` (which may be null) or to a new blob; returns that blob.
    AddressedBLOB& store(AddressedBLOB* current, unsigned int address, const QByteArray& data,
                         const QSet<unsigned int>& boundaries);

    unsigned int m_chunk_size;
    Blobs m_blobs;
    /// Their addresses, side by side: a search through a long list would spend its time waiting for
    /// blobs that are spread over memory.
    std::vector<unsigned int> m_addresses;
    /// True while the list is known to be sorted by address without overlaps.
    bool m_in_order = true;
};
