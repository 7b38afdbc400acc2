#pragma once

#include <QByteArray>

#include <optional>

namespace gang
{

/// The largest number that every reader of a record takes without rounding.
constexpr quint64 largest_number = (quint64(1) << 53U) - 1;

/// Where a device keeps its serial number, and how.
struct NumberSlot {
    enum class Format { LittleEndian, BigEndian, DecimalText };

    unsigned int address = 0; ///< byte address in the image
    int size = 0;             ///< bytes
    Format format = Format::LittleEndian;
};

/// How many bytes a number may take in this format.
int largest_size(NumberSlot::Format format);

/// The bytes of a number: binary, or decimal digits with leading zeros. Nothing if it does not fit.
std::optional<QByteArray> bytes_of(quint64 number, const NumberSlot& slot);

} // namespace gang
