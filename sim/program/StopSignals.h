#pragma once

#include "sim/line/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <csignal>

namespace sim
{

/// Turns SIGINT, SIGTERM and, unless it is ignored already, SIGHUP into an event. From its
/// construction on they no longer end the process, so make one before announcing anything that
/// somebody might stop, but after whatever may take for ever, such as reading a pipe. When it goes
/// they end the process again; those that have come before that are forgotten.
class StopSignals : public QObject
{
    Q_OBJECT

public:
    /// Throws std::system_error when the system gives no descriptor for the signals.
    StopSignals();
    ~StopSignals() override;

Q_SIGNALS:
    void stop_requested();

private:
    void take();

    sigset_t m_mask_before{};
    Descriptor m_descriptor;
    QSocketNotifier m_notifier;
};

} // namespace sim
