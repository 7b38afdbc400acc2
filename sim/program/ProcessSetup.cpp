#include "sim/program/ProcessSetup.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace sim
{

void occupy_standard_streams()
{
    int descriptor = ::open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO) {
        descriptor = ::open("/dev/null", O_RDWR);
    }
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

void set_up_signals()
{
    ::signal(SIGPIPE, SIG_IGN);
    ::signal(SIGXFSZ, SIG_IGN);
    ::signal(SIGCHLD, SIG_DFL);
    sigset_t children;
    sigemptyset(&children);
    sigaddset(&children, SIGCHLD);
    ::pthread_sigmask(SIG_UNBLOCK, &children, nullptr);
}

void restore_signals()
{
    ::signal(SIGPIPE, SIG_DFL);
    ::signal(SIGXFSZ, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

} // namespace sim
