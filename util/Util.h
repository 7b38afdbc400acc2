#pragma once

#include <QString>

#include <type_traits>

namespace Util
{

/// `value` in upper-case hexadecimal without a prefix, padded on the left with "0" to `width`
/// digits. A width of -1 stands for all digits of the type (8 for `unsigned int`); a wider value is
/// not cut.
template <typename T>
QString uint_to_hex(T value, signed char width)
{
    static_assert(std::is_unsigned_v<T>, "only unsigned values have one hexadecimal form");
    const int digits = width == -1 ? static_cast<int>(2 * sizeof(T)) : width;
    return QString::number(static_cast<qulonglong>(value), 16)
        .toUpper()
        .rightJustified(digits, QLatin1Char('0'));
}

} // namespace Util
