#include "sim/PortLock.h"

#include <QFile>

#include <algorithm>

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

bool has_port_lock(const QString& port_path)
{
    const QString name = port_lock_name(port_path);
    const QStringList folders = port_lock_folders();
    return std::any_of(folders.begin(), folders.end(), [&name](const QString& folder) {
        return QFile::exists(folder + QLatin1Char('/') + name);
    });
}

} // namespace sim
