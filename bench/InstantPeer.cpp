#include "bench/InstantPeer.h"

#include "device/FrameCodec.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <system_error>
#include <termios.h>
#include <unistd.h>

InstantPeer::InstantPeer(Answers answers) : m_answers(std::move(answers))
{
    termios raw{};
    ::cfmakeraw(&raw);
    if (::openpty(&m_master, &m_slave, nullptr, &raw, nullptr) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot make a pseudo-terminal");
    }
    m_thread = std::thread([this] { serve(); });
}

InstantPeer::~InstantPeer()
{
    m_stop = true;
    m_thread.join();
    ::close(m_slave);
    ::close(m_master);
}

QString InstantPeer::port_path() const
{
    std::array<char, 64> name{};
    ::ttyname_r(m_slave, name.data(), name.size());
    return QString::fromLocal8Bit(name.data());
}

void InstantPeer::serve()
{
    QByteArray heard;
    std::array<char, 4096> buffer{};
    while (!m_stop) {
        pollfd ready{m_master, POLLIN, 0};
        if (::poll(&ready, 1, 20) <= 0) {
            continue;
        }
        const ssize_t count = ::read(m_master, buffer.data(), buffer.size());
        heard.append(buffer.data(), static_cast<int>(qMax<ssize_t>(count, 0)));
        if (frame::is_terminated(heard)) {
            answer(heard);
            heard.clear();
        }
    }
}

void InstantPeer::answer(const QByteArray& frame) const
{
    const QByteArray answer = m_answers(frame);
    if (::write(m_master, answer.constData(), static_cast<std::size_t>(answer.size())) !=
        answer.size()) {
        throw std::runtime_error("the pseudo-terminal did not take an answer whole");
    }
}
