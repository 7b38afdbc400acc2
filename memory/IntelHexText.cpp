#include "memory/IntelHexText.h"

#include "memory/AddressedBLOB.h"

#include <algorithm>
#include <array>

namespace intel_hex
{

namespace
{

constexpr unsigned int bytes_per_record = 16;

char* put_byte(char* out, unsigned char value, unsigned char& sum)
{
    static constexpr char DIGITS[] = "0123456789ABCDEF";
    sum = static_cast<unsigned char>(sum + value);
    *out++ = DIGITS[value >> 4];
    *out++ = DIGITS[value & 0xF];
    return out;
}

} // namespace

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

void append_extended_linear_address_record(QByteArray& text, unsigned int byte_address)
{
    const std::array<char, 2> upper = {static_cast<char>(byte_address >> 24),
                                       static_cast<char>(byte_address >> 16)};
    append_record(text, IntelHexFileRecordType::ExtendedLinearAddress, 0, upper.data(), 2);
}

void append_content(QByteArray& text, const AddressedBLOB& blob, unsigned int offset,
                    unsigned int count, unsigned short& upper)
{
    std::array<char, bytes_per_record> data;
    while (count > 0) {
        const unsigned int address = blob.address + offset;
        if (address >> 16 != upper) {
            append_extended_linear_address_record(text, address);
            upper = static_cast<unsigned short>(address >> 16);
        }
        const unsigned int taken =
            blob.read(offset, std::min(count, bytes_per_record), data.data());
        append_record(text, IntelHexFileRecordType::Data,
                      static_cast<unsigned short>(address & 0xFFFF), data.data(),
                      static_cast<int>(taken));
        offset += taken;
        count -= taken;
    }
}

void append_end_record(QByteArray& text)
{
    text += ":00000001FF\n";
}

} // namespace intel_hex
