#pragma once

#include "sim/faults/FaultPlan.h"

#include <QString>

namespace sim
{

/// Bits of a memory cell that never change their level.
struct StuckBits {
    unsigned int address = 0;
    unsigned char mask = 0;
    bool level = false;
};

/// All faults of a run.
struct FaultSettings {
    std::vector<FaultRule> rules;
    Chance request_bytes;
    Chance response_bytes;
    std::vector<StuckBits> stuck_bits;
    std::uint64_t seed = 1;

    bool are_any() const
    {
        return !rules.empty() || !stuck_bits.empty() || !request_bytes.is_never() ||
               !response_bytes.is_never();
    }
};

/// Adds what a user wrote, one of
///
///     KIND=P                           each time with the probability P
///     KIND@N[,N...]                    at the Nth command
///     stuck-bits:ADDRESS:MASK:LEVEL    from the start
///
/// where delay-response is followed by a colon and its milliseconds, and the kinds that affect
/// single bytes only take a probability. Throws Error.
void add_fault(FaultSettings& settings, const QString& text);

} // namespace sim
