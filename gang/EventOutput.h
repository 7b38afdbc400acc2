#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace gang
{

/// Writes to standard output without buffering. print() never waits for a slow reader: text that
/// the reader does not accept yet is kept and written from the event loop. A closed pipe is no
/// error; its text is dropped.
class EventOutput : public QObject
{
    Q_OBJECT

public:
    EventOutput();
    /// Waits until everything is written.
    ~EventOutput() override;

    void print(const QByteArray& text);

private:
    void write_some();

    QByteArray m_pending;
    QSocketNotifier m_notifier;
};

} // namespace gang
