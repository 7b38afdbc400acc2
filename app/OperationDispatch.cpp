#include "app/OperationDispatch.h"

#include "device/ZarnSerialDevice.h"

#include <QFile>
#include <QTextStream>

std::vector<Operation> operations_of(const Settings& settings)
{
    if (settings.write_and_verify_wanted) {
        return {Operation::WriteAndVerify};
    }
    std::vector<Operation> operations;
    const auto add = [&operations](bool wanted, Operation operation) {
        if (wanted) {
            operations.push_back(operation);
        }
    };
    add(settings.erase_all_wanted || settings.erase_range_wanted, Operation::Erase);
    add(settings.write_wanted || settings.write_range_wanted, Operation::Write);
    add(settings.read_wanted || settings.read_range_wanted, Operation::Read);
    add(settings.verify_wanted, Operation::Verify);
    return operations;
}

OperationDispatch::OperationDispatch(ZarnSerialDevice& device, const Settings& settings,
                                     QTextStream& console)
    : m_device(device),
      m_settings(settings),
      m_console(console),
      m_map(MemoryMap::default_chunk_size)
{
}

std::optional<Failure> OperationDispatch::run()
{
    for (const Operation operation : operations_of(m_settings)) {
        if (auto failure = carry_out(operation)) {
            return failure;
        }
    }
    return std::nullopt;
}

std::optional<Failure> OperationDispatch::carry_out(Operation operation)
{
    switch (operation) {
    case Operation::WriteAndVerify:
        return write_and_verify();
    case Operation::Erase:
        return erase();
    case Operation::Write:
        return write();
    case Operation::Read:
        return read();
    case Operation::Verify:
        return verify();
    }
    return std::nullopt;
}

/// Prints the message of a success, or returns that of a failure.
std::optional<Failure> OperationDispatch::report(bool success, const char* done, const char* failed)
{
    if (!success) {
        return Failure{QString::fromLatin1(failed)};
    }
    m_console << done;
    return std::nullopt;
}

/// Erases page by page as needed; with "-e", pages that already match are also erased and written.
std::optional<Failure> OperationDispatch::write_and_verify()
{
    if (auto failure = load(m_settings.write_and_verify_file, QStringLiteral("write-and-verify"))) {
        return failure;
    }
    m_console << "Uploading firmware\n";
    m_console.flush();
    const bool uploaded =
        m_device.write_with_verify(&m_map, m_abort_requested, m_settings.include_encrypted,
                                   m_settings.include_unencrypted, m_settings.erase_all_wanted);
    m_console << "\n";
    return report(uploaded, "Uploaded!\n", "Write-and-verify failure!\n");
}

std::optional<Failure> OperationDispatch::erase()
{
    const bool encrypted = m_settings.include_encrypted;
    const bool unencrypted = m_settings.include_unencrypted;
    if (m_settings.erase_all_wanted) {
        return report(m_device.erase_all(encrypted, unencrypted), "Erased all flash!\n",
                      "Erase all flash failed? Aborting...\n");
    }
    // The two addresses are passed as the area flags and the area flags as the addresses.
    // docs/user-guide.md explains the effect.
    return report(m_device.erase_range(m_settings.erase_range.lower != 0,
                                       m_settings.erase_range.upper != 0, encrypted ? 1 : 0,
                                       unencrypted ? 1 : 0),
                  "Erased flash range!\n", "Failed to erase flash range, aborting...\n");
}

std::optional<Failure> OperationDispatch::write()
{
    if (auto failure = load(m_settings.write_file, QStringLiteral("write"))) {
        return failure;
    }
    m_console << "Now writing";
    if (m_settings.write_wanted) {
        return report(m_device.write(&m_map, m_abort_requested, m_settings.include_encrypted,
                                     m_settings.include_unencrypted),
                      "Memory written!\n", "Failed to write memory, aborting...\n");
    }
    return report(m_device.write_range(&m_map, m_settings.write_range.lower,
                                       m_settings.write_range.upper, m_abort_requested,
                                       m_settings.include_encrypted,
                                       m_settings.include_unencrypted),
                  "Memory range written!\n", "Failed to write memory range, aborting...\n");
}

/// A file that can no longer be opened does not stop the read: the device is read anyway, and
/// saving reports what is wrong with the file.
std::optional<Failure> OperationDispatch::read()
{
    QFile file(m_settings.read_file);
    if (!file.open(QIODevice::ReadWrite)) {
        m_console << "Could not open file to read data into!";
    }
    // The device needs its name only. Left open, a pipe would have a reader that never reads: the
    // run would hang in saving once the real one has gone.
    file.close();
    if (m_settings.read_wanted) {
        return report(m_device.read(file, m_abort_requested, m_settings.include_encrypted,
                                    m_settings.include_unencrypted),
                      "Memory read!\n", "Failed to read memory, aborting...\n");
    }
    return report(m_device.read_range(file, m_abort_requested, m_settings.include_encrypted,
                                      m_settings.include_unencrypted, m_settings.read_range.lower,
                                      m_settings.read_range.upper),
                  "Memory range read!\n", "Failed to read memory range, aborting...\n");
}

std::optional<Failure> OperationDispatch::verify()
{
    if (auto failure = load(m_settings.verify_file, QStringLiteral("verify"))) {
        return failure;
    }
    m_console << "Verifying firmware\n";
    m_console.flush();
    const bool verified = m_device.verify_firmware(
        &m_map, m_abort_requested, m_settings.include_encrypted, m_settings.include_unencrypted);
    m_console << "\n";
    return report(verified, "Verified!\n", "Verification failure!\n");
}

/// Loads a firmware file, cut where the device's regions meet.
std::optional<Failure> OperationDispatch::load(const QString& file, const QString& operation)
{
    m_map.clear();
    if (m_map.load_from_hex_file(file, m_device.profile()->boundaries)) {
        return std::nullopt;
    }
    return Failure{QStringLiteral("Could not process firmware file ") + file +
                   QStringLiteral(" as intel hex 32 format during ") + operation +
                   QStringLiteral(", aborting...")};
}
