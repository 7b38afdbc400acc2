#include "sim/faults/FaultPlan.h"

#include <algorithm>
#include <string>

namespace sim
{

FaultPlan::FaultPlan(std::vector<FaultRule> rules, std::uint64_t seed)
{
    std::stable_sort(rules.begin(), rules.end(),
                     [](const FaultRule& a, const FaultRule& b) { return a.kind < b.kind; });
    for (const FaultRule& rule : rules) {
        add(rule, seed);
    }
}

/// Each rule of a kind draws a number of its own; otherwise the rarer of two would never apply
/// alone.
void FaultPlan::add(const FaultRule& rule, std::uint64_t seed)
{
    std::string name = name_of(rule.kind);
    for (const DrawnRule& other : m_rules) {
        name += other.rule.kind == rule.kind ? "+" : "";
    }
    m_rules.push_back({rule, DrawStream(seed, name.c_str())});
}

std::vector<Fault> FaultPlan::next()
{
    ++m_number;
    std::vector<Fault> faults;
    for (auto& [rule, draws] : m_rules) {
        // Drawn whether needed or not: the numbers for a command depend on its number alone.
        const std::uint64_t draw = draws.next();
        const std::uint64_t detail = draws.next();
        const bool hits = rule.commands.count(m_number) != 0 || rule.chance.covers(draw);
        if (hits && (faults.empty() || faults.back().kind != rule.kind)) {
            faults.push_back({rule.kind, detail, rule.delay_ms});
        }
    }
    return faults;
}

} // namespace sim
