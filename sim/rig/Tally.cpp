#include "sim/rig/Tally.h"

namespace sim
{

void Tally::count(const Command& command)
{
    ++m_by_kind[command.kind];
    m_refused += command.refused ? 1U : 0U;
    // Hosts probe again and again by nature, so probes don't count as repeated.
    if (command.kind != Command::Kind::Probe) {
        m_repeated += command.payload == m_last ? 1U : 0U;
        m_last = command.payload;
    }
}

unsigned int Tally::number_of(Command::Kind kind) const
{
    const auto found = m_by_kind.find(kind);
    return found == m_by_kind.end() ? 0 : found->second;
}

} // namespace sim
