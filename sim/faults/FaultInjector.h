#pragma once

// This folder is everything that goes wrong. Every kind of fault draws its random numbers from a
// stream of its own, which depends only on the seed, the kind and the number of the command: adding
// or removing a fault does not change when the others happen. FaultKind.h lists the kinds;
// docs/simulator.md describes how faults are written, under "Faults".

#include "sim/faults/ByteDamage.h"
#include "sim/faults/FaultSettings.h"
#include "sim/faults/FaultyReply.h"

#include <deque>
#include <map>
#include <optional>

namespace sim
{

/// Injects the faults that a user requested into one device, and counts them. Uses the four hooks
/// of a device: request filter, gate, store, reply filter.
class FaultInjector
{
public:
    explicit FaultInjector(const FaultSettings& settings);

    /// The bytes from the host as the device receives them.
    QByteArray damage_request(const QByteArray& bytes);
    /// What the device gets of its next command; see Gate.
    std::optional<QByteArray> let_through(const Command& command);
    /// What of a write gets into the cells; see Store. Asked after let_through() and
    /// before the next command.
    QByteArray stored_part(const QByteArray& data) const;

    struct Reply {
        std::vector<Delivery> deliveries;
        std::vector<FaultKind> applied; ///< to this command
        bool unplug = false;            ///< the line vanishes before anything of this goes out
    };

    /// What is sent in answer to a command; called once for each command, lost ones included, in
    /// the same order.
    Reply reply(const Command& command, const QByteArray& answer);

    /// How often each kind has been applied; kinds that never were are missing. For stuck bits,
    /// the number requested.
    const std::map<FaultKind, unsigned int>& counts() const { return m_counts; }

private:
    /// What was decided for a command that is not answered yet.
    struct Decision {
        std::vector<Fault> faults;
        std::optional<FaultKind> on_request; ///< the one that has an effect on the request
    };

    static std::optional<FaultKind> first_on_request(const Command& command,
                                                     const std::vector<Fault>& faults);
    void damage(std::vector<Delivery>& deliveries, std::vector<FaultKind>& applied);

    FaultPlan m_plan;
    ByteDamage m_request_damage;
    ByteDamage m_response_damage;
    bool m_hears = true; ///< it has power and a line
    std::deque<Decision> m_decisions;
    std::map<FaultKind, unsigned int> m_counts;
};

} // namespace sim
