#pragma once

#include <QByteArray>
#include <QString>

namespace gang
{

/// The error of the device that decided a run, as one line for people; empty when there is none:
/// the last one, unless that only follows from a port that could not be opened. `console` is what
/// came before the block with which the tool ended.
QString deciding_error(const QByteArray& console);

/// The last non-empty lines of a text, joined into one.
QString last_lines(const QByteArray& text, int count);

} // namespace gang
