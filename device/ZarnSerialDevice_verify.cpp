// Comparing the device with an image, row by row, as far as the image goes. A row that differs is
// read again, because the line may cause errors that the checksum does not detect. The last row of
// a memory is read so that it ends where the memory does. The command: Protocol.h.

#include "device/GeometryChecks.h"
#include "device/Rows.h"
#include "device/ZarnSerialDevice.h"
#include "memory/MemoryMap.h"
#include "util/Util.h"

#include <algorithm>
#include <vector>

namespace
{

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

/// The address of the row that is read to compare what lies at `address`.
unsigned int row_read_for(const Profile& profile, MemoryType type, unsigned int address)
{
    const unsigned int row_size = profile.get_row_size(type);
    const unsigned int maximum = profile.get_max_address(type);
    return address + row_size > maximum ? maximum - row_size : address;
}

Reason check_row_at(const Profile& profile, MemoryType type, unsigned int address)
{
    const unsigned int row_size = profile.get_row_size(type);
    const unsigned int row = row_read_for(profile, type, address);
    const bool fits = row >= profile.get_min_address(type) &&
                      quint64{row} + row_size <= profile.get_max_address(type);
    return fits ? geometry::check_request(profile, type, row, row_size) : std::nullopt;
}

/// Why the rows of a blob, which must have bytes, cannot be read.
Reason check_blob(const Profile& profile, const AddressedBLOB& blob)
{
    const MemoryType type = profile.get_memory_type(blob.address);
    if (auto reason = geometry::check_read(profile, type)) {
        return reason;
    }
    const unsigned int row_size = profile.get_row_size(type);
    const quint64 last = quint64{blob.address} + (blob.size() - 1) / row_size * row_size;
    if (auto reason =
            geometry::check_no_wrap(profile, type, ATTR_MEMORY_ROW_SIZE, last + row_size)) {
        return reason;
    }
    if (auto reason = check_row_at(profile, type, blob.address)) {
        return reason;
    }
    return check_row_at(profile, type, static_cast<unsigned int>(last));
}

class ImageVerifier
{
public:
    ImageVerifier(ZarnSerialDevice& device, const MemoryMap& image, const AreaFilter& areas,
                  const bool& abort_requested)
        : m_device(device),
          m_areas(areas),
          m_abort_requested(abort_requested)
    {
        for (const auto& blob : image.blobs()) {
            if (blob->size() != 0 && areas.admits(blob->address)) {
                m_blobs.push_back(blob.get());
                m_total += blob->size();
            }
        }
    }

    bool verify()
    {
        if (m_total == 0 || !check() || !m_device.open_port()) {
            return false;
        }
        for (const AddressedBLOB* blob : m_blobs) {
            if (!verify_blob(*blob)) {
                return false;
            }
        }
        Q_EMIT m_device.sig_operation_complete();
        return true;
    }

private:
    /// A row that comes back wrong is read again this often before it counts as different.
    static constexpr unsigned int tolerated_mismatches = 3;

    bool check()
    {
        return std::all_of(m_blobs.begin(), m_blobs.end(), [this](const AddressedBLOB* blob) {
            return rows::passes(m_device, check_blob(m_areas.profile, *blob));
        });
    }

    bool verify_blob(const AddressedBLOB& blob)
    {
        const unsigned int row_size =
            m_areas.profile.get_row_size(m_areas.profile.get_memory_type(blob.address));
        return walk({0, blob.size()}, row_size, [&](unsigned int offset) {
            QByteArray expected;
            blob.read(offset, row_size, expected);
            return verify_row(blob, offset, expected) &&
                   advance(static_cast<unsigned int>(expected.size()));
        });
    }

    bool verify_row(const AddressedBLOB& blob, unsigned int offset, const QByteArray& expected)
    {
        const MemoryType type = m_areas.profile.get_memory_type(blob.address);
        const unsigned int address = row_read_for(m_areas.profile, type, blob.address + offset);
        const unsigned int shift = blob.address + offset - address;
        QByteArray row;
        for (unsigned int mismatches = 0; mismatches <= tolerated_mismatches; ++mismatches) {
            if (m_abort_requested) {
                return m_device.error(QStringLiteral("verify_firmware() aborted by user"));
            }
            if (!rows::read(m_device, type, address, row)) {
                return false;
            }
            if (row.mid(qMin(static_cast<int>(shift), row.size())).startsWith(expected)) {
                return true;
            }
        }
        return m_device.error(mismatch_report(address, row, expected));
    }

    bool advance(unsigned int bytes)
    {
        m_processed += bytes;
        Q_EMIT m_device.sig_verify_progress(m_processed, m_total);
        return true;
    }

    ZarnSerialDevice& m_device;
    const AreaFilter m_areas;
    const bool& m_abort_requested;
    std::vector<const AddressedBLOB*> m_blobs;
    unsigned int m_processed = 0;
    unsigned int m_total = 0;
};

} // namespace

bool ZarnSerialDevice::verify_firmware(const MemoryMap* map, const bool& abort_requested,
                                       bool include_encrypted, bool include_unencrypted)
{
    return ImageVerifier(*this, *map, {*m_profile, include_encrypted, include_unencrypted},
                         abort_requested)
        .verify();
}
