#include "sim/device/SimulatedDevice.h"

#include "sim/device/Bootloader.h"
#include "sim/device/MemoryGeometry.h"
#include "sim/line/Line.h"
#include "sim/line/Outbox.h"

#include <algorithm>
#include <utility>

namespace sim
{

namespace
{

constexpr qint64 ns_per_ms = 1000000;
/// The longest time for which commands that a host sends without waiting keep the device busy.
constexpr qint64 longest_work_ns = 24 * 3600 * 1000 * ns_per_ms;

LineOptions line_options(const Options& options)
{
    return {options.paced, options.latency_ms, options.echo == Echo::Together};
}

} // namespace

/// The device's parts, from the line to the cells, and what is due.
class SimulatedDevice::Works
{
public:
    Works(SimulatedDevice& device, const Profile& profile, Options options);

    void clear_commands();
    void unplug();

    DeviceMemory memory;
    Bootloader bootloader;
    Line line;
    Outbox outbox;
    ReplyFilter reply_filter;
    RequestFilter request_filter;
    std::vector<Command> commands;
    QByteArray heard;
    qint64 bytes_from_host = 0;

private:
    /// What goes out for one command.
    struct Reply {
        unsigned int baud = 0;
        qint64 heard_ns = 0; ///< when the device had heard the command, by the clock of Alarm
        qint64 ready_ns = 0; ///< when it is done with it
        std::vector<Delivery> deliveries;

        bool is_immediate() const;
    };

    void hear(const QByteArray& bytes, unsigned int baud);
    Reply reply_to(Exchange& exchange, qint64 now_ns);
    std::vector<Delivery> deliveries_for(const Exchange& exchange) const;
    int work_ms(const Exchange& exchange) const;
    bool holds_answers_back() const;
    void echo(const Burst& burst, qint64 now_ns, const std::vector<Reply>& replies);
    void post(const Reply& reply);

    SimulatedDevice& m_device;
    const Profile& m_profile;
    Options m_options;
    unsigned int m_next_sequence = 0;
    QByteArray m_held_echo;     ///< goes out in front of the next answer
    qint64 m_busy_until_ns = 0; ///< with what it was asked before
};

SimulatedDevice::Works::Works(SimulatedDevice& device, const Profile& profile, Options options)
    : memory(profile),
      bootloader(profile, memory, options.entry),
      line(line_options(options)),
      outbox(line),
      m_device(device),
      m_profile(profile),
      m_options(options)
{
    connect(&line, &Line::received, &device,
            [this](const QByteArray& bytes, unsigned int baud) { hear(bytes, baud); });
}

void SimulatedDevice::Works::clear_commands()
{
    commands.clear();
    m_next_sequence = 0;
}

void SimulatedDevice::Works::unplug()
{
    outbox.clear();
    line.unplug();
}

void SimulatedDevice::Works::hear(const QByteArray& bytes, unsigned int baud)
{
    bytes_from_host += bytes.size();
    if (m_options.keeps_record) {
        heard.append(bytes);
    }
    const QByteArray got_through = request_filter ? request_filter(bytes) : bytes;
    const qint64 now_ns = Alarm::now_ns();
    std::vector<Reply> replies;
    for (Exchange& exchange : bootloader.hear(got_through, baud)) {
        replies.push_back(reply_to(exchange, now_ns));
    }
    if (m_options.echo != Echo::None) {
        echo({bytes, baud, bytes.size()}, now_ns, replies);
    }
    for (const Reply& reply : replies) {
        post(reply);
    }
}

/// A device carries out one command after the other; those that arrive meanwhile wait.
SimulatedDevice::Works::Reply SimulatedDevice::Works::reply_to(Exchange& exchange, qint64 now_ns)
{
    exchange.command.sequence = m_next_sequence++;
    if (m_options.keeps_record) {
        commands.push_back(exchange.command);
    }
    Q_EMIT m_device.command_received(exchange.command);
    const qint64 done_ns = std::max(m_busy_until_ns, now_ns) + work_ms(exchange) * ns_per_ms;
    m_busy_until_ns = std::min(done_ns, now_ns + longest_work_ns);
    return {exchange.command.baud, now_ns, m_busy_until_ns, deliveries_for(exchange)};
}

std::vector<Delivery> SimulatedDevice::Works::deliveries_for(const Exchange& exchange) const
{
    if (reply_filter) {
        return reply_filter(exchange.command, exchange.answer);
    }
    return exchange.answer.isEmpty() ? std::vector<Delivery>()
                                     : std::vector<Delivery>{{exchange.answer}};
}

int SimulatedDevice::Works::work_ms(const Exchange& exchange) const
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
void SimulatedDevice::Works::echo(const Burst& burst, qint64 now_ns,
                                  const std::vector<Reply>& replies)
{
    const bool answered_at_once = std::any_of(
        replies.begin(), replies.end(), [](const Reply& reply) { return reply.is_immediate(); });
    if (m_options.echo == Echo::Together && answered_at_once) {
        m_held_echo = burst.bytes;
    } else {
        outbox.post(burst, now_ns, false);
    }
}

bool SimulatedDevice::Works::Reply::is_immediate() const
{
    return ready_ns == heard_ns && !deliveries.empty() && deliveries.front().delay_ms <= 0;
}

/// On a paced line, timing alone decides which bytes arrive together.
bool SimulatedDevice::Works::holds_answers_back() const
{
    return m_options.echo == Echo::Apart && !m_options.paced && m_options.latency_ms == 0;
}

void SimulatedDevice::Works::post(const Reply& reply)
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
        outbox.post(burst, reply.ready_ns + delay_ns, apart);
    }
}

