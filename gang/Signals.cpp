#include "gang/Signals.h"

#include <cerrno>
#include <csignal>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace gang
{

namespace
{

/// As nohup leaves it.
bool is_ignored(int signal)
{
    struct sigaction action {
    };

    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

int open_signals()
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGWINCH}) {
        sigaddset(&signals, signal);
    }
    if (!is_ignored(SIGHUP)) {
        sigaddset(&signals, SIGHUP);
    }
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    const int descriptor = ::signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    }
    return descriptor;
}

} // namespace

Signals::Signals()
    : m_descriptor(open_signals()),
      m_notifier(std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read))
{
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &Signals::take);
}

Signals::~Signals()
{
    m_notifier.reset();
    ::close(m_descriptor);
}

void Signals::take()
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

} // namespace gang
