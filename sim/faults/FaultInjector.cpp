#include "sim/faults/FaultInjector.h"

#include <algorithm>

namespace sim
{

namespace
{

DrawStream draws_for(const FaultSettings& settings, FaultKind kind)
{
    return {settings.seed, name_of(kind)};
}

bool is_on_request(FaultKind kind, const Command& command)
{
    switch (kind) {
    case FaultKind::PowerLoss:
    case FaultKind::Unplug:
    case FaultKind::LoseRequest:
    case FaultKind::CorruptRequest:
        return true;
    case FaultKind::AlterRequest:
        return command.kind != Command::Kind::Probe && command.payload.size() > 1;
    case FaultKind::PhantomWrite:
    case FaultKind::HalfWrite:
        return command.kind == Command::Kind::Write;
    default:
        return false;
    }
}

/// The payload as the device receives it.
std::optional<QByteArray> payload_after(std::optional<FaultKind> fault, const QByteArray& payload)
{
    if (fault == FaultKind::AlterRequest) {
        return with_same_sum(payload);
    }
    const bool gets_through =
        !fault || fault == FaultKind::PhantomWrite || fault == FaultKind::HalfWrite;
    return gets_through ? std::optional(payload) : std::nullopt;
}

} // namespace

FaultInjector::FaultInjector(const FaultSettings& settings)
    : m_plan(settings.rules, settings.seed),
      m_request_damage(settings.request_bytes, draws_for(settings, FaultKind::RequestBytes)),
      m_response_damage(settings.response_bytes, draws_for(settings, FaultKind::ResponseBytes))
{
    if (!settings.stuck_bits.empty()) {
        m_counts[FaultKind::StuckBits] = static_cast<unsigned int>(settings.stuck_bits.size());
    }
}

QByteArray FaultInjector::damage_request(const QByteArray& bytes)
{
    QByteArray result = m_request_damage.apply(bytes);
    if (m_request_damage.count() != 0) {
        m_counts[FaultKind::RequestBytes] = m_request_damage.count();
    }
    return result;
}

std::optional<QByteArray> FaultInjector::let_through(const Command& command)
{
    Decision decision;
    decision.faults = m_plan.next();
    if (!m_hears) {
        m_decisions.push_back(decision);
        return std::nullopt;
    }
    decision.on_request = first_on_request(command, decision.faults);
    m_hears =
        decision.on_request != FaultKind::PowerLoss && decision.on_request != FaultKind::Unplug;
    m_decisions.push_back(decision);
    return payload_after(decision.on_request, command.payload);
}

std::optional<FaultKind> FaultInjector::first_on_request(const Command& command,
                                                         const std::vector<Fault>& faults)
{
    const auto found = std::find_if(faults.begin(), faults.end(), [&command](const Fault& fault) {
        return is_on_request(fault.kind, command);
    });
    return found == faults.end() ? std::nullopt : std::optional(found->kind);
}

QByteArray FaultInjector::stored_part(const QByteArray& data) const
{
    const std::optional<FaultKind> fault = m_decisions.back().on_request;
    if (fault == FaultKind::PhantomWrite) {
        return {};
    }
    return fault == FaultKind::HalfWrite ? data.left(data.size() / 2) : data;
}

FaultInjector::Reply FaultInjector::reply(const Command& command, const QByteArray& answer)
{
    const Decision decision = m_decisions.front();
    m_decisions.pop_front();
    Reply reply;
    // A command that the device refuses anyway is neither faked nor halved.
    const bool happened = !command.refused || decision.on_request == FaultKind::AlterRequest;
    if (decision.on_request && happened) {
        reply.applied.push_back(*decision.on_request);
    }
    if (!command.ignored) {
        FaultyReply faulty = apply_to_reply(command, answer, decision.faults);
        reply.deliveries = faulty.deliveries;
        reply.applied.insert(reply.applied.end(), faulty.applied.begin(), faulty.applied.end());
        damage(reply.deliveries, reply.applied);
    }
    for (const FaultKind kind : reply.applied) {
        if (!hits_bytes(kind)) {
            ++m_counts[kind];
        }
    }
    reply.unplug = decision.on_request == FaultKind::Unplug;
    return reply;
}

void FaultInjector::damage(std::vector<Delivery>& deliveries, std::vector<FaultKind>& applied)
{
    const unsigned int before = m_response_damage.count();
    for (Delivery& delivery : deliveries) {
        delivery.bytes = m_response_damage.apply(delivery.bytes);
    }
    if (m_response_damage.count() != before) {
        m_counts[FaultKind::ResponseBytes] = m_response_damage.count();
        applied.push_back(FaultKind::ResponseBytes);
    }
}

} // namespace sim
