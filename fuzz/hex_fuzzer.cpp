#include "fuzz/Target.h"
#include "memory/MemoryMap.h"

#include <sys/mman.h>
#include <unistd.h>

namespace
{

/// A file in memory, reached through a path as the loader wants it.
class MemoryFile
{
public:
    MemoryFile() : m_descriptor(::memfd_create("image", 0)) { must_hold(m_descriptor >= 0); }

    ~MemoryFile() { ::close(m_descriptor); }

    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(m_descriptor); }

    void fill(const QByteArray& content) const
    {
        must_hold(::ftruncate(m_descriptor, 0) == 0);
        must_hold(::pwrite(m_descriptor, content.constData(),
                           static_cast<std::size_t>(content.size()), 0) == content.size());
    }

private:
    int m_descriptor;
};

/// Every byte of `image` stands in `other`, too.
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
