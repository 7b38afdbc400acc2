#pragma once

#include <QMutex>
#include <QMutexLocker>
#include <QString>
#include <QStringList>
#include <QtGlobal>

namespace test
{

/// Captures the debug channel of all threads as long as it lives. Warnings and worse are passed on.
/// Of nested captures only the innermost gets a message.
class DebugMessages
{
public:
    DebugMessages()
    {
        const QMutexLocker lock(&s_mutex);
        m_outer = s_innermost;
        s_innermost = this;
        m_previous = qInstallMessageHandler(handle);
        m_fallback = m_outer != nullptr ? m_outer->m_fallback : m_previous;
    }

    ~DebugMessages()
    {
        const QMutexLocker lock(&s_mutex);
        qInstallMessageHandler(m_previous);
        s_innermost = m_outer;
    }

    DebugMessages(const DebugMessages&) = delete;
    DebugMessages& operator=(const DebugMessages&) = delete;

    /// The messages so far, oldest first. A text that was streamed as a QString is in quotes.
    QStringList texts() const
    {
        const QMutexLocker lock(&s_mutex);
        return m_texts;
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        QMutexLocker lock(&s_mutex);
        if (s_innermost != nullptr && type == QtDebugMsg) {
            s_innermost->m_texts << text;
            return;
        }
        const QtMessageHandler fallback =
            s_innermost != nullptr ? s_innermost->m_fallback : nullptr;
        lock.unlock();
        if (fallback != nullptr) {
            fallback(type, context, text);
        }
    }

    // A message handler is a plain function, which finds the present capture here.
    static inline QMutex s_mutex;
    static inline DebugMessages* s_innermost = nullptr;

    QStringList m_texts;
    DebugMessages* m_outer = nullptr;
    QtMessageHandler m_previous = nullptr;
    QtMessageHandler m_fallback = nullptr;
};

} // namespace test
