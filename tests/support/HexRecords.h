#pragma once

#include <QByteArray>

namespace test
{

// Lines of Intel HEX files.

/// A record line with a correct checksum. Only the lower 16 bits of the address are used.
inline QByteArray hex_record(int type, unsigned int address, const QByteArray& data)
{
    QByteArray bytes;
    bytes.append(static_cast<char>(data.size()));
    bytes.append(static_cast<char>(address >> 8U & 0xFFU));
    bytes.append(static_cast<char>(address & 0xFFU));
    bytes.append(static_cast<char>(type));
    bytes.append(data);
    unsigned int sum = 0;
    for (const char byte : bytes) {
        sum += static_cast<unsigned char>(byte);
    }
    bytes.append(static_cast<char>(0x100U - (sum & 0xFFU)));
    return ':' + bytes.toHex().toUpper() + '\n';
}

inline QByteArray data_record(unsigned int address, const char* digits)
{
    return hex_record(0, address, QByteArray::fromHex(digits));
}

inline const QByteArray end_record = ":00000001FF\n";

} // namespace test
