#include "gang/EventOutput.h"

#include "gang/Terminal.h"
#include "util/Platform.h"

#include <climits>
#include <unistd.h>

namespace gang
{

EventOutput::EventOutput() : m_notifier(STDOUT_FILENO, QSocketNotifier::Write)
{
    m_notifier.setEnabled(false);
    connect(&m_notifier, &QSocketNotifier::activated, this, &EventOutput::write_some);
}

EventOutput::~EventOutput()
{
    Platform::write_all(Platform::StandardStream::Output, m_pending);
}

void EventOutput::print(const QByteArray& text)
{
    m_pending += text;
    write_some();
}

/// A pipe that is ready for writing accepts this much without blocking.
void EventOutput::write_some()
{
    while (!m_pending.isEmpty() && takes_output()) {
        const QByteArray some = m_pending.left(PIPE_BUF);
        const bool written = Platform::write_all(Platform::StandardStream::Output, some) ==
                             Platform::WriteOutcome::Complete;
        m_pending = written ? m_pending.mid(some.size()) : QByteArray();
    }
    m_notifier.setEnabled(!m_pending.isEmpty());
}

} // namespace gang
