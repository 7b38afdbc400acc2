#pragma once

#include <QByteArray>

#include <ostream>
#include <string>
#include <vector>

// Bytes as a test writes them down and as a failure shows them.

namespace test
{

/// Bytes from hexadecimal digits separated by spaces.
inline QByteArray bytes(const char* digits)
{
    return QByteArray::fromHex(digits);
}

/// "550A"
inline std::string digits_of(const QByteArray& bytes)
{
    return bytes.toHex().toUpper().toStdString();
}

/// "550a", as in the tool's log.
inline std::string small_digits(const QByteArray& bytes)
{
    return bytes.toHex().toStdString();
}

/// "55 0A", as in the tool's messages.
inline std::string hex(const QByteArray& bytes)
{
    return bytes.toHex(' ').toUpper().toStdString();
}

inline std::vector<std::string> hex(const std::vector<QByteArray>& list)
{
    std::vector<std::string> digits;
    digits.reserve(list.size());
    for (const QByteArray& bytes : list) {
        digits.push_back(hex(bytes));
    }
    return digits;
}

/// `count` bytes that show where each of them belongs: `first`, `first` + 1, ... modulo 256.
inline QByteArray counting(int count, int first = 0)
{
    QByteArray bytes(count, '\0');
    for (int i = 0; i < count; ++i) {
        bytes[i] = static_cast<char>(first + i);
    }
    return bytes;
}

} // namespace test

/// How GoogleTest shows bytes. It looks for this in the namespace of QByteArray.
inline void PrintTo(const QByteArray& bytes, std::ostream* out)
{
    *out << '[' << test::hex(bytes) << ']';
}
