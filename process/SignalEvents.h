#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <csignal>

namespace Platform
{

/// Turns SIGINT, SIGTERM, SIGHUP (unless it is ignored) and SIGWINCH into Qt signals. As long as
/// the object exists, none of them ends the process: create it before starting work that a user may
/// want to stop, but after anything that may block forever, such as reading a pipe. The destructor
/// discards pending signals and restores the previous signal mask.
class SignalEvents : public QObject
{
    Q_OBJECT

public:
    /// Throws std::system_error if the system provides no descriptor for signals.
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
