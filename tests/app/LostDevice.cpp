#include "tests/app/LostDevice.h"

#include "sim/line/Line.h"

#include <algorithm>
#include <fcntl.h>

namespace test
{

using Moment = Loss::Moment;

namespace
{

/// Of a command that is not answered before the line goes.
constexpr std::size_t repetitions = 5;

} // namespace

/// The number of a pseudo-terminal is free again once no process has it open.
LostDevice::LostDevice(const Profile& profile, sim::Entry entry, Loss loss)
    : m_loss(loss),
      m_device(profile, {entry}),
      m_name_keeper(
          ::open(m_device.port_path().toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC))
{
    EXPECT_TRUE(m_name_keeper.is_open());
    m_device.set_request_filter([this](const QByteArray& bytes) { return hear(bytes); });
    m_device.set_gate([this](const sim::Command& command) {
        return is_heard() ? std::optional(command.payload) : std::nullopt;
    });
    m_device.set_reply_filter(
        [this](const sim::Command&, const QByteArray& answer) { return reply(answer); });
    QObject::connect(&m_reading_host, &QTimer::timeout, [this] { unplug_when_read(); });
}

Commands LostDevice::commands() const
{
    Commands commands = commands_of(m_device);
    commands.erase(std::unique(commands.begin(), commands.end()), commands.end());
    return commands;
}

/// The tool writes every frame in one piece.
QByteArray LostDevice::hear(const QByteArray& bytes)
{
    ++m_repetitions;
    if (bytes != m_last_heard) {
        m_last_heard = bytes;
        m_repetitions = 0;
        ++m_number;
    }
    if (!is_at_loss() || m_loss.moment != Moment::Unheard) {
        return bytes;
    }
    m_device.unplug();
    return {};
}

bool LostDevice::is_heard() const
{
    const bool undone = m_loss.moment == Moment::Undone || m_loss.moment == Moment::Repeated;
    return !m_is_lost && !(is_at_loss() && undone);
}

LostDevice::Reply LostDevice::reply(const QByteArray& answer)
{
    const bool repeats = is_at_loss() && m_loss.moment == Moment::Repeated;
    if (m_is_lost || (repeats && m_repetitions < repetitions)) {
        return {};
    }
    m_is_lost = is_at_loss();
    return m_is_lost ? last_reply(answer) : Reply{{answer}};
}

LostDevice::Reply LostDevice::last_reply(const QByteArray& answer)
{
    const bool is_half = m_loss.moment == Moment::HalfAnswered;
    if (m_loss.of == Loss::Of::Line) {
        if (is_half) {
            m_reading_host.start(1);
        } else {
            m_device.unplug();
        }
    }
    return is_half ? Reply{{answer.left(answer.size() / 2)}} : Reply();
}

/// Bytes that the host has not read by then vanish with the line.
void LostDevice::unplug_when_read()
{
    if (!m_device.line().host_has_unread()) {
        m_reading_host.stop();
        m_device.unplug();
    }
}

} // namespace test
