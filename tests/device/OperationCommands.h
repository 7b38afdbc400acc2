#pragma once

#include "tests/support/Bytes.h"

#include <string>
#include <vector>

namespace test
{

// What crosses the line during an operation, as hexadecimal digits. Addresses are byte addresses;
// flash of the devices in operations_data has the divisor 2, rows of 0x40 and pages of 0x80 bytes,
// and their EEPROM has the divisor 1 and rows of 0x10 bytes. The tiny ones are an exception.

using Commands = std::vector<std::string>;

inline QByteArray memory_command(char operation, unsigned int count, unsigned int word_address)
{
    QByteArray command(1, operation);
    for (const unsigned int byte : {count, word_address, word_address >> 8U, word_address >> 16U}) {
        command.append(static_cast<char>(byte & 0xFFU));
    }
    return command;
}

inline std::string read_flash_row(unsigned int address)
{
    return hex(memory_command(0x01, 0x20, address / 2));
}

inline std::string write_flash_row(unsigned int address, const QByteArray& row)
{
    return hex(memory_command(0x02, 1, address / 2) + row);
}

inline std::string erase_page(unsigned int address)
{
    return hex(memory_command(0x03, 1, address / 2));
}

/// `offset` counts from the beginning of EEPROM.
inline std::string read_eeprom(unsigned int offset, unsigned int count = 0x10)
{
    return hex(memory_command(0x04, count, offset));
}

inline std::string write_eeprom_row(unsigned int offset, const QByteArray& row)
{
    return hex(memory_command(0x05, 0x10, offset) + row);
}

/// A row is written and read back.
inline Commands program_row(unsigned int address, const QByteArray& row)
{
    return {write_flash_row(address, row), read_flash_row(address)};
}

/// One list after the other.
inline Commands joined(Commands list, const Commands& more)
{
    list.insert(list.end(), more.begin(), more.end());
    return list;
}

inline Commands times(std::size_t count, const std::string& command)
{
    return Commands(count, command);
}

} // namespace test
