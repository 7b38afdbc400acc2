#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace gang
{

/// Prints on standard output, past all buffers. Never waits for a reader who takes his time: what
/// he does not take yet is kept until the event loop finds that he does. Nobody reading any more is
/// no error.
class EventOutput : public QObject
{
    Q_OBJECT

public:
    EventOutput();
    /// Waits until the reader has taken all.
    ~EventOutput() override;

    void print(const QByteArray& text);

private:
    void write_some();

    QByteArray m_pending;
    QSocketNotifier m_notifier;
};

} // namespace gang
