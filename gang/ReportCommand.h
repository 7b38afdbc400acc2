#pragma once

#include <QStringList>

namespace gang
{

/// "zserial-gang report": prints what records add up to. The words are those of the command line
/// without "report". Returns the exit status; throws ArgumentError or FileError.
int run_report(const QStringList& command_line);

} // namespace gang
