#include "process/SignalEvents.h"

#include <cerrno>
#include <csignal>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace Platform
{

namespace
{

/// True if the signal is ignored, as under nohup.
bool is_ignored(int signal)
{
    struct sigaction action {
    };

    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

int open_signals(sigset_t& mask_before)
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGWINCH}) {
        sigaddset(&signals, signal);
    }
    if (!is_ignored(SIGHUP)) {
        sigaddset(&signals, SIGHUP);
    }
    ::pthread_sigmask(SIG_BLOCK, &signals, &mask_before);
    const int descriptor = ::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    }
    return descriptor;
}

} // namespace

SignalEvents::SignalEvents()
    : m_descriptor(open_signals(m_mask_before)),
      m_notifier(m_descriptor, QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &SignalEvents::take);
}

SignalEvents::~SignalEvents()
{
    m_notifier.setEnabled(false);
    signalfd_siginfo signal{};
    while (::read(m_descriptor, &signal, sizeof signal) == sizeof signal) {
    }
    ::close(m_descriptor);
    ::pthread_sigmask(SIG_SETMASK, &m_mask_before, nullptr);
}

void SignalEvents::take()
{
    signalfd_siginfo signal{};
    if (::read(m_descriptor, &signal, sizeof signal) != sizeof signal) {
        return;
    }
    if (signal.ssi_signo == SIGWINCH) {
        Q_EMIT terminal_resized();
    } else {
        Q_EMIT stop_requested();
    }
}

} // namespace Platform
