#include "sim/line/CloseWatch.h"

#include <QFile>

#include <array>
#include <sys/inotify.h>
#include <unistd.h>

namespace sim
{

CloseWatch::CloseWatch(const QString& path)
    : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    if (!m_descriptor.is_open()) {
        return;
    }
    ::inotify_add_watch(m_descriptor.get(), QFile::encodeName(path).constData(), IN_CLOSE);
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &CloseWatch::take);
}

/// What the events say is known: there is one file, and it was closed at least once.
void CloseWatch::take()
{
    std::array<char, 4096> events{};
    while (::read(m_descriptor.get(), events.data(), events.size()) > 0) {
    }
    Q_EMIT closed();
}

} // namespace sim
