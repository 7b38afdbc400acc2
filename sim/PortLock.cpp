#include "sim/PortLock.h"

#include <QLockFile>

#include <algorithm>
#include <cerrno>
#include <csignal>

namespace sim
{

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

namespace
{

/// A lock whose owner has died is only a file left behind: hosts pass it over.
bool is_held(const QString& lock_file)
{
    qint64 owner = 0;
    QString host;
    QString program;
    return QLockFile(lock_file).getLockInfo(&owner, &host, &program) &&
           (::kill(static_cast<pid_t>(owner), 0) == 0 || errno == EPERM);
}

} // namespace

bool has_port_lock(const QString& port_path)
{
    const QString name = port_lock_name(port_path);
    const QStringList folders = port_lock_folders();
    return std::any_of(folders.begin(), folders.end(), [&name](const QString& folder) {
        return is_held(folder + QLatin1Char('/') + name);
    });
}

} // namespace sim
