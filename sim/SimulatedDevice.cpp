#include "sim/SimulatedDevice.h"

#include <algorithm>
#include <utility>

namespace sim
{

SimulatedDevice::SimulatedDevice(const Profile& profile, Options options)
    : m_options(options),
      m_memory(profile),
      m_bootloader(profile, m_memory, options.entry),
      m_outbox(m_terminal)
{
    connect(&m_terminal, &PseudoTerminal::received, this, &SimulatedDevice::hear);
}

QString SimulatedDevice::port_path() const
{
    return m_terminal.path();
}

unsigned int SimulatedDevice::host_baud() const
{
    return m_terminal.host_baud();
}

std::vector<QByteArray> SimulatedDevice::payloads() const
{
    std::vector<QByteArray> payloads;
    for (const Command& command : m_commands) {
        if (command.kind != Command::Kind::Probe) {
            payloads.push_back(command.payload);
        }
    }
    return payloads;
}

void SimulatedDevice::unplug()
{
    m_outbox.clear();
    m_terminal.unplug();
}

void SimulatedDevice::hear(const QByteArray& bytes, unsigned int baud)
{
    m_heard.append(bytes);
    std::vector<std::vector<Delivery>> replies;
    for (Exchange& exchange : m_bootloader.hear(bytes, baud)) {
        replies.push_back(reply_to(exchange));
    }
    if (m_options.echo != Options::Echo::None) {
        add_echo(bytes, replies);
    }
    for (const std::vector<Delivery>& reply : replies) {
        post(reply);
    }
}

std::vector<Delivery> SimulatedDevice::reply_to(Exchange& exchange)
{
    exchange.command.sequence = static_cast<unsigned int>(m_commands.size());
    m_commands.push_back(exchange.command);
    Q_EMIT command_received(exchange.command);
    if (m_filter) {
        return m_filter(exchange.command, exchange.answer);
    }
    if (exchange.answer.isEmpty()) {
        return {};
    }
    return {{exchange.answer}};
}

/// The echo of bytes in which several commands came together precedes the answers to all of them.
void SimulatedDevice::add_echo(const QByteArray& bytes, std::vector<std::vector<Delivery>>& replies)
{
    const auto at_once = [](const std::vector<Delivery>& reply) {
        return !reply.empty() && reply.front().delay_ms <= 0;
    };
    const auto first = std::find_if(replies.begin(), replies.end(), at_once);
    if (m_options.echo == Options::Echo::Together && first != replies.end()) {
        first->front().bytes.prepend(bytes);
    } else {
        m_outbox.post({bytes}, false);
    }
}

void SimulatedDevice::post(const std::vector<Delivery>& reply)
{
    const bool apart = reply.size() > 1 || m_options.echo == Options::Echo::Apart;
    for (const Delivery& delivery : reply) {
        m_outbox.post(delivery, apart);
    }
}

} // namespace sim
