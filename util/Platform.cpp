#include "util/Platform.h"

#include <QFile>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#endif

namespace Platform
{

#ifdef Q_OS_UNIX

void occupy_standard_descriptors()
{
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) == -1) {
            (void)::open("/dev/null", O_RDWR); // gets the lowest descriptor that is free: this one
        }
    }
}

void let_impossible_writes_fail()
{
    (void)std::signal(SIGPIPE, SIG_IGN);
    (void)std::signal(SIGXFSZ, SIG_IGN);
}

qint64 read_available(QFile& file, char* data, qint64 size)
{
    ssize_t count = 0;
    do {
        count = ::read(file.handle(), data, static_cast<std::size_t>(size));
    } while (count == -1 && errno == EINTR);
    return count;
}

bool has_hung_up(qintptr descriptor)
{
    pollfd entry{};
    entry.fd = static_cast<int>(descriptor);
    return ::poll(&entry, 1, 0) > 0 && (entry.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

#else

void occupy_standard_descriptors() {}

void let_impossible_writes_fail() {}

qint64 read_available(QFile& file, char* data, qint64 size)
{
    return file.read(data, file.isSequential() ? qMin<qint64>(size, 1) : size);
}

bool has_hung_up(qintptr)
{
    return true;
}

#endif

} // namespace Platform
