#include "gang/PortWatch.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>

namespace gang
{

namespace
{

/// Polling interval; not every folder reports changes.
constexpr int look_ms = 300;

/// How long a new port may lack permissions, which are set shortly after it appears, before it is
/// announced anyway.
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

/// Forgets ports that are gone or have been replaced by another node of the same name, so that they
/// are announced again.
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

/// True if the port has been announced or is in use, under any of its names.
bool PortWatch::is_taken(const FileIdentity& identity) const
{
    const auto is_same = [&identity](const FileIdentity& other) {
        return other.is_same_node(identity);
    };
    return std::any_of(m_announced.begin(), m_announced.end(), is_same) ||
           std::any_of(m_in_use.begin(), m_in_use.end(), is_same);
}

void PortWatch::look()
{
    const QStringList present = files_matching(m_pattern);
    forget_absent(present);
    for (const QString& port : present) {
        const FileIdentity identity = identity_of(port);
        if (!identity.exists() || m_in_use.contains(port) || is_taken(identity) ||
            !is_ready(port)) {
            continue;
        }
        m_announced.insert(port, identity);
        m_unready.remove(port);
        m_in_use.insert(port, identity);
        Q_EMIT appeared(port);
    }
}

} // namespace gang
