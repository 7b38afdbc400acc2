#pragma once

#include <QString>
#include <QStringList>

namespace inspect
{

/// Where the system shows its devices and processes. Another tree than the running system's can be
/// looked into, such as a copy from another machine.
struct SystemRoots {
    QString sys = QStringLiteral("/sys");
    QString dev = QStringLiteral("/dev");
    QString proc = QStringLiteral("/proc");
    QString udev = QStringLiteral("/run/udev/data"); ///< the properties of devices
    /// Folders for lock files in the order in which the uploader's serial port library tries them.
    QStringList locks = {QStringLiteral("/var/lock"),
                         QStringLiteral("/etc/locks"),
                         QStringLiteral("/var/spool/locks"),
                         QStringLiteral("/var/spool/uucp"),
                         QStringLiteral("/tmp"),
                         QStringLiteral("/var/tmp"),
                         QStringLiteral("/var/lock/lockdev"),
                         QStringLiteral("/run/lock")};
};

} // namespace inspect
