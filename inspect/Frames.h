#pragma once

#include <QtGlobal>

namespace inspect
{

// What commands cost on the line: the bytes of request and answer with their frames, when no byte
// has to be escaped.

/// A read command for this many bytes.
quint64 read_bytes(quint64 data);
/// A write command with this many bytes.
quint64 write_bytes(quint64 data);
quint64 erase_bytes();

/// The time, in seconds, that this many bytes take at a rate in baud; 0 at a rate of 0.
double seconds_of(quint64 bytes, unsigned int rate);

} // namespace inspect
