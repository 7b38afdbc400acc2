#pragma once

namespace inspect
{

/// What the program's exit status says.
enum ExitStatus {
    ExitFine = 0,     ///< looked at everything, nothing is wrong
    ExitProblems = 1, ///< looked at everything, and there are problems
    ExitCannot = 2,   ///< a file or the command line kept it from doing what was asked
};

} // namespace inspect
