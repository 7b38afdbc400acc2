#include "sim/FaultPlan.h"

#include <utility>

namespace sim
{

FaultPlan::FaultPlan(std::vector<FaultRule> rules, std::uint64_t seed) : m_rules(std::move(rules))
{
    for (const FaultRule& rule : m_rules) {
        m_draws.emplace(rule.kind, DrawStream(seed, name_of(rule.kind)));
    }
}

std::vector<Fault> FaultPlan::next()
{
    ++m_number;
    std::vector<Fault> faults;
    for (auto& [kind, draws] : m_draws) {
        // Drawn whether needed or not: the numbers for a command depend on its number alone.
        const std::uint64_t draw = draws.next();
        const std::uint64_t detail = draws.next();
        if (const FaultRule* rule = rule_for(kind, draw)) {
            faults.push_back({kind, detail, rule->delay_ms});
        }
    }
    return faults;
}

const FaultRule* FaultPlan::rule_for(FaultKind kind, std::uint64_t draw) const
{
    for (const FaultRule& rule : m_rules) {
        if (rule.kind == kind && (rule.commands.count(m_number) != 0 || rule.chance.covers(draw))) {
            return &rule;
        }
    }
    return nullptr;
}

} // namespace sim
