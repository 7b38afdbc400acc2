#pragma once

#include "sim/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>

namespace sim
{

/// Turns SIGINT, SIGTERM and, unless it is ignored already, SIGHUP into an event. From its
/// construction on they no longer end the process, so make one before announcing anything that
/// somebody might stop.
class StopSignals : public QObject
{
    Q_OBJECT

public:
    /// Throws std::system_error when the system gives no descriptor for the signals.
    StopSignals();

Q_SIGNALS:
    void stop_requested();

private:
    void take();

    Descriptor m_descriptor;
    QSocketNotifier m_notifier;
};

} // namespace sim
