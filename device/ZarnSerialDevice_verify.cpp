#include "device/GeometryFaults.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "util/Util.h"

#include <algorithm>

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

/// The row that is read to compare what lies at `address`: the last row of a memory is read so that
/// it ends where the memory does.
unsigned int row_read_for(const Profile& profile, MemoryType type, unsigned int address)
{
    const unsigned int row_size = profile.get_row_size(type);
    const unsigned int maximum = profile.get_max_address(type);
    return address + row_size > maximum ? maximum - row_size : address;
}

geometry::Fault row_fault_at(const Profile& profile, MemoryType type, unsigned int address)
{
    const unsigned int row = row_read_for(profile, type, address);
    const bool fits = row >= profile.get_min_address(type) &&
                      quint64{row} + profile.get_row_size(type) <= profile.get_max_address(type);
    return fits ? geometry::request_fault(profile, type, row, profile.get_row_size(type))
                : std::nullopt;
}

/// Why the rows of a blob with bytes cannot be read.
geometry::Fault blob_fault(const Profile& profile, const AddressedBLOB& blob)
{
    const MemoryType type = profile.get_memory_type(blob.address);
    if (auto fault = geometry::read_fault(profile, type)) {
        return fault;
    }
    const unsigned int row_size = profile.get_row_size(type);
    const quint64 last = quint64{blob.address} + (blob.size() - 1) / row_size * row_size;
    if (auto fault = geometry::wrap_fault(profile, type, ATTR_MEMORY_ROW_SIZE, last + row_size)) {
        return fault;
    }
    if (auto fault = row_fault_at(profile, type, blob.address)) {
        return fault;
    }
    return row_fault_at(profile, type, static_cast<unsigned int>(last));
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
    const auto& blobs = map.blobs();
    return std::all_of(blobs.begin(), blobs.end(), [&](const auto& blob) {
        return blob->size() == 0 || !areas.admits(blob->address) ||
               check_geometry(blob_fault(*m_profile, *blob));
    });
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
    const unsigned int wanted = blob.address + offset;
    const unsigned int address = row_read_for(*m_profile, type, wanted);
    const unsigned int shift = wanted - address;
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
