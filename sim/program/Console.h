#pragma once

#include <QString>

namespace sim
{

/// Prints a line on standard output at once: the process that started this one waits for the first.
void print(const QString& line);

/// A line on standard error.
void complain(const QString& line);

} // namespace sim
