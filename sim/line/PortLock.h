#pragma once

#include <QString>
#include <QStringList>

namespace sim
{

/// Where programs put the lock files of the serial ports that they have open.
QStringList port_lock_folders();

/// The name of a port's lock file, such as LCK..pts_3 for /dev/pts/3.
QString port_lock_name(const QString& port_path);

/// Whether a program holds the port locked. The lock of one that was killed does not count, as
/// long as it is the same user's.
bool has_port_lock(const QString& port_path);

} // namespace sim
