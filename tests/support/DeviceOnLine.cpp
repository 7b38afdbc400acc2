#include "tests/support/DeviceOnLine.h"

#include "tests/support/Bytes.h"
#include "tests/support/ProfileTable.h"

namespace test
{

DeviceOnLine::DeviceOnLine(const char* name, Host host, sim::Options options)
    : simulated(profile_named(name), options),
      port(simulated.port_path()),
      device(simulated.port_path(), host.events, host.baud, host.half_duplex,
             host.knows_device ? version_named(name) : static_cast<unsigned short>(0)),
      recorder(device)
{
}

std::vector<std::string> DeviceOnLine::sent() const
{
    return hex(simulated.payloads());
}

} // namespace test
