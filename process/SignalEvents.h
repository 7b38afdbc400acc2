#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <csignal>

namespace Platform
{

/// Turns signals into events: SIGINT, SIGTERM and, unless it is ignored already, SIGHUP; and the
/// one that reports another size of the terminal. From its construction on none of them ends the
/// process, so make one before announcing anything that somebody might stop, but after whatever may
/// take for ever, such as reading a pipe. When it goes they end the process again; those that have
/// come before that are forgotten.
class SignalEvents : public QObject
{
    Q_OBJECT

public:
    /// Throws std::system_error when the system gives no descriptor for the signals.
    SignalEvents();
    ~SignalEvents() override;

Q_SIGNALS:
    void stop_requested();
    void terminal_resized();

private:
    void take();

    sigset_t m_mask_before{};
    int m_descriptor;
    QSocketNotifier m_notifier;
};

} // namespace Platform
