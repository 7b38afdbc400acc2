#include "sim/faults/FaultInjector.h"

#include <algorithm>

namespace sim
{

namespace
{

bool contains(const std::vector<FaultKind>& kinds, FaultKind kind)
{
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

DrawStream draws_for(const FaultSettings& settings, FaultKind kind)
{
    return {settings.seed, name_of(kind)};
}

/// What a fault makes of a command before anything of it is done.
Handling effect_of(FaultKind kind, const Command& command)
{
    const bool is_write = command.kind == Command::Kind::Write;
    const bool is_framed = command.kind != Command::Kind::Probe;
    switch (kind) {
    case FaultKind::LoseRequest:
    case FaultKind::CorruptRequest:
    case FaultKind::PowerLoss:
    case FaultKind::Unplug:
        return Handling::Ignored;
    case FaultKind::AlterRequest:
        return is_framed && command.payload.size() > 1 ? Handling::Altered : Handling::Normal;
    case FaultKind::PhantomWrite:
        return is_write ? Handling::Pretended : Handling::Normal;
    case FaultKind::HalfWrite:
        return is_write ? Handling::Half : Handling::Normal;
    default:
        return Handling::Normal;
    }
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

Handling FaultInjector::judge(const Command& command)
{
    Decision decision;
    decision.faults = m_plan.next();
    const Handling handling = m_hears ? apply_to_request(command, decision) : Handling::Ignored;
    m_decisions.push_back(decision);
    return handling;
}

/// The first fault that has an effect on the request is the one that happens.
Handling FaultInjector::apply_to_request(const Command& command, Decision& decision)
{
    for (const Fault& fault : decision.faults) {
        const Handling handling = effect_of(fault.kind, command);
        if (handling != Handling::Normal) {
            decision.applied.push_back(fault.kind);
            m_hears = fault.kind != FaultKind::PowerLoss && fault.kind != FaultKind::Unplug;
            return handling;
        }
    }
    return Handling::Normal;
}

FaultInjector::Reply FaultInjector::reply(const Command& command, const QByteArray& answer)
{
    const Decision decision = m_decisions.front();
    m_decisions.pop_front();
    Reply reply;
    // What the device refuses anyway it neither pretends to do nor halves.
    if (!command.refused || contains(decision.applied, FaultKind::AlterRequest)) {
        reply.applied = decision.applied;
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
    reply.unplug = contains(reply.applied, FaultKind::Unplug);
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
