#include "inspect/RehearsalStage.h"

#include "app/Console.h"
#include "device/Protocol.h"
#include "inspect/Frames.h"
#include "sim/device/MemoryGeometry.h"
#include "sim/line/Line.h"
#include "sim/rig/MemoryImage.h"

#include <QDeadlineTimer>

#include <algorithm>

namespace inspect
{

namespace
{

constexpr double timeout_seconds = protocol::timeout_ms / 1000.0;
/// From the end of an answer to the begin of the next command: what system and uploader need.
constexpr double turn_seconds = 0.0001;
constexpr int longest_arrival_ms = 10000;

sim::Options device_options(bool half_duplex)
{
    sim::Options options;
    options.entry = sim::Entry::Version;
    options.echo = half_duplex ? sim::Echo::Apart : sim::Echo::None;
    options.keeps_record = false;
    return options;
}

} // namespace

RehearsalStage::RehearsalStage(const RehearsedProfiles& profiles, const Settings& settings,
                               const RehearsalOptions& options)
    : m_device_profile(profiles.device),
      m_rate(profiles.uploader.attributes[Profile::max_baud]),
      m_half_duplex(settings.half_duplex),
      m_simulated(profiles.device, device_options(settings.half_duplex)),
      m_host(m_simulated.port_path(), process_events_handler, settings.baud, settings.half_duplex,
             0)
{
    ZarnSerialDevice::encode(protocol::reset(), m_reset_frame);
    m_host.select_profile(profiles.uploader);
    if (!options.present_content.isEmpty()) {
        m_result.left_out_bytes =
            sim::MemoryImage(options.present_content).fill(m_simulated.memory());
        m_content.emplace(m_simulated.memory(), settings);
    }
    keep_frame_log(settings.log_file);
    watch_host();
    watch_device(options.keeps_commands);
}

RehearsalStage::~RehearsalStage()
{
    serial_record.close();
}

void RehearsalStage::take(std::optional<Operation> operation,
                          const std::function<std::optional<Failure>()>& step)
{
    m_result.steps.push_back({operation, false, {}, {}});
    const sim::DeviceMemory::Statistics& statistics = m_simulated.memory().statistics();
    const quint64 heard_before = heard();
    const quint64 answered_before = answered();
    const quint64 pages_before = statistics.pages_erased;
    const std::optional<Failure> failure = step();
    end_attempt();
    let_bytes_arrive();
    RehearsedStep& taken = m_result.steps.back();
    taken.fails = failure.has_value();
    if (failure) {
        taken.messages << failure->message;
    }
    taken.traffic.bytes_to_device = heard() - heard_before;
    taken.traffic.bytes_from_device = answered() - answered_before;
    taken.traffic.pages_erased = statistics.pages_erased - pages_before;
}

Rehearsed RehearsalStage::take_result()
{
    if (m_content) {
        m_result.lost = m_content->lost();
    }
    return std::move(m_result);
}

quint64 RehearsalStage::heard() const
{
    return static_cast<quint64>(m_simulated.bytes_from_host());
}

quint64 RehearsalStage::answered() const
{
    return static_cast<quint64>(m_simulated.line().bytes_to_host());
}

void RehearsalStage::keep_frame_log(const QString& name)
{
    if (!name.isEmpty() && open_frame_log(name)) {
        QObject::connect(&m_host, &ZarnSerialDevice::sig_encoded_command, &m_host,
                         slot_command_transmitted);
        QObject::connect(&m_host, &ZarnSerialDevice::sig_encoded_response, &m_host,
                         slot_command_received);
    }
}

void RehearsalStage::watch_host()
{
    QObject::connect(&m_host, &ZarnSerialDevice::sig_encoded_command, &m_host,
                     [this](const QByteArray& frame) { begin_attempt(frame); });
    QObject::connect(&m_host, &ZarnSerialDevice::sig_encoded_response, &m_host, [this] {
        if (m_attempt) {
            m_attempt->has_answer = true;
        }
    });
    QObject::connect(&m_host, &ZarnSerialDevice::sig_error, &m_host,
                     [this](const QString& error) { m_result.steps.back().messages << error; });
}

void RehearsalStage::watch_device(bool keeps_commands)
{
    m_simulated.set_reply_filter(
        [this, keeps_commands](const sim::Command& command, const QByteArray& answer) {
            note(command, answer, keeps_commands);
            return answer.isEmpty() ? std::vector<sim::Delivery>()
                                    : std::vector<sim::Delivery>{{answer}};
        });
    m_simulated.set_store([this](const sim::Command& command, const QByteArray& data) {
        find_unerased(command, data);
        return data;
    });
}

void RehearsalStage::note(const sim::Command& command, const QByteArray& answer, bool keeps_command)
{
    ++traffic().commands[command.kind];
    if (keeps_command) {
        m_result.commands.push_back(command);
    }
    if (m_attempt) {
        m_attempt->command = command;
        m_attempt->answered = answer.size();
    }
}

void RehearsalStage::begin_attempt(const QByteArray& frame)
{
    end_attempt();
    m_sent += static_cast<quint64>(frame.size());
    m_attempt.emplace();
    m_attempt->sent = frame.size();
    m_attempt->is_awaited = frame != m_reset_frame;
}

void RehearsalStage::end_attempt()
{
    if (m_attempt && m_attempt->is_awaited) {
        m_disturbed = m_disturbed || (m_attempt->answered != 0 && !m_attempt->has_answer);
        traffic().seconds += seconds_of(*m_attempt);
    }
    m_attempt.reset();
}

/// An answer that would come too late is counted with its own time all the same.
double RehearsalStage::seconds_of(const Attempt& attempt)
{
    if (attempt.answered == 0) {
        return timeout_seconds;
    }
    const double sent = inspect::seconds_of(static_cast<quint64>(attempt.sent), m_rate);
    const double answered = inspect::seconds_of(static_cast<quint64>(attempt.answered), m_rate);
    // The echo of a half duplex line ends one wait and begins another.
    const double wait = m_half_duplex ? std::max(sent, answered) : sent + answered;
    if (wait > timeout_seconds && !m_result.late) {
        m_result.late = LateAnswer{attempt.command, wait};
    }
    return sent + answered + turn_seconds;
}

/// What is sent without an answer, such as a reset, is still on its way when its step is over.
void RehearsalStage::let_bytes_arrive()
{
    const QDeadlineTimer deadline(longest_arrival_ms);
    while (heard() < m_sent && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
    }
    m_disturbed = m_disturbed || heard() < m_sent;
}

void RehearsalStage::find_unerased(const sim::Command& command, const QByteArray& data)
{
    if (command.is_eeprom()) {
        return;
    }
    const auto address = static_cast<unsigned int>(sim::byte_address_of(m_device_profile, command));
    const QByteArray cells =
        m_simulated.memory().read(address, static_cast<unsigned int>(data.size()));
    for (int i = 0; i < data.size(); ++i) {
        if ((cells.at(i) & data.at(i)) != data.at(i)) {
            m_result.unerased.add(address + static_cast<unsigned int>(i));
        }
    }
}

} // namespace inspect
