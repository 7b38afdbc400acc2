#include "sim/rig/MemoryImage.h"

#include "memory/AddressedBLOB.h"
#include "memory/IntelHexText.h"
#include "sim/device/DeviceMemory.h"
#include "sim/device/Error.h"
#include "sim/rig/InputFile.h"
#include "sim/rig/WholeFile.h"
#include "util/Util.h"

#include <algorithm>
#include <optional>

namespace sim
{

namespace
{

constexpr unsigned int chunk_size = 16;

QByteArray content_of(const AddressedBLOB& blob)
{
    QByteArray bytes;
    blob.read(0, blob.size(), bytes);
    return bytes;
}

QString byte_text(char byte)
{
    const unsigned int value = static_cast<unsigned char>(byte);
    return QStringLiteral("0x") + Util::uint_to_hex(value, 2);
}

struct Difference {
    unsigned int address;
    char in_memory;
    char in_image;
};

/// Of a comparison, byte by byte.
struct Findings {
    unsigned int matching = 0;
    unsigned int outside = 0;
    std::optional<Difference> difference; ///< the first
};

void look_at(Findings& findings, const DeviceMemory& memory, unsigned int address, char in_image)
{
    if (!memory.is_user_memory(address)) {
        findings.outside += memory.is_in_flash(address, 1) ? 0U : 1U;
        return;
    }
    const char in_memory = memory.read(address, 1).at(0);
    if (in_memory == in_image) {
        ++findings.matching;
    } else if (!findings.difference) {
        findings.difference = Difference{address, in_memory, in_image};
    }
}

QString difference_text(const QString& path, const Difference& difference)
{
    return QStringLiteral("device memory differs from %1 at address 0x%2: memory %3, image %4")
        .arg(path, Util::uint_to_hex(difference.address, -1), byte_text(difference.in_memory),
             byte_text(difference.in_image));
}

QString agreement_text(const QString& path, unsigned int matching)
{
    if (matching == 0) {
        return QStringLiteral("%1 holds no byte of the device's flash and EEPROM").arg(path);
    }
    return QStringLiteral("device memory holds %1: %2 bytes in flash and EEPROM match")
        .arg(path, QString::number(matching));
}

/// The records of one range, each within one 64 KiB segment as readers of such files expect.
void append_range(QByteArray& text, const DeviceMemory::ProgrammedRange& range,
                  unsigned short& upper)
{
    const auto size = static_cast<unsigned int>(range.bytes.size());
    AddressedBLOB blob(chunk_size);
    blob.address = range.address;
    blob.write(0, size, range.bytes.constData());
    for (unsigned int done = 0; done < size;) {
        const unsigned int address = range.address + done;
        const unsigned int part = std::min(size - done, 0x10000U - (address & 0xFFFFU));
        intel_hex::append_content(text, blob, done, part, upper);
        done += part;
    }
}

QByteArray image_text(const DeviceMemory& memory)
{
    QByteArray text;
    unsigned short upper = 0;
    for (const DeviceMemory::ProgrammedRange& range : memory.programmed_ranges()) {
        append_range(text, range, upper);
    }
    intel_hex::append_end_record(text);
    return text;
}

} // namespace

MemoryImage::MemoryImage(const QString& path) : m_path(path), m_map(chunk_size)
{
    refuse_device(path);
    if (!m_map.load_from_hex_file(path, {})) {
        throw Error(QStringLiteral("cannot load the image %1").arg(path));
    }
}

unsigned int MemoryImage::fill(DeviceMemory& memory) const
{
    unsigned int left_out = 0;
    for (const auto& blob : m_map.blobs()) {
        left_out += memory.preset(blob->address, content_of(*blob));
    }
    return left_out;
}

MemoryImage::Comparison MemoryImage::compare(const DeviceMemory& memory) const
{
    Findings findings;
    for (const auto& blob : m_map.blobs()) {
        unsigned int address = blob->address;
        for (const char in_image : content_of(*blob)) {
            look_at(findings, memory, address, in_image);
            ++address;
        }
    }
    if (findings.difference) {
        return {false, difference_text(m_path, *findings.difference), findings.outside};
    }
    return {findings.matching != 0, agreement_text(m_path, findings.matching), findings.outside};
}

void save_memory(const DeviceMemory& memory, const QString& path)
{
    if (!write_whole_file(path, image_text(memory))) {
        throw Error(QStringLiteral("cannot write the image %1").arg(path));
    }
}

} // namespace sim
