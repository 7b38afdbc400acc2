#pragma once

#include "gang/FileSystem.h"

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QTimer>

namespace gang
{

/// Watches for ports that match a pattern. Each port is announced once, under one of its names, and
/// again after it has been unplugged and plugged in again.
class PortWatch : public QObject
{
    Q_OBJECT

public:
    explicit PortWatch(const QString& pattern);

    /// Starts watching. Announces ports that already exist first.
    void start();
    /// Marks a port as no longer in use. Once it has been unplugged, it may be announced again.
    void release(const QString& port);

Q_SIGNALS:
    /// The port counts as in use until release().
    void appeared(const QString& port);

private:
    void look();
    void forget_absent(const QStringList& present);
    bool is_ready(const QString& port);
    bool is_taken(const FileIdentity& identity) const;

    QString m_pattern;
    QFileSystemWatcher m_watcher;
    QTimer m_timer;
    QHash<QString, FileIdentity> m_announced;
    QHash<QString, FileIdentity> m_in_use;
    QHash<QString, QElapsedTimer> m_unready; ///< ports without permissions, and since when
};

} // namespace gang
