#pragma once

#include <QByteArray>
#include <QString>

namespace gang
{

/// Returns the device error that decided a run, as one line for the user; empty if there is none.
/// This is the last error, or a failure to open the port that caused it. `console` is the output
/// before the block with which zserial ended.
QString deciding_error(const QByteArray& console);

/// Returns the last `count` non-empty lines of a text, joined into one line.
QString last_lines(const QByteArray& text, int count);

} // namespace gang
