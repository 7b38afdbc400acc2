#pragma once

#include <QByteArray>

#include <array>

/// What the host asks a bootloader for: the payloads of frames. docs/protocol.md
/// describes them in full, answers included.
///
///     version       00 02
///     reset         00 00
///     read          01 (flash) or 04 (EEPROM)   words   address
///     write         02 (flash) or 05 (EEPROM)   words   address   data
///     erase flash   03                          pages   address
///
/// `words` and `pages` are one byte, `address` is a word address of three, low byte first. Writes
/// and erases are acknowledged by their first byte alone; all other answers repeat the command and
/// append their data.
namespace protocol
{

/// By MemoryType.
inline constexpr std::array<char, 2> MEMORY_READ_COMMANDS{0x01, 0x04};
inline constexpr std::array<char, 2> MEMORY_WRITE_COMMANDS{0x02, 0x05};
inline constexpr char erase_command = 0x03;

/// How often a command is sent before it has failed, and for how long each answer is awaited.
inline constexpr unsigned char attempts = 40;
inline constexpr int timeout_ms = 300;
/// The same while the entry procedure looks for a bootloader that runs already.
inline constexpr unsigned char entry_attempts = 3;
inline constexpr int entry_timeout_ms = 100;

/// What a starting bootloader answers with its version, the rate at which it hears that, and the
/// time that it is then given to settle.
inline constexpr char entry_probe = 0x55;
inline constexpr int starting_baud = 9600;
inline constexpr int settle_ms = 1000;

/// Bytes after the repeated command, or in place of it.
inline constexpr unsigned short version_length = 2;
inline constexpr unsigned short acknowledgement_length = 1;

QByteArray version_request();
QByteArray reset();
/// A read, an erase, or a write without its data. Bits 24 and up of the address are dropped.
QByteArray memory_command(char opcode, unsigned char count, unsigned int word_address);

/// The 16-bit version that these bytes stand for, high byte first; missing ones are 0. Both count
/// as signed, so a low byte of 0x80 or more turns the high byte into 0xFF; the profile table lists
/// such versions as 0xFFnn.
unsigned short version_in(const QByteArray& bytes);

/// Puts the word count back into the answer to a flash read, which has a zero in its place.
void repair_second_byte(const QByteArray& command, QByteArray& response);
/// Takes the repeated command off the response. False if it is not there and should be.
bool strip_command(const QByteArray& command, QByteArray& response);

} // namespace protocol
