#pragma once

#include "sim/faults/Chance.h"
#include "sim/faults/FaultKind.h"

#include <cstdint>
#include <set>
#include <vector>

namespace sim
{

/// When a fault happens to commands.
struct FaultRule {
    FaultKind kind = FaultKind::LoseResponse;
    Chance chance;
    std::set<unsigned int> commands; ///< by number, the first being 1
    int delay_ms = 0;                ///< of a delayed answer
};

/// A fault that is to happen to one command.
struct Fault {
    FaultKind kind = FaultKind::LoseResponse;
    std::uint64_t detail = 0; ///< a random number for what the fault leaves open, such as which bit
    int delay_ms = 0;
};

/// Which faults happen to which command. The same seed and rules always give the same plan, and
/// the rules are independent of each other.
class FaultPlan
{
public:
    FaultPlan(std::vector<FaultRule> rules, std::uint64_t seed);

    /// The faults for the next command, the first call's being number 1; each kind at most once, by
    /// the first of its rules that applies, in the order of the kinds.
    std::vector<Fault> next();

private:
    struct DrawnRule {
        FaultRule rule;
        DrawStream draws;
    };

    void add(const FaultRule& rule, std::uint64_t seed);

    std::vector<DrawnRule> m_rules; ///< in the order of their kinds
    unsigned int m_number = 0;
};

} // namespace sim
