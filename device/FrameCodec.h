#pragma once

#include "device/Reason.h"

#include <QByteArray>

/// The frame that carries every command and response, as pure functions over bytes:
///
///     55 55   payload   checksum   04
///
/// In payload and checksum the three special values 04, 05 and 55 have an escape byte 05 before
/// them. docs/protocol.md has examples and what the host accepts.
namespace frame
{

constexpr char terminator = 0x04;
constexpr char escape = 0x05;
constexpr char sync = 0x55;

/// True for the three special values and no other byte.
bool needs_escaping(char byte);

/// Whether `buffer` ends in the unescaped terminator of a frame.
bool is_terminated(const QByteArray& buffer);

/// Two's complement of the payload's 8-bit sum.
char checksum(const QByteArray& payload);

/// The frame of a payload, which must not be empty.
QByteArray encode(const QByteArray& payload);

/// Takes a received frame apart. No reason when the frame is good and `payload` holds its unescaped
/// payload; otherwise the reason why it was refused, and `payload` must not be used.
///
/// A checksum that is a special value but arrives without its escape is accepted; anything escaped
/// without need is refused.
Reason decode(const QByteArray& frame, QByteArray& payload);

} // namespace frame
