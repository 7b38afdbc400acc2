#pragma once

#include "sim/Command.h"
#include "sim/DeviceMemory.h"

#include <QStringList>

#include <map>

namespace sim
{

/// Counts what a device was asked for, for the summary at the end.
class Tally
{
public:
    void count(const Command& command);
    /// The lines of the summary.
    QStringList summary(const DeviceMemory::Statistics& statistics) const;

private:
    unsigned int number_of(Command::Kind kind) const;

    std::map<Command::Kind, unsigned int> m_by_kind;
    unsigned int m_refused = 0;
};

} // namespace sim
