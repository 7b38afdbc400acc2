#pragma once

#include "sim/line/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>

namespace sim
{

/// Goes off once at a point in time. Finer than the event loop's own timers, whose milliseconds are
/// many bytes long on a fast line, and set to the point itself rather than to a time from now.
class Alarm : public QObject
{
    Q_OBJECT

public:
    /// Throws std::system_error when the system gives no timer.
    Alarm();

    /// The clock of the alarm: steady, in nanoseconds, from no particular beginning.
    static qint64 now_ns();

    /// Goes off at that time, at once if it is past, instead of at the time set before.
    void set(qint64 time_ns);
    /// The same, not some 50 microseconds later as the system wakes a sleeper: the end of the time
    /// is waited for awake.
    void set_exactly(qint64 time_ns);
    void stop();

Q_SIGNALS:
    void went_off();

private:
    void arm(qint64 time_ns);
    void take();

    qint64 m_awake_until_ns = 0;
    Descriptor m_descriptor;
    QSocketNotifier m_notifier;
};

} // namespace sim
