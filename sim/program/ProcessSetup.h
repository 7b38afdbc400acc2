#pragma once

namespace sim
{

/// Opens those of the standard streams that are closed on /dev/null. To be called first, or the
/// next file that is opened becomes the one that text is printed into.
void occupy_standard_streams();

/// Makes the process independent of what its parent did to its signals: the end of a child is
/// always noticed, and neither a pipe without a reader nor a file at its size limit ends the
/// process; writing fails instead.
void set_up_signals();

/// Gives a child process the signals that programs expect. Safe between fork and exec.
void restore_signals();

} // namespace sim
