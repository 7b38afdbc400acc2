#pragma once

#include "sim/device/Bootloader.h"
#include "sim/faults/ByteDamage.h"
#include "sim/faults/FaultSettings.h"
#include "sim/faults/FaultyReply.h"

#include <deque>
#include <map>

namespace sim
{

/// Lets the faults that a user asked for happen to one device, and counts them. Follows a device
/// through its three filters: requests, judge, replies.
class FaultInjector
{
public:
    explicit FaultInjector(const FaultSettings& settings);

    /// What the device gets of bytes from the host.
    QByteArray damage_request(const QByteArray& bytes);
    /// How the device takes its next command.
    Handling judge(const Command& command);

    struct Reply {
        std::vector<Delivery> deliveries;
        std::vector<FaultKind> applied; ///< to this command
        bool unplug = false;            ///< the line vanishes before anything of this goes out
    };

    /// What goes out for a command; asked once for each that was judged, in the same order.
    Reply reply(const Command& command, const QByteArray& answer);

    /// How often each kind has been applied; kinds that never were are missing. Of stuck bits, how
    /// many have been asked for.
    const std::map<FaultKind, unsigned int>& counts() const { return m_counts; }

private:
    /// What was decided for a command that is judged but not answered yet.
    struct Decision {
        std::vector<Fault> faults;
        std::vector<FaultKind> applied;
    };

    Handling apply_to_request(const Command& command, Decision& decision);
    void damage(std::vector<Delivery>& deliveries, std::vector<FaultKind>& applied);

    FaultPlan m_plan;
    ByteDamage m_request_damage;
    ByteDamage m_response_damage;
    bool m_hears = true; ///< it has power and a line
    std::deque<Decision> m_decisions;
    std::map<FaultKind, unsigned int> m_counts;
};

} // namespace sim
