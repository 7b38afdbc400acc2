#pragma once

#include "device/ZarnSerialDevice.h"
#include "sim/device/SimulatedDevice.h"
#include "tests/support/PortWatch.h"
#include "tests/support/SignalRecorder.h"

#include <string>
#include <vector>

namespace test
{

/// How the device object is made.
struct Host {
    unsigned int baud = 9600;
    bool half_duplex = false;
    /// Whether the device object is given the version of the simulated device.
    bool knows_device = true;
    void (*events)() = nullptr;
};

/// A device object, the simulated device at the other end of its line, and a record of the signals.
class DeviceOnLine
{
public:
    /// `name` is one of the table in the working directory. The simulated device runs its
    /// bootloader already unless the options say otherwise.
    explicit DeviceOnLine(const char* name, Host host = {},
                          sim::Options options = {sim::Entry::Version});

    /// The payloads that the simulated device received, as hexadecimal digits.
    std::vector<std::string> sent() const;

    sim::SimulatedDevice simulated;
    PortWatch port;
    ZarnSerialDevice device;
    SignalRecorder recorder;
};

} // namespace test
