#pragma once

#include <QByteArray>
#include <QStringList>

namespace inspect
{

/// How the program talks to whoever started it.
struct Terminal {
    bool colour = false;
};

/// What a command line comes to.
struct Outcome {
    int status;
    QByteArray out; ///< for standard output
    QByteArray err; ///< for standard error
};

/// Carries out a command line, the program's name first. Touches no file but those that it names.
Outcome run(const QStringList& command_line, const Terminal& terminal);

} // namespace inspect
