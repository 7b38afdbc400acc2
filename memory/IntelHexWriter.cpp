#include "memory/AddressedBLOB.h"
#include "memory/MemoryMap.h"
#include "util/WholeFile.h"

#include <QDebug>
#include <QFileDevice>

#include <algorithm>
#include <array>

namespace
{

constexpr unsigned int bytes_per_record = 16;
/// Formatted text is handed to the file in blocks of about this many bytes.
constexpr int block_size = 64 * 1024;

char* put_byte(char* out, unsigned char value, unsigned char& sum)
{
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    sum = static_cast<unsigned char>(sum + value);
    *out++ = DIGITS[value >> 4];
    *out++ = DIGITS[value & 0xF];
    return out;
}

void append_record(QByteArray& text, IntelHexFileRecordType type, unsigned short address,
                   const char* data, int count)
{
    const int begin = text.size();
    text.resize(begin + 2 * count + 12); // ":", 5 bytes beside the data, line end
    char* out = text.data() + begin;
    unsigned char sum = 0;
    *out++ = ':';
    out = put_byte(out, static_cast<unsigned char>(count), sum);
    out = put_byte(out, static_cast<unsigned char>(address >> 8), sum);
    out = put_byte(out, static_cast<unsigned char>(address & 0xFF), sum);
    out = put_byte(out, static_cast<unsigned char>(type), sum);
    for (int i = 0; i < count; ++i) {
        out = put_byte(out, static_cast<unsigned char>(data[i]), sum);
    }
    out = put_byte(out, static_cast<unsigned char>(-sum), sum);
    *out = '\n';
}

void append_extended_linear_address_record(QByteArray& text, unsigned int address)
{
    const std::array<char, 2> upper = {static_cast<char>(address >> 24),
                                       static_cast<char>(address >> 16)};
    append_record(text, IntelHexFileRecordType::ExtendedLinearAddress, 0, upper.data(), 2);
}

bool put(QFileDevice& file, const QByteArray& text)
{
    return file.write(text) == text.size();
}

/// Gathers records, also those of many small blobs, and hands them to the file in blocks.
class RecordBlocks
{
public:
    explicit RecordBlocks(QFileDevice& file) : m_file(file)
    {
        m_text.reserve(block_size + 128); // full at block_size; one step adds less than 128
    }

    void add_address(unsigned int address)
    {
        append_extended_linear_address_record(m_text, address);
    }

    bool add_data(unsigned short address, const char* data, int count)
    {
        append_record(m_text, IntelHexFileRecordType::Data, address, data, count);
        return m_text.size() < block_size || hand_over();
    }

    /// False when the file has not taken everything.
    bool hand_over()
    {
        const bool taken = put(m_file, m_text);
        m_text.resize(0);
        return taken;
    }

private:
    QFileDevice& m_file;
    QByteArray m_text;
};

bool write_content(const AddressedBLOB& blob, unsigned short upper, RecordBlocks& records)
{
    std::array<char, bytes_per_record> data;
    unsigned int count = 0;
    for (unsigned int offset = 0; offset < blob.size(); offset += count) {
        const unsigned int address = blob.address + offset;
        if (address >> 16 != upper) {
            records.add_address(address);
            upper = static_cast<unsigned short>(address >> 16);
        }
        count = blob.read(offset, bytes_per_record, data.data());
        if (!records.add_data(static_cast<unsigned short>(address & 0xFFFF), data.data(),
                              static_cast<int>(count))) {
            return false;
        }
    }
    return true;
}

} // namespace

bool AddressedBLOB::write_record_to_file(QFileDevice& file, IntelHexFileRecordType type,
                                         unsigned short record_address, QByteArray data) const
{
    QByteArray text;
    append_record(text, type, record_address, data.constData(), data.size());
    return put(file, text);
}

bool AddressedBLOB::write_data_record_to_file(QFileDevice& file, unsigned short record_address,
                                              QByteArray data) const
{
    return write_record_to_file(file, IntelHexFileRecordType::Data, record_address, data);
}

bool AddressedBLOB::write_extended_linear_address_record_to_file(QFileDevice& file,
                                                                 unsigned int byte_address) const
{
    QByteArray text;
    append_extended_linear_address_record(text, byte_address);
    return put(file, text);
}

bool AddressedBLOB::write_eof_to_file(QFileDevice& file) const
{
    return put(file, ":00000001FF\n");
}

bool AddressedBLOB::write_content_to_file(QFileDevice& file, unsigned short upper) const
{
    RecordBlocks records(file);
    return write_content(*this, upper, records) && records.hand_over();
}

bool MemoryMap::save_to_hex_file(QString path) const
{
    const auto write = [this](QFileDevice& file) {
        RecordBlocks records(file);
        const auto write_blob = [&records](const auto& blob) {
            return write_content(*blob, 0xFFFF, records);
        };
        return std::all_of(m_blobs.begin(), m_blobs.end(), write_blob) && records.hand_over() &&
               AddressedBLOB(m_chunk_size).write_eof_to_file(file);
    };
    if (Util::write_whole_file(path, write)) {
        return true;
    }
    qDebug() << QStringLiteral("MemoryMap::save_to_hex_file(): could not open file '%1' for "
                               "writing")
                    .arg(path);
    return false;
}
