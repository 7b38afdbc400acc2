#pragma once

#include "inspect/Processes.h"
#include "inspect/SerialPorts.h"
#include "inspect/SystemRoots.h"

#include <QString>

#include <optional>
#include <vector>

namespace inspect
{

/// A file that keeps other programs away from a port.
struct PortLock {
    QString path;
    std::optional<Process> owner; ///< as the file names it; nothing when it names none
    bool is_stale;                ///< its owner has ended
    bool names_program;           ///< beside the process, as the uploader's own locks do
};

/// The lock files of a port under any of its names, in all folders.
std::vector<PortLock> locks_on(const SerialPort& port, const SystemRoots& roots,
                               const Processes& processes);

/// The folder that the uploader puts its lock file into: the first that its user may read and
/// write. Empty when there is none, and then no port can be opened.
QString lock_folder(const SystemRoots& roots);

} // namespace inspect
