#include "app/OperationDispatch.h"

#include "app/Console.h"
#include "app/Failure.h"
#include "device/ZarnSerialDevice.h"

#include <QFile>

namespace
{

void fail_unless(bool success, const char* message)
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
    if (m_settings.write_and_verify_wanted) {
        write_and_verify();
        return;
    }
    erase();
    write();
    read();
    verify();
}

/// Erases by itself, page by page; "-e" makes it erase and write pages that already match, too.
void OperationDispatch::write_and_verify()
{
    load(m_settings.write_and_verify_file, QStringLiteral("write-and-verify"));
    out << "Uploading firmware\n";
    out.flush();
    const bool uploaded =
        m_device.write_with_verify(&m_map, m_abort_requested, m_settings.include_encrypted,
                                   m_settings.include_unencrypted, m_settings.erase_all_wanted);
    out << "\n";
    fail_unless(uploaded, "Write-and-verify failure!\n");
    out << "Uploaded!\n";
}

void OperationDispatch::erase()
{
    const bool encrypted = m_settings.include_encrypted;
    const bool unencrypted = m_settings.include_unencrypted;
    if (m_settings.erase_all_wanted) {
        fail_unless(m_device.erase_all(encrypted, unencrypted),
                    "Erase all flash failed? Aborting...\n");
        out << "Erased all flash!\n";
    } else if (m_settings.limited_erase_wanted) {
        // The area flags travel as addresses and the addresses as area flags. Deliberately kept:
        // a limited erase erases what it always has.
        fail_unless(m_device.erase_range(m_settings.erase_range.lower != 0,
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
        fail_unless(m_device.write(&m_map, m_abort_requested, m_settings.include_encrypted,
                                   m_settings.include_unencrypted),
                    "Failed to write memory, aborting...\n");
        out << "Memory written!\n";
    } else {
        fail_unless(m_device.write_range(&m_map, m_settings.write_range.lower,
                                         m_settings.write_range.upper, m_abort_requested,
                                         m_settings.include_encrypted,
                                         m_settings.include_unencrypted),
                    "Failed to write memory range, aborting...\n");
        out << "Memory range written!\n";
    }
}

/// A file that cannot be opened any more does not stop the read: the device is asked all the same,
/// and saving reports what is wrong with the file.
void OperationDispatch::read()
{
    if (!m_settings.read_wanted && !m_settings.limited_read_wanted) {
        return;
    }
    QFile file(m_settings.read_file);
    if (!file.open(QIODevice::ReadWrite)) {
        out << "Could not open file to read data into!";
    }
    if (m_settings.read_wanted) {
        fail_unless(m_device.read(file, m_abort_requested, m_settings.include_encrypted,
                                  m_settings.include_unencrypted),
                    "Failed to read memory, aborting...\n");
        out << "Memory read!\n";
    } else {
        fail_unless(m_device.read_range(file, m_abort_requested, m_settings.include_encrypted,
                                        m_settings.include_unencrypted, m_settings.read_range.lower,
                                        m_settings.read_range.upper),
                    "Failed to read memory range, aborting...\n");
        out << "Memory range read!\n";
    }
}

void OperationDispatch::verify()
{
    if (!m_settings.verify_wanted) {
        return;
    }
    load(m_settings.verify_file, QStringLiteral("verify"));
    out << "Verifying firmware\n";
    out.flush();
    const bool verified = m_device.verify_firmware(
        &m_map, m_abort_requested, m_settings.include_encrypted, m_settings.include_unencrypted);
    out << "\n";
    fail_unless(verified, "Verification failure!\n");
    out << "Verified!\n";
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
