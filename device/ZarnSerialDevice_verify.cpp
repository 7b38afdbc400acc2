#include "device/GeometryFaults.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "util/Util.h"

namespace
{

/// A row that comes back wrong is read again this often before it counts as different.
constexpr unsigned int tolerated_mismatches = 3;

/// "LENGTH: " and the bytes.
QString dump(const QByteArray& bytes)
{
    return QStringLiteral("%1: %2").arg(QString::number(bytes.size()),
                                        QString::fromLatin1(bytes.toHex(' ').toUpper()));
}

QString mismatch_report(unsigned int address, const QByteArray& device_row,
                        const QByteArray& expected)
{
    return QStringLiteral("data mismatch starting at address 0x%1\n"
                          "device data size %2\n"
                          "expected data %3")
        .arg(Util::uint_to_hex(address, -1), dump(device_row), dump(expected));
}

} // namespace

bool ZarnSerialDevice::verify_firmware(const MemoryMap* map, const bool& abort_requested,
                                       bool include_encrypted, bool include_unencrypted)
{
    const AreaFilter areas{*m_profile, include_encrypted, include_unencrypted};
    Progress progress{0, 0};
    for (const auto& blob : map->blobs()) {
        progress.total += areas.admits(blob->address) ? blob->size() : 0;
    }
    if (progress.total == 0 || !can_verify(*map, areas) || !open_port()) {
        return false;
    }
    for (const auto& blob : map->blobs()) {
        if (areas.admits(blob->address) && !verify_blob(*blob, abort_requested, progress)) {
            return false;
        }
    }
    Q_EMIT sig_operation_complete();
    return true;
}

bool ZarnSerialDevice::can_verify(const MemoryMap& map, const AreaFilter& areas)
{
    return check_geometry(touches(map, areas, MEMORY_FLASH),
                          geometry::block_fault(*m_profile, MEMORY_FLASH)) &&
           check_geometry(touches(map, areas, MEMORY_EEPROM),
                          geometry::block_fault(*m_profile, MEMORY_EEPROM));
}

bool ZarnSerialDevice::verify_blob(const AddressedBLOB& blob, const bool& abort_requested,
                                   Progress& progress)
{
    unsigned int offset = 0;
    while (offset < blob.size()) {
        const unsigned int verified = verify_row(blob, offset, abort_requested);
        if (verified == 0) {
            return false;
        }
        offset += verified;
        progress.processed += verified;
        Q_EMIT sig_verify_progress(progress.processed, progress.total);
    }
    return true;
}

/// Compares the row of the blob at `offset`; returns how many bytes agree, 0 on failure.
unsigned int ZarnSerialDevice::verify_row(const AddressedBLOB& blob, unsigned int offset,
                                          const bool& abort_requested)
{
    const MemoryType type = m_profile->get_memory_type(blob.address);
    const unsigned int row_size = m_profile->get_row_size(type);
    const unsigned int maximum = m_profile->get_max_address(type);
    unsigned int address = blob.address + offset;
    unsigned int shift = 0;
    // The last row of a memory is read so that it ends where the memory does.
    if (address + row_size > maximum) {
        shift = address + row_size - maximum;
        address = maximum - row_size;
    }
    QByteArray expected;
    blob.read(offset, row_size, expected);
    QByteArray device_row;
    for (unsigned int mismatches = 0; mismatches <= tolerated_mismatches; ++mismatches) {
        if (abort_requested) {
            error(QStringLiteral("verify_firmware() aborted by user"));
            return 0;
        }
        if (!read_row(type, address, row_size, device_row)) {
            return 0;
        }
        if (device_row.mid(static_cast<int>(qMin(shift, row_size))).startsWith(expected)) {
            return static_cast<unsigned int>(expected.size());
        }
    }
    error(mismatch_report(address, device_row, expected));
    return 0;
}
