#include "sim/line/PortLock.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace sim
{

namespace
{

/// The first line of a lock names the process that made it.
bool is_left_by_the_dead(const QString& lock)
{
    QFile file(lock);
    bool converted = false;
    const int process =
        file.open(QIODevice::ReadOnly) ? file.readLine().trimmed().toInt(&converted) : 0;
    return converted && process > 0 && ::kill(process, 0) != 0 && errno == ESRCH;
}

/// A program that opens the port removes the lock of a dead process, if it has permission.
bool is_in_force(const QString& lock)
{
    const bool can_be_removed = QFileInfo(lock).ownerId() == ::geteuid();
    return QFile::exists(lock) && !(can_be_removed && is_left_by_the_dead(lock));
}

} // namespace

QStringList port_lock_folders()
{
    return {QStringLiteral("/var/lock"),
            QStringLiteral("/etc/locks"),
            QStringLiteral("/var/spool/locks"),
            QStringLiteral("/var/spool/uucp"),
            QStringLiteral("/tmp"),
            QStringLiteral("/var/tmp"),
            QStringLiteral("/var/lock/lockdev"),
            QStringLiteral("/run/lock")};
}

QString port_lock_name(const QString& port_path)
{
    QString name = port_path;
    name.remove(QStringLiteral("/dev/"));
    return QStringLiteral("LCK..") + name.replace(QLatin1Char('/'), QLatin1Char('_'));
}

bool has_port_lock(const QString& port_path)
{
    const QString name = port_lock_name(port_path);
    const QStringList folders = port_lock_folders();
    return std::any_of(folders.begin(), folders.end(), [&name](const QString& folder) {
        return is_in_force(folder + QLatin1Char('/') + name);
    });
}

} // namespace sim
