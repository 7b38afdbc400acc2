#include "gang/SerialNumber.h"

#include <algorithm>

namespace gang
{

namespace
{

constexpr int longest_binary = 8;
constexpr int longest_text = 16; ///< digits of the largest number

QByteArray little_endian(quint64 number, int size)
{
    QByteArray bytes;
    for (int i = 0; i < size; ++i) {
        bytes.append(static_cast<char>(number & 0xFFU));
        number >>= 8U;
    }
    return bytes;
}

} // namespace

int largest_size(NumberSlot::Format format)
{
    return format == NumberSlot::Format::DecimalText ? longest_text : longest_binary;
}

std::optional<QByteArray> bytes_of(quint64 number, const NumberSlot& slot)
{
    if (slot.format == NumberSlot::Format::DecimalText) {
        const QByteArray digits = QByteArray::number(number).rightJustified(slot.size, '0');
        return digits.size() == slot.size ? std::optional<QByteArray>(digits) : std::nullopt;
    }
    const bool fits =
        slot.size >= longest_binary || number >> (8U * static_cast<unsigned int>(slot.size)) == 0;
    if (!fits) {
        return std::nullopt;
    }
    QByteArray bytes = little_endian(number, slot.size);
    if (slot.format == NumberSlot::Format::BigEndian) {
        std::reverse(bytes.begin(), bytes.end());
    }
    return bytes;
}

} // namespace gang
