#include "sim/device/SimulatedDevice.h"

#include "sim/device/MemoryGeometry.h"

#include <algorithm>
#include <utility>

namespace sim
{

namespace
{

constexpr qint64 ns_per_ms = 1000000;
/// However much a host asks for without waiting, the device is done with it after so long.
constexpr qint64 longest_work_ns = 24 * 3600 * 1000 * ns_per_ms;

LineOptions line_options(const Options& options)
{
    return {options.paced, options.latency_ms, options.echo == Echo::Together};
}

} // namespace

SimulatedDevice::SimulatedDevice(const Profile& profile, Options options)
    : m_profile(profile),
      m_options(options),
      m_memory(profile),
      m_bootloader(profile, m_memory, options.entry),
      m_line(line_options(options)),
      m_outbox(m_line)
{
    connect(&m_line, &Line::received, this, &SimulatedDevice::hear);
}

QString SimulatedDevice::port_path() const
{
    return m_line.path();
}

unsigned int SimulatedDevice::host_baud() const
{
    return m_line.host_baud();
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

void SimulatedDevice::clear_commands()
{
    m_commands.clear();
    m_next_sequence = 0;
}

void SimulatedDevice::unplug()
{
    m_outbox.clear();
    m_line.unplug();
}

void SimulatedDevice::hear(const QByteArray& bytes, unsigned int baud)
{
    m_bytes_from_host += bytes.size();
    if (m_options.keeps_record) {
        m_heard.append(bytes);
    }
    const QByteArray got_through = m_request_filter ? m_request_filter(bytes) : bytes;
    const qint64 now_ns = Alarm::now_ns();
    std::vector<Reply> replies;
    for (Exchange& exchange : m_bootloader.hear(got_through, baud)) {
        replies.push_back(reply_to(exchange, now_ns));
    }
    if (m_options.echo != Echo::None) {
        echo({bytes, baud, bytes.size()}, now_ns, replies);
    }
    for (const Reply& reply : replies) {
        post(reply);
    }
}

/// A device does one thing after the other; what it is asked meanwhile waits its turn.
SimulatedDevice::Reply SimulatedDevice::reply_to(Exchange& exchange, qint64 now_ns)
{
    exchange.command.sequence = m_next_sequence++;
    if (m_options.keeps_record) {
        m_commands.push_back(exchange.command);
    }
    Q_EMIT command_received(exchange.command);
    const qint64 done_ns = std::max(m_busy_until_ns, now_ns) + work_ms(exchange) * ns_per_ms;
    m_busy_until_ns = std::min(done_ns, now_ns + longest_work_ns);
    return {exchange.command.baud, now_ns, m_busy_until_ns, deliveries_for(exchange)};
}

std::vector<Delivery> SimulatedDevice::deliveries_for(const Exchange& exchange) const
{
    if (m_filter) {
        return m_filter(exchange.command, exchange.answer);
    }
    return exchange.answer.isEmpty() ? std::vector<Delivery>()
                                     : std::vector<Delivery>{{exchange.answer}};
}

int SimulatedDevice::work_ms(const Exchange& exchange) const
{
    if (exchange.answer.isEmpty()) {
        return 0;
    }
    switch (exchange.command.kind) {
    case Command::Kind::Erase:
        return m_options.erase_page_ms * static_cast<int>(exchange.command.count());
    case Command::Kind::Write:
        return m_options.write_row_ms * static_cast<int>(rows_of(m_profile, exchange.command));
    default:
        return 0;
    }
}

/// The echo of bytes in which several commands came together precedes the answers to all of them.
void SimulatedDevice::echo(const Burst& heard, qint64 now_ns, const std::vector<Reply>& replies)
{
    const bool answered_at_once = std::any_of(
        replies.begin(), replies.end(), [](const Reply& reply) { return reply.is_immediate(); });
    if (m_options.echo == Echo::Together && answered_at_once) {
        m_held_echo = heard.bytes;
    } else {
        m_outbox.post(heard, now_ns, false);
    }
}

bool SimulatedDevice::Reply::is_immediate() const
{
    return ready_ns == heard_ns && !deliveries.empty() && deliveries.front().delay_ms <= 0;
}

/// Where the line takes its time, that alone decides what comes together.
bool SimulatedDevice::holds_answers_back() const
{
    return m_options.echo == Echo::Apart && !m_options.paced && m_options.latency_ms == 0;
}

void SimulatedDevice::post(const Reply& reply)
{
    const bool apart = reply.deliveries.size() > 1 || holds_answers_back();
    bool is_first = true;
    for (const Delivery& delivery : reply.deliveries) {
        Burst burst{delivery.bytes, reply.baud};
        if (is_first && reply.is_immediate() && !m_held_echo.isEmpty()) {
            burst = {m_held_echo + delivery.bytes, reply.baud, m_held_echo.size(), true};
            m_held_echo.clear();
        }
        is_first = false;
        const qint64 delay_ns = std::max(delivery.delay_ms, 0) * ns_per_ms;
        m_outbox.post(burst, reply.ready_ns + delay_ns, apart);
    }
}

} // namespace sim
