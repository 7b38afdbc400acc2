#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

namespace gang
{

/// Turns signals into events: those that ask the process to end (SIGINT, SIGTERM and, unless it is
/// ignored already, SIGHUP) and that of a terminal which has another size. From its construction on
/// none of them ends the process.
class Signals : public QObject
{
    Q_OBJECT

public:
    /// Throws std::system_error when the system gives no descriptor for the signals.
    Signals();
    ~Signals() override;

Q_SIGNALS:
    void stop_requested();
    void terminal_resized();

private:
    void take();

    int m_descriptor;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace gang
