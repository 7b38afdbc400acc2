#pragma once

#include <QByteArray>
#include <QStringList>

namespace inspect
{

/// The terminal that the output goes to.
struct Terminal {
    bool colour = false;
};

/// The result of a command line.
struct Outcome {
    int status;
    QByteArray out; ///< for standard output
    QByteArray err; ///< for standard error
};

/// Carries out a command line, which begins with the program's name. Writes no file except those
/// that it names.
Outcome run(const QStringList& command_line, const Terminal& terminal);

} // namespace inspect
