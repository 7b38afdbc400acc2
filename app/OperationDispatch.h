#pragma once

#include "app/Settings.h"
#include "memory/MemoryMap.h"

class ZarnSerialDevice;

/// Carries out the memory operations that the settings ask for, in their fixed order, on a device
/// whose profile is selected. The first failure ends the process with its message.
class OperationDispatch
{
public:
    OperationDispatch(ZarnSerialDevice& device, const Settings& settings);

    void run();

private:
    void write_and_verify();
    void erase();
    void write();
    void read();
    void verify();

    void load(const QString& file, const QString& operation);

    ZarnSerialDevice& m_device;
    const Settings& m_settings;
    MemoryMap m_map;
    /// Nothing sets it: the tool's operations are not aborted from outside.
    const bool m_abort_requested = false;
};
