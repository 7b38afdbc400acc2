#pragma once

#include "sim/line/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>

namespace sim
{

/// A single-shot timer with an absolute deadline. Finer than the event loop's own timers: on a fast
/// line many bytes pass in one of their milliseconds.
class Alarm : public QObject
{
    Q_OBJECT

public:
    /// Throws std::system_error if the system provides no timer.
    Alarm();

    /// The clock of the alarm: steady, in nanoseconds, from an arbitrary origin.
    static qint64 now_ns();

    /// Fires at that time, at once if it is past; replaces the time set before.
    void set(qint64 time_ns);
    /// The same without the 50 microseconds or so that the system needs to wake a sleeping process:
    /// it polls the clock for the last part of the wait.
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
