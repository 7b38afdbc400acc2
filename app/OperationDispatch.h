#pragma once

#include "app/Failure.h"
#include "app/Settings.h"
#include "memory/MemoryMap.h"

#include <optional>

class ZarnSerialDevice;

/// Carries out the memory operations that the settings ask for, in their fixed order, on a device
/// whose profile is selected. Prints what has been done; the first failure is returned.
class OperationDispatch
{
public:
    OperationDispatch(ZarnSerialDevice& device, const Settings& settings);

    std::optional<Failure> run();

private:
    std::optional<Failure> write_and_verify();
    std::optional<Failure> erase();
    std::optional<Failure> write();
    std::optional<Failure> read();
    std::optional<Failure> verify();

    std::optional<Failure> load(const QString& file, const QString& operation);

    ZarnSerialDevice& m_device;
    const Settings& m_settings;
    MemoryMap m_map;
    /// Nothing sets it: the tool's operations are not aborted from outside.
    const bool m_abort_requested = false;
};
