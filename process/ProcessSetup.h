#pragma once

namespace Platform
{

/// Makes the process independent of the signal settings that it inherits: the end of a child is
/// always noticed, and neither a pipe without a reader nor a file at its size limit ends the
/// process; writing fails instead.
void set_up_signals();

/// Gives a child process the signals that programs expect. Safe between fork and exec.
void restore_signals();

} // namespace Platform
