#include "sim/device/Command.h"

#include "sim/device/Names.h"

namespace sim
{

const char* name_of(Command::Kind kind)
{
    return name_in(command_kinds, kind);
}

} // namespace sim
