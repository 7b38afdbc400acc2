#pragma once

#include <QString>

namespace sim
{

/// A line on standard output, there at once: whoever started the program waits for the first one.
void print(const QString& line);

/// A line on standard error.
void complain(const QString& line);

} // namespace sim
