#include "util/Platform.h"

#include <QByteArray>
#include <QFile>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#else
#include <cstdio>
#endif

namespace Platform
{

#ifdef Q_OS_UNIX

namespace
{

int descriptor_of(StandardStream stream)
{
    return stream == StandardStream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

} // namespace

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

WriteOutcome write_all(StandardStream stream, const QByteArray& bytes)
{
    const char* at = bytes.constData();
    const char* const end = at + bytes.size();
    while (at != end) {
        const ssize_t count =
            ::write(descriptor_of(stream), at, static_cast<std::size_t>(end - at));
        if (count < 0 && errno != EINTR) {
            return errno == EPIPE ? WriteOutcome::ReaderGone : WriteOutcome::Failed;
        }
        at += count < 0 ? 0 : count;
    }
    return WriteOutcome::Complete;
}

bool is_terminal(StandardStream stream)
{
    return ::isatty(descriptor_of(stream)) == 1;
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

WriteOutcome write_all(StandardStream stream, const QByteArray& bytes)
{
    std::FILE* const file = stream == StandardStream::Output ? stdout : stderr;
    const auto size = static_cast<std::size_t>(bytes.size());
    const bool complete = std::fwrite(bytes.constData(), 1, size, file) == size;
    return complete && std::fflush(file) == 0 ? WriteOutcome::Complete : WriteOutcome::Failed;
}

bool is_terminal(StandardStream)
{
    return false;
}

bool has_hung_up(qintptr)
{
    return true;
}

#endif

} // namespace Platform
