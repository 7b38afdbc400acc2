#include "sim/rig/Rig.h"

#include "sim/device/Error.h"
#include "sim/line/Line.h"
#include "util/Util.h"

namespace sim
{

namespace
{

void stick_bits(DeviceMemory& memory, const std::vector<StuckBits>& stuck_bits)
{
    for (const StuckBits& bits : stuck_bits) {
        if (!memory.stick_bits(bits.address, bits.mask, bits.level)) {
            throw Error(QStringLiteral("stuck-bits: the device has no memory at 0x%1")
                            .arg(Util::uint_to_hex(bits.address, -1)));
        }
    }
}

qint64 size_of(const std::vector<Delivery>& deliveries)
{
    qint64 size = 0;
    for (const Delivery& delivery : deliveries) {
        size += delivery.bytes.size();
    }
    return size;
}

} // namespace

Rig::Rig(const Profile& profile, const RigOptions& options)
    : m_profile(profile),
      m_options(options),
      m_device(profile, options.device),
      m_faults(options.faults)
{
    stick_bits(m_device.memory(), options.faults.stuck_bits);
    m_device.set_request_filter(
        [this](const QByteArray& bytes) { return m_faults.damage_request(bytes); });
    m_device.set_gate([this](const Command& command) { return m_faults.let_through(command); });
    m_device.set_store(
        [this](const Command&, const QByteArray& data) { return m_faults.stored_part(data); });
    m_device.set_reply_filter([this](const Command& command, const QByteArray& answer) {
        return reply_to(command, answer);
    });
}

void Rig::start_replay(const QString& path)
{
    m_replay.emplace(read_frame_log(path));
}

void Rig::start_trace(const QString& path)
{
    m_trace.emplace(path, m_profile);
}

std::vector<Delivery> Rig::reply_to(const Command& command, const QByteArray& answer)
{
    m_tally.count(command);
    const QByteArray sound = recorded_answer(command, answer);
    const FaultInjector::Reply reply = m_faults.reply(command, sound);
    if (m_trace) {
        m_trace->add(command, {sound, m_replay.has_value() && command.kind != Command::Kind::Probe,
                               size_of(reply.deliveries), reply.applied});
    }
    if (reply.unplug) {
        m_device.unplug();
    }
    return reply.deliveries;
}

/// A log begins after the probe and has no answer to commands that never reached the recorded
/// device.
QByteArray Rig::recorded_answer(const Command& command, const QByteArray& answer)
{
    const bool is_heard = !command.ignored && m_options.device.entry != Entry::Silent;
    const bool is_recorded = m_replay && is_heard && command.kind != Command::Kind::Probe;
    return is_recorded ? m_replay->answer_to(command.payload) : answer;
}

Summary Rig::summary() const
{
    Summary summary;
    summary.commands = m_tally;
    summary.dropped_frames = m_device.dropped_frames();
    summary.bytes_from_host = m_device.bytes_from_host();
    summary.bytes_to_host = m_device.line().bytes_to_host();
    summary.lost_bytes = m_device.lost_bytes();
    summary.memory = m_device.memory().statistics();
    if (m_options.faults.are_any()) {
        summary.seed = m_options.faults.seed;
        summary.faults = m_faults.counts();
    }
    if (m_options.device.paced) {
        summary.pace = {m_device.line().lateness(), m_device.line().use()};
    }
    if (m_replay) {
        summary.replayed = {m_replay->matched(), m_replay->recorded(), m_replay->unmatched(),
                            m_replay->further_unmatched()};
    }
    return summary;
}

} // namespace sim
