#include "sim/device/Command.h"

namespace sim
{

const char* name_of(Command::Kind kind)
{
    switch (kind) {
    case Command::Kind::Probe:
        return "probe";
    case Command::Kind::Version:
        return "version";
    case Command::Kind::Reset:
        return "reset";
    case Command::Kind::Read:
        return "read";
    case Command::Kind::Write:
        return "write";
    case Command::Kind::Erase:
        return "erase";
    case Command::Kind::Unknown:
        break;
    }
    return "unknown";
}

} // namespace sim
