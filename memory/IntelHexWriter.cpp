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
    QByteArray text;
    // A byte takes less than four characters, and a step adds less than 128 to a block that is full
    // once it has block_size. Images read back from a device are of blobs of 16 bytes.
    text.reserve(static_cast<int>(std::min<quint64>(block_size, quint64{4} * size())) + 128);
    std::array<char, bytes_per_record> data;
    unsigned int count = 0;
    for (unsigned int offset = 0; offset < size(); offset += count) {
        const unsigned int record_address = address + offset;
        if (record_address >> 16 != upper) {
            append_extended_linear_address_record(text, record_address);
            upper = static_cast<unsigned short>(record_address >> 16);
        }
        count = read(offset, bytes_per_record, data.data());
        append_record(text, IntelHexFileRecordType::Data,
                      static_cast<unsigned short>(record_address & 0xFFFF), data.data(),
                      static_cast<int>(count));
        if (text.size() >= block_size) {
            if (!put(file, text)) {
                return false;
            }
            text.resize(0);
        }
    }
    return put(file, text);
}

bool MemoryMap::save_to_hex_file(QString path) const
{
    const auto write = [this](QFileDevice& file) {
        const auto write_content = [&file](const auto& blob) {
            return blob->write_content_to_file(file, 0xFFFF);
        };
        return std::all_of(m_blobs.begin(), m_blobs.end(), write_content) &&
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
