#pragma once

#include "sim/device/Command.h"

#include <map>

namespace sim
{

/// Counts the commands to a device.
class Tally
{
public:
    void count(const Command& command);

    unsigned int number_of(Command::Kind kind) const;

    unsigned int refused() const { return m_refused; }

    /// Frames that were the same as the one before: a host repeats a command without a valid
    /// answer.
    unsigned int repeated() const { return m_repeated; }

private:
    std::map<Command::Kind, unsigned int> m_by_kind;
    unsigned int m_refused = 0;
    unsigned int m_repeated = 0;
    QByteArray m_last; ///< the payload of the last frame
};

} // namespace sim
