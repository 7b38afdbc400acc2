#include "gang/ImageNumber.h"

#include "memory/MemoryMap.h"
#include "util/Util.h"

#include <algorithm>

namespace gang
{

namespace
{

bool covers(const MemoryMap& map, const NumberSlot& slot)
{
    for (int i = 0; i < slot.size; ++i) {
        if (map.get_blob_index(slot.address + static_cast<unsigned int>(i)) < 0) {
            return false;
        }
    }
    return true;
}

bool is_reserved(const QByteArray& bytes)
{
    return bytes.count('\xFF') == bytes.size() || bytes.count('\0') == bytes.size();
}

QString at(const NumberSlot& slot)
{
    return QStringLiteral("the %1 bytes at 0x%2 for the serial number")
        .arg(QString::number(slot.size), Util::uint_to_hex(slot.address, -1));
}

} // namespace

QString slot_problem(const QString& image, const NumberSlot& slot)
{
    MemoryMap map(MemoryMap::default_chunk_size);
    if (!map.load_from_hex_file(image, {})) {
        return QStringLiteral("cannot be read as an Intel HEX file");
    }
    QByteArray bytes;
    if (!covers(map, slot) ||
        !map.read(slot.address, static_cast<unsigned int>(slot.size), bytes)) {
        return at(slot) + QStringLiteral(" lie outside the image; let it hold FF there");
    }
    if (!is_reserved(bytes)) {
        return at(slot) + QStringLiteral(" already hold data of the image: ") +
               QString::fromLatin1(bytes.toHex(' ').toUpper());
    }
    return {};
}

bool copy_with_number(const QString& image, const QString& copy, const NumberSlot& slot,
                      const QByteArray& bytes, const QSet<unsigned int>& boundaries)
{
    MemoryMap map(MemoryMap::default_chunk_size);
    if (!map.load_from_hex_file(image, boundaries)) {
        return false;
    }
    const std::size_t pieces = map.blobs().size();
    map.write(slot.address, bytes);
    // Saved piece by piece, so that no address appears in the file twice.
    MemoryMap result(MemoryMap::default_chunk_size);
    for (std::size_t i = 0; i < pieces; ++i) {
        const AddressedBLOB& piece = *map.blobs()[i];
        QByteArray data;
        if (!map.read(piece.address, piece.size(), data)) {
            return false; // reaches the last address; slot_problem() refuses a number there
        }
        result.write(piece.address, data);
    }
    return result.save_to_hex_file(copy);
}

} // namespace gang
