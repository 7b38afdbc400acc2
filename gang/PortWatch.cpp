#include "gang/PortWatch.h"

#include <QFileInfo>

#include <iterator>

namespace gang
{

namespace
{

/// Not every folder reports what comes and goes in it.
constexpr int look_ms = 300;

/// A new port belongs to root until its permissions are set.
constexpr int longest_unready_ms = 2000;

} // namespace

PortWatch::PortWatch(const QString& pattern) : m_pattern(pattern)
{
    m_watcher.addPath(QFileInfo(pattern).path());
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &PortWatch::look);
    connect(&m_timer, &QTimer::timeout, this, &PortWatch::look);
}

void PortWatch::start()
{
    m_timer.start(look_ms);
    look();
}

void PortWatch::release(const QString& port)
{
    m_in_use.remove(port);
}

/// Ports that have gone, or come back as another node of the same name, are new next time.
void PortWatch::forget_absent(const QStringList& present)
{
    for (auto port = m_announced.begin(); port != m_announced.end();) {
        const bool is_there =
            present.contains(port.key()) && identity_of(port.key()).is_same_node(port.value());
        port = is_there ? std::next(port) : m_announced.erase(port);
    }
    for (const QString& port : m_unready.keys()) {
        if (!present.contains(port)) {
            m_unready.remove(port);
        }
    }
}

bool PortWatch::is_ready(const QString& port)
{
    const QFileInfo info(port);
    if (info.isReadable() && info.isWritable()) {
        return true;
    }
    QElapsedTimer& since = m_unready[port];
    if (!since.isValid()) {
        since.start();
    }
    return since.hasExpired(longest_unready_ms);
}

void PortWatch::look()
{
    const QStringList present = files_matching(m_pattern);
    forget_absent(present);
    for (const QString& port : present) {
        if (m_announced.contains(port) || m_in_use.contains(port) || !is_ready(port)) {
            continue;
        }
        m_announced.insert(port, identity_of(port));
        m_unready.remove(port);
        m_in_use.insert(port);
        Q_EMIT appeared(port);
    }
}

} // namespace gang
