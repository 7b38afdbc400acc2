#pragma once

#include "sim/device/Command.h"
#include "sim/device/Named.h"
#include "sim/device/Options.h"

#include <array>

namespace sim
{

// What users call the values of the device's enumerations.

constexpr std::array<Named<Entry>, 3> entries = {{
    {Entry::Probe, "probe", "starts and waits for a probe before it runs"},
    {Entry::Version, "version", "runs already, answers the version command and never a probe"},
    {Entry::Silent, "silent", "hears everything, does nothing and never answers"},
}};

/// How a line that has an echo brings it.
constexpr std::array<Named<Echo>, 2> echoes = {{
    {Echo::Apart, "apart", "can be read before the answer, unless times bring both together"},
    {Echo::Together, "together", "comes together with the answer"},
}};

constexpr std::array<Named<Command::Kind>, 7> command_kinds = {{
    {Command::Kind::Probe, "probe", "the byte that a starting device answers"},
    {Command::Kind::Version, "version", "the question for the version"},
    {Command::Kind::Reset, "reset", "the device starts anew"},
    {Command::Kind::Read, "read", "flash or EEPROM is read"},
    {Command::Kind::Write, "write", "a row of flash or EEPROM is written"},
    {Command::Kind::Erase, "erase", "pages of flash are erased"},
    {Command::Kind::Unknown, "unknown", "no command that a device has"},
}};

} // namespace sim
