#include "bench/BareLoop.h"

#include "device/FrameCodec.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace
{

constexpr unsigned int row_size = 256;
constexpr unsigned char words_in_row = 64;
constexpr char read_command = 0x01;
constexpr char write_command = 0x02;

speed_t speed_of(unsigned int baud)
{
    switch (baud) {
    case 57600:
        return B57600;
    case 115200:
        return B115200;
    case 460800:
        return B460800;
    default:
        throw std::invalid_argument("no such baud rate here");
    }
}

[[noreturn]] void throw_error(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

QByteArray command(char operation, unsigned char count, unsigned int address)
{
    QByteArray payload;
    payload.append(operation);
    payload.append(static_cast<char>(count));
    payload.append(static_cast<char>(address));
    payload.append(static_cast<char>(address >> 8));
    payload.append(static_cast<char>(address >> 16));
    return payload;
}

} // namespace

BareLoop::BareLoop(const QString& port_path, unsigned int baud)
    : m_port(::open(port_path.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    if (m_port < 0) {
        throw_error("cannot open the port");
    }
    termios settings{};
    ::cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    ::cfsetspeed(&settings, speed_of(baud));
    if (::tcsetattr(m_port, TCSANOW, &settings) != 0) {
        ::close(m_port);
        throw_error("cannot set the port up");
    }
}

BareLoop::~BareLoop()
{
    ::close(m_port);
}

QByteArray BareLoop::exchange(const QByteArray& payload)
{
    const QByteArray frame = frame::encode(payload);
    if (::write(m_port, frame.constData(), static_cast<std::size_t>(frame.size())) !=
        frame.size()) {
        throw_error("cannot write to the port");
    }
    QByteArray answer;
    if (const auto fault = frame::decode(receive(), answer)) {
        throw std::runtime_error(fault->toStdString());
    }
    if (answer.startsWith(payload)) {
        answer.remove(0, payload.size());
    }
    return answer;
}

const QByteArray& BareLoop::receive()
{
    m_heard.resize(0);
    std::array<char, 4096> buffer{};
    while (!frame::is_terminated(m_heard)) {
        pollfd ready{m_port, POLLIN, 0};
        if (::poll(&ready, 1, 300) <= 0) {
            throw std::runtime_error("no answer");
        }
        const ssize_t count = ::read(m_port, buffer.data(), buffer.size());
        if (count <= 0) {
            throw_error("cannot read from the port");
        }
        m_heard.append(buffer.data(), static_cast<int>(count));
    }
    return m_heard;
}

QByteArray BareLoop::read_flash(unsigned int address, unsigned int size)
{
    QByteArray data;
    data.reserve(static_cast<int>(size));
    for (unsigned int offset = 0; offset < size; offset += row_size) {
        data += exchange(command(read_command, words_in_row, address + offset));
    }
    return data;
}

void BareLoop::write_flash(unsigned int address, const QByteArray& data)
{
    for (int offset = 0; offset < data.size(); offset += static_cast<int>(row_size)) {
        exchange(command(write_command, 1, address + static_cast<unsigned int>(offset)) +
                 data.mid(offset, row_size));
    }
}
