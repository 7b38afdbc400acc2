#include "process/ProcessSetup.h"

#include "util/Platform.h"

#include <csignal>

namespace Platform
{

void set_up_signals()
{
    let_impossible_writes_fail();
    (void)std::signal(SIGCHLD, SIG_DFL);
    sigset_t children;
    sigemptyset(&children);
    sigaddset(&children, SIGCHLD);
    ::pthread_sigmask(SIG_UNBLOCK, &children, nullptr);
}

void restore_signals()
{
    (void)std::signal(SIGPIPE, SIG_DFL);
    (void)std::signal(SIGXFSZ, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

} // namespace Platform
