#pragma once

#include "device/ZarnSerialDevice.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/SignalRecorder.h"

#include <gmock/gmock.h>

namespace test
{

/// A device on a port that does not exist. (One that has vanished may come back at any time with
/// another device under that name.)
struct MissingPort {
    explicit MissingPort(const char* name)
        : device(QStringLiteral("/dev/no such port"), nullptr, 9600, false, version_named(name)),
          recorder(device)
    {
    }

    ZarnSerialDevice device;
    SignalRecorder recorder;
    const bool abort = false;
};

/// The message about it.
inline auto port_cannot_be_opened()
{
    return testing::StartsWith("sig_error cannot open port no such port (");
}

} // namespace test
