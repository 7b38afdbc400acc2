#pragma once

namespace inspect
{

/// The program's exit status.
enum ExitStatus {
    ExitFine = 0,     ///< checked everything, nothing is wrong
    ExitProblems = 1, ///< checked everything, and there are problems
    ExitCannot = 2,   ///< a file or the command line cannot be used
};

} // namespace inspect
