#pragma once

#include "sim/device/Command.h"
#include "sim/device/Filters.h"
#include "sim/faults/FaultPlan.h"

namespace sim
{

/// What goes out for a command after the faults had their way, and which of them had one.
struct FaultyReply {
    std::vector<Delivery> deliveries;
    std::vector<FaultKind> applied;
};

/// Does to an answer, empty where the device stays silent, what `faults` do to answers. Faults of
/// other kinds, and those that this answer gives no hold, do nothing and do not count as applied.
FaultyReply apply_to_reply(const Command& command, const QByteArray& answer,
                           const std::vector<Fault>& faults);

} // namespace sim
