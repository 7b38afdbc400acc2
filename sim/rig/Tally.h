#pragma once

#include "sim/device/Command.h"

#include <map>

namespace sim
{

/// Counts what a device was asked for.
class Tally
{
public:
    void count(const Command& command);

    unsigned int number_of(Command::Kind kind) const;

    unsigned int refused() const { return m_refused; }

    /// Frames that were the same as the one before: what a host does that got no good answer.
    unsigned int repeated() const { return m_repeated; }

private:
    std::map<Command::Kind, unsigned int> m_by_kind;
    unsigned int m_refused = 0;
    unsigned int m_repeated = 0;
    QByteArray m_last; ///< the payload of the last frame
};

} // namespace sim
