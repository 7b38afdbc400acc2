#include "fuzz/MemoryFile.h"
#include "memory/MemoryMap.h"

namespace
{

/// Whether `other` holds every byte of `image`.
bool holds_all_of(const MemoryMap& other, const MemoryMap& image)
{
    for (const auto& blob : image.blobs()) {
        QByteArray expected;
        QByteArray actual;
        blob->read(0, blob->size(), expected);
        // A blob that ends at the very top of the address space has no address after it and
        // cannot be looked up.
        if (blob->size() == 0 || blob->address + blob->size() < blob->address) {
            continue;
        }
        if (!other.read(blob->address, blob->size(), actual) || actual != expected) {
            return false;
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool silent = silence_debug_messages();
    static const MemoryFile file;
    must_hold(silent);
    file.fill(bytes_of(data, size));
    MemoryMap image(MemoryMap::default_chunk_size);
    if (!image.load_from_hex_file(file.path(), {0x800, 0x10000, 0x8000})) {
        return 0;
    }
    must_hold(holds_all_of(image, image));
    return 0;
}
