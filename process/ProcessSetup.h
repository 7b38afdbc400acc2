#pragma once

namespace Platform
{

/// Overrides inherited signal settings: the exit of a child process is always noticed, and writing
/// to a pipe without a reader or to a file at its size limit fails instead of ending the process.
void set_up_signals();

/// Restores the signal settings that programs expect in a child process. Safe to call between fork
/// and exec.
void restore_signals();

} // namespace Platform
