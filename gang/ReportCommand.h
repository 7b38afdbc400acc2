#pragma once

#include <QStringList>

namespace gang
{

/// Runs "zserial-gang report", which prints a report on record files. `command_line` lacks the word
/// "report". Returns the exit status; throws ArgumentError or FileError.
int run_report(const QStringList& command_line);

} // namespace gang
