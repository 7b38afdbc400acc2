#pragma once

#include <QByteArray>

#include <optional>

namespace gang
{

/// The largest number that every JSON reader takes exactly.
constexpr quint64 largest_number = (quint64(1) << 53U) - 1;

/// Position and format of the serial number in an image.
struct NumberSlot {
    enum class Format { LittleEndian, BigEndian, DecimalText };

    unsigned int address = 0; ///< byte address in the image
    int size = 0;             ///< bytes
    Format format = Format::LittleEndian;
};

/// Returns the largest size of a slot of this format, in bytes.
int largest_size(NumberSlot::Format format);

/// Returns a number as bytes: binary, or decimal digits with leading zeros. Nothing if it does not
/// fit.
std::optional<QByteArray> bytes_of(quint64 number, const NumberSlot& slot);

} // namespace gang