SimulatedDevice::SimulatedDevice(const Profile& profile, Options options)
    : m_works(std::make_unique<Works>(*this, profile, options))
{
}

SimulatedDevice::~SimulatedDevice() = default;

QString SimulatedDevice::port_path() const
{
    return m_works->line.path();
}

unsigned int SimulatedDevice::host_baud() const
{
    return m_works->line.host_baud();
}

DeviceMemory& SimulatedDevice::memory()
{
    return m_works->memory;
}

const DeviceMemory& SimulatedDevice::memory() const
{
    return m_works->memory;
}

const std::vector<Command>& SimulatedDevice::commands() const
{
    return m_works->commands;
}

std::vector<QByteArray> SimulatedDevice::payloads() const
{
    std::vector<QByteArray> payloads;
    for (const Command& command : commands()) {
        if (command.kind != Command::Kind::Probe) {
            payloads.push_back(command.payload);
        }
    }
    return payloads;
}

void SimulatedDevice::clear_commands()
{
    m_works->clear_commands();
}

QByteArray SimulatedDevice::heard() const
{
    return m_works->heard;
}

qint64 SimulatedDevice::bytes_from_host() const
{
    return m_works->bytes_from_host;
}

qint64 SimulatedDevice::lost_bytes() const
{
    return m_works->outbox.lost_bytes();
}

unsigned int SimulatedDevice::dropped_frames() const
{
    return m_works->bootloader.dropped_frames();
}

const Line& SimulatedDevice::line() const
{
    return m_works->line;
}

void SimulatedDevice::set_reply_filter(ReplyFilter filter)
{
    m_works->reply_filter = std::move(filter);
}

void SimulatedDevice::set_request_filter(RequestFilter filter)
{
    m_works->request_filter = std::move(filter);
}

void SimulatedDevice::set_gate(Gate gate)
{
    m_works->bootloader.set_gate(std::move(gate));
}

void SimulatedDevice::set_store(Store store)
{
    m_works->bootloader.set_store(std::move(store));
}

void SimulatedDevice::unplug()
{
    m_works->unplug();
}

} // namespace sim
