#pragma once

#include "app/Failure.h"
#include "app/Settings.h"
#include "memory/MemoryMap.h"

#include <optional>
#include <vector>

class QTextStream;
class ZarnSerialDevice;

enum class Operation { WriteAndVerify, Erase, Write, Read, Verify };

/// What the settings ask for, in the order in which it is carried out.
std::vector<Operation> operations_of(const Settings& settings);

/// Carries out memory operations on a device whose profile is selected. Prints what has been done;
/// the first failure is returned.
class OperationDispatch
{
public:
    /// The arguments must outlive the dispatch.
    OperationDispatch(ZarnSerialDevice& device, const Settings& settings, QTextStream& console);

    /// All that the settings ask for.
    std::optional<Failure> run();
    /// One of them.
    std::optional<Failure> carry_out(Operation operation);

private:
    std::optional<Failure> write_and_verify();
    std::optional<Failure> erase();
    std::optional<Failure> write();
    std::optional<Failure> read();
    std::optional<Failure> verify();

    std::optional<Failure> report(bool success, const char* done, const char* failed);
    std::optional<Failure> load(const QString& file, const QString& operation);

    ZarnSerialDevice& m_device;
    const Settings& m_settings;
    QTextStream& m_console;
    MemoryMap m_map;
    /// Nothing sets it: the tool's operations are not aborted from outside.
    const bool m_abort_requested = false;
};
