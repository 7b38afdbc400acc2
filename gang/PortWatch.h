#pragma once

#include "gang/FileSystem.h"

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QTimer>

namespace gang
{

/// Waits for ports that match a pattern. Each port is announced once, by one of its names, and
/// again when it has gone and come back.
class PortWatch : public QObject
{
    Q_OBJECT

public:
    explicit PortWatch(const QString& pattern);

    /// Begins with the ports that are there already.
    void start();
    /// An announced port is no longer in use, and may be announced again once it has been away.
    void release(const QString& port);

Q_SIGNALS:
    /// The port is in use from now on.
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
    QHash<QString, QElapsedTimer> m_unready; ///< since when ports are there that cannot be opened
};

} // namespace gang
