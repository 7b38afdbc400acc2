#include "app/OperationDispatch.h"

#include "app/Console.h"
#include "app/Failure.h"
#include "device/ZarnSerialDevice.h"

namespace
{

void insist(bool success, const char* message)
{
    if (!success) {
        fail(QString::fromLatin1(message));
    }
}

} // namespace

OperationDispatch::OperationDispatch(ZarnSerialDevice& device, const Settings& settings)
    : m_device(device),
      m_settings(settings),
      m_map(MemoryMap::default_chunk_size)
{
}

void OperationDispatch::run()
{
    erase();
    write();
}

void OperationDispatch::erase()
{
    const bool encrypted = m_settings.include_encrypted;
    const bool unencrypted = m_settings.include_unencrypted;
    if (m_settings.erase_all_wanted) {
        insist(m_device.erase_all(encrypted, unencrypted), "Erase all flash failed? Aborting...\n");
        out << "Erased all flash!\n";
    } else if (m_settings.limited_erase_wanted) {
        // The area flags travel as addresses and the addresses as area flags. Deliberately kept:
        // a limited erase erases what it always has.
        insist(m_device.erase_range(m_settings.erase_range.lower != 0,
                                    m_settings.erase_range.upper != 0, encrypted ? 1 : 0,
                                    unencrypted ? 1 : 0),
               "Failed to erase flash range, aborting...\n");
        out << "Erased flash range!\n";
    }
}

void OperationDispatch::write()
{
    if (!m_settings.write_wanted && !m_settings.limited_write_wanted) {
        return;
    }
    load(m_settings.write_file, QStringLiteral("write"));
    out << "Now writing";
    if (m_settings.write_wanted) {
        insist(m_device.write(&m_map, m_abort_requested, m_settings.include_encrypted,
                              m_settings.include_unencrypted),
               "Failed to write memory, aborting...\n");
        out << "Memory written!\n";
    } else {
        insist(m_device.write_range(&m_map, m_settings.write_range.lower,
                                    m_settings.write_range.upper, m_abort_requested,
                                    m_settings.include_encrypted, m_settings.include_unencrypted),
               "Failed to write memory range, aborting...\n");
        out << "Memory range written!\n";
    }
}

/// Loads a firmware file, cut where the device's regions meet.
void OperationDispatch::load(const QString& file, const QString& operation)
{
    m_map.clear();
    if (!m_map.load_from_hex_file(file, m_device.profile()->boundaries)) {
        fail(QStringLiteral("Could not process firmware file ") + file +
             QStringLiteral(" as intel hex 32 format during ") + operation +
             QStringLiteral(", aborting..."));
    }
}
