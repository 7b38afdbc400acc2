#include "bench/BareLoop.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <numeric>
#include <poll.h>
#include <stdexcept>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace
{

constexpr unsigned int row_size = 256;
constexpr unsigned int echo_size = 5;
constexpr char words_in_row = 64;
constexpr char read_command = 0x01;
constexpr char write_command = 0x02;

constexpr char terminator = 0x04;
constexpr char escape = 0x05;
constexpr char sync = 0x55;

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

unsigned int sum_of(const std::string& bytes)
{
    return std::accumulate(bytes.begin(), bytes.end(), 0U, [](unsigned int sum, char byte) {
        return sum + static_cast<unsigned char>(byte);
    });
}

std::string frame_of(const std::string& payload)
{
    std::string frame{sync, sync};
    for (const char byte : payload + static_cast<char>(0U - sum_of(payload))) {
        if (byte == terminator || byte == escape || byte == sync) {
            frame += escape;
        }
        frame += byte;
    }
    return frame + terminator;
}

/// Decodes a frame as it arrives.
class Listener
{
public:
    /// False once the frame is complete.
    bool take(char byte)
    {
        if (m_escaped) {
            m_bytes += byte;
            m_escaped = false;
        } else if (byte == terminator) {
            return false;
        } else if (byte == escape) {
            m_escaped = true;
        } else if (byte != sync) {
            m_bytes += byte;
        }
        return true;
    }

    /// The payload of a complete frame.
    std::string payload() &&
    {
        if (m_bytes.empty() || sum_of(m_bytes) % 256 != 0) {
            throw std::runtime_error("the answer is damaged");
        }
        m_bytes.pop_back();
        return std::move(m_bytes);
    }

private:
    std::string m_bytes;
    bool m_escaped = false;
};

std::string command(char operation, char count, unsigned int address)
{
    return {operation, count, static_cast<char>(address), static_cast<char>(address >> 8),
            static_cast<char>(address >> 16)};
}

} // namespace

BareLoop::BareLoop(const std::string& port_path, unsigned int baud)
    : m_port(::open(port_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC))
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

std::string BareLoop::exchange(const std::string& payload)
{
    const std::string frame = frame_of(payload);
    if (::write(m_port, frame.data(), frame.size()) != static_cast<ssize_t>(frame.size())) {
        throw_error("cannot write to the port");
    }
    return receive();
}

std::string BareLoop::receive()
{
    Listener listener;
    std::array<char, 4096> buffer{};
    while (true) {
        pollfd ready{m_port, POLLIN, 0};
        if (::poll(&ready, 1, 300) <= 0) {
            throw std::runtime_error("no answer");
        }
        const ssize_t count = ::read(m_port, buffer.data(), buffer.size());
        if (count <= 0) {
            throw_error("cannot read from the port");
        }
        for (ssize_t i = 0; i < count; ++i) {
            if (!listener.take(buffer.at(static_cast<std::size_t>(i)))) {
                return std::move(listener).payload();
            }
        }
    }
}

std::string BareLoop::read_flash(unsigned int address, unsigned int size)
{
    std::string data;
    data.reserve(size);
    for (unsigned int offset = 0; offset < size; offset += row_size) {
        data.append(exchange(command(read_command, words_in_row, address + offset)), echo_size);
    }
    return data;
}

void BareLoop::write_flash(unsigned int address, const std::string& data)
{
    for (unsigned int offset = 0; offset < data.size(); offset += row_size) {
        exchange(command(write_command, 1, address + offset) + data.substr(offset, row_size));
    }
}
