#pragma once

#include "sim/device/Command.h"
#include "sim/device/Filters.h"
#include "sim/faults/FaultPlan.h"

namespace sim
{

/// What is sent in answer to a command once faults are applied, and which of them were.
struct FaultyReply {
    std::vector<Delivery> deliveries;
    std::vector<FaultKind> applied;
};

/// Applies `faults` to an answer, which is empty if the device stays silent. Faults that do not
/// concern answers, or cannot affect this one, do nothing and do not count as applied.
FaultyReply apply_to_reply(const Command& command, const QByteArray& answer,
                           const std::vector<Fault>& faults);

} // namespace sim
