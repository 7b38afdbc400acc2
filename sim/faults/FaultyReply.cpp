#include "sim/faults/FaultyReply.h"

#include "sim/device/FrameCodec.h"
#include "sim/faults/ByteDamage.h"

#include <random>

namespace sim
{

namespace
{

constexpr std::uint64_t longest_noise = 8;

/// Applies faults from the device outwards: to its answer, to the bytes on the line, to their
/// timing.
class ReplyMaker
{
public:
    ReplyMaker(const Command& command, const QByteArray& answer)
        : m_command(command),
          m_answer(answer)
    {
    }

    void apply(const Fault& fault)
    {
        if (change(fault)) {
            m_applied.push_back(fault.kind);
        }
    }

    FaultyReply reply() const
    {
        FaultyReply reply{{}, m_applied};
        const QByteArray first = m_noise + m_answer;
        if (!first.isEmpty()) {
            reply.deliveries.push_back({first, m_delay_ms});
        }
        if (m_twice) {
            reply.deliveries.push_back({m_answer, m_delay_ms});
        }
        return reply;
    }

private:
    bool change(const Fault& fault)
    {
        switch (fault.kind) {
        case FaultKind::WrongAck:
            return acknowledge_wrongly();
        case FaultKind::LoseResponse:
            return replace_answer({});
        case FaultKind::AlterResponse:
            return alter();
        case FaultKind::CorruptResponse:
            return replace_answer(with_bit_turned(m_answer, fault.detail));
        case FaultKind::TruncateResponse:
            return cut(fault.detail);
        case FaultKind::DelayResponse:
            m_delay_ms = fault.delay_ms;
            return !m_answer.isEmpty();
        case FaultKind::DuplicateResponse:
            m_twice = !m_answer.isEmpty();
            return m_twice;
        case FaultKind::Noise:
            m_noise = noise(fault.detail);
            return true;
        default:
            return false;
        }
    }

    bool acknowledge_wrongly()
    {
        const bool is_acknowledged =
            m_command.kind == Command::Kind::Write || m_command.kind == Command::Kind::Erase;
        if (!is_acknowledged) {
            return false;
        }
        const char wrong = static_cast<char>(~m_command.payload.at(0));
        return replace_answer(make_frame(QByteArray(1, wrong)));
    }

    /// The answer to a probe is not a frame and has no checksum to match.
    bool alter()
    {
        const std::vector<QByteArray> payloads = FrameReceiver().receive(m_answer);
        const bool has_two_bytes = !payloads.empty() && payloads.front().size() > 1;
        return has_two_bytes && replace_answer(make_frame(with_same_sum(payloads.front())));
    }

    bool cut(std::uint64_t detail)
    {
        if (m_answer.size() < 2) {
            return false;
        }
        const auto longest = static_cast<std::uint64_t>(m_answer.size() - 1);
        return replace_answer(m_answer.left(static_cast<int>(1 + detail % longest)));
    }

    bool replace_answer(const QByteArray& answer)
    {
        if (m_answer.isEmpty()) {
            return false;
        }
        m_answer = answer;
        return true;
    }

    static QByteArray noise(std::uint64_t detail)
    {
        std::mt19937_64 draws(detail);
        QByteArray bytes(static_cast<int>(1 + detail % longest_noise), '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(draws() >> 56U);
        }
        return bytes;
    }

    const Command& m_command;
    QByteArray m_answer;
    QByteArray m_noise;
    int m_delay_ms = 0;
    bool m_twice = false;
    std::vector<FaultKind> m_applied;
};

} // namespace

FaultyReply apply_to_reply(const Command& command, const QByteArray& answer,
                           const std::vector<Fault>& faults)
{
    ReplyMaker maker(command, answer);
    for (const Fault& fault : faults) {
        maker.apply(fault);
    }
    return maker.reply();
}

} // namespace sim
