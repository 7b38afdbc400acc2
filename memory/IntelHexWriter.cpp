#include "memory/AddressedBLOB.h"
#include "memory/IntelHexText.h"
#include "memory/MemoryMap.h"

#include <QDebug>
#include <QFile>

#include <algorithm>

namespace
{

/// Text is written to the file in blocks of about this many bytes.
constexpr int block_size = 64 * 1024;
/// Content is turned into text in pieces of this many bytes, a multiple of a record's: about a
/// third of a block.
constexpr unsigned int piece_size = 8 * 1024;

bool put(QFile& file, const QByteArray& text)
{
    return file.write(text) == text.size();
}

/// Collects records, also those of many small blobs, and writes them to the file in blocks.
class RecordBlocks
{
public:
    explicit RecordBlocks(QFile& file) : m_file(file) { m_text.reserve(2 * block_size); }

    /// False, here and below, if not everything could be written.
    bool add(const AddressedBLOB& blob, unsigned short upper)
    {
        unsigned int count = 0;
        for (unsigned int offset = 0; offset < blob.size(); offset += count) {
            count = std::min(piece_size, blob.size() - offset);
            intel_hex::append_content(m_text, blob, offset, count, upper);
            if (m_text.size() >= block_size && !hand_over()) {
                return false;
            }
        }
        return true;
    }

    bool finish()
    {
        intel_hex::append_end_record(m_text);
        return hand_over();
    }

    bool hand_over()
    {
        const bool taken = put(m_file, m_text);
        m_text.resize(0);
        return taken;
    }

private:
    QFile& m_file;
    QByteArray m_text;
};

bool write_image(QFile& file, const MemoryMap& map)
{
    RecordBlocks records(file);
    const auto& blobs = map.blobs();
    return std::all_of(blobs.begin(), blobs.end(),
                       [&](const auto& blob) { return records.add(*blob, 0xFFFF); }) &&
           records.finish();
}

/// Whether everything was written, buffered text included.
bool close(QFile& file)
{
    file.close();
    return file.error() == QFileDevice::NoError;
}

} // namespace

bool AddressedBLOB::write_record_to_file(QFile& file, IntelHexFileRecordType type,
                                         unsigned short record_address, QByteArray data) const
{
    QByteArray text;
    intel_hex::append_record(text, type, record_address, data.constData(), data.size());
    return put(file, text);
}

bool AddressedBLOB::write_data_record_to_file(QFile& file, unsigned short record_address,
                                              QByteArray data) const
{
    return write_record_to_file(file, IntelHexFileRecordType::Data, record_address, data);
}

bool AddressedBLOB::write_extended_linear_address_record_to_file(QFile& file,
                                                                 unsigned int byte_address) const
{
    QByteArray text;
    intel_hex::append_extended_linear_address_record(text, byte_address);
    return put(file, text);
}

bool AddressedBLOB::write_eof_to_file(QFile& file) const
{
    QByteArray text;
    intel_hex::append_end_record(text);
    return put(file, text);
}

bool AddressedBLOB::write_content_to_file(QFile& file, unsigned short upper) const
{
    RecordBlocks records(file);
    return records.add(*this, upper) && records.hand_over();
}

bool MemoryMap::save_to_hex_file(QString path) const
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly) && write_image(file, *this) && close(file)) {
        return true;
    }
    qDebug() << QStringLiteral("MemoryMap::save_to_hex_file(): could not open file '%1' for "
                               "writing")
                    .arg(path);
    return false;
}
