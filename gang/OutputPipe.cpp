#include "gang/OutputPipe.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace gang
{

OutputPipe::OutputPipe()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
        m_reader = ends[0];
        m_writer = ends[1];
        ::fcntl(m_reader, F_SETFL, O_NONBLOCK);
    }
}

OutputPipe::~OutputPipe()
{
    close_writer();
    if (is_open()) {
        ::close(m_reader);
    }
}

QString OutputPipe::writer() const
{
    return QStringLiteral("/proc/self/fd/%1").arg(m_writer);
}

void OutputPipe::close_writer()
{
    if (m_writer >= 0) {
        ::close(m_writer);
        m_writer = -1;
    }
}

QByteArray OutputPipe::take()
{
    QByteArray bytes;
    std::array<char, 4096> some{};
    for (;;) {
        const ssize_t count = ::read(m_reader, some.data(), some.size());
        if (count > 0) {
            bytes.append(some.data(), static_cast<int>(count));
        } else if (count == 0 || errno != EINTR) {
            return bytes;
        }
    }
}

} // namespace gang
