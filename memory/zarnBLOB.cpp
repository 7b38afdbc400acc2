#include "memory/zarnBLOB.h"

#include <QFile>
#include <QtAlgorithms>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

// Chunks are often as small as 16 bytes, less than what an allocation of their own would cost. They
// are therefore allocated in slabs of 1, 1, 2, 4, 8, ... chunks: each slab doubles the blob, none
// ever moves, and the slab of a chunk follows from the chunk's number alone.
namespace
{

constexpr unsigned int max_size = std::numeric_limits<unsigned int>::max();
/// The longest that a QByteArray can be asked to become.
constexpr unsigned int max_array_size = std::numeric_limits<int>::max();

unsigned int chunks_for(unsigned int size, unsigned int chunk_size)
{
    return size / chunk_size + (size % chunk_size != 0 ? 1 : 0);
}

unsigned int slab_of_chunk(unsigned int chunk)
{
    return 32 - qCountLeadingZeroBits(chunk);
}

std::size_t first_chunk_of_slab(std::size_t slab)
{
    return (std::size_t{1} << slab) >> 1;
}

} // namespace

zarnBLOB::zarnBLOB(unsigned int chunk_size) : m_chunk_size(chunk_size) {}

zarnBLOB::~zarnBLOB() = default;

void zarnBLOB::clear()
{
    m_first_slab.reset();
    m_further_slabs.clear();
    m_size = 0;
}

unsigned int zarnBLOB::capacity() const
{
    return chunks_for(m_size, m_chunk_size) * m_chunk_size;
}

unsigned int zarnBLOB::size() const
{
    return m_size;
}

unsigned int zarnBLOB::chunk_size() const
{
    return m_chunk_size;
}

unsigned int zarnBLOB::slab_count() const
{
    return m_first_slab ? 1 + static_cast<unsigned int>(m_further_slabs.size()) : 0;
}

char* zarnBLOB::slab(unsigned int index) const
{
    return index == 0 ? m_first_slab.get() : m_further_slabs[index - 1].get();
}

void zarnBLOB::add_slab()
{
    const std::size_t chunks = std::max<std::size_t>(1, first_chunk_of_slab(slab_count()));
    auto slab = std::make_unique<char[]>(chunks * m_chunk_size);
    if (m_first_slab) {
        m_further_slabs.push_back(std::move(slab));
    } else {
        m_first_slab = std::move(slab);
    }
}

void zarnBLOB::extend_to(unsigned int size)
{
    if (size <= m_size) {
        return;
    }
    const unsigned int chunks = chunks_for(size, m_chunk_size);
    while (first_chunk_of_slab(slab_count()) < chunks) {
        add_slab();
    }
    m_size = size;
}

template <typename Action>
void zarnBLOB::for_each_slab_part(unsigned int offset, unsigned int count, Action action) const
{
    while (count > 0) {
        const unsigned int index = slab_of_chunk(offset / m_chunk_size);
        const std::size_t slab_begin = first_chunk_of_slab(index) * m_chunk_size;
        const std::size_t slab_end = first_chunk_of_slab(index + 1) * m_chunk_size;
        const auto length =
            static_cast<unsigned int>(std::min<std::size_t>(count, slab_end - offset));
        action(slab(index) + (offset - slab_begin), length);
        offset += length;
        count -= length;
    }
}

unsigned int zarnBLOB::read(unsigned int offset, unsigned int count, char* dst) const
{
    const unsigned int copied = std::min(count, m_size - std::min(offset, m_size));
    for_each_slab_part(offset, copied, [&dst](const char* bytes, unsigned int length) {
        std::memcpy(dst, bytes, length);
        dst += length;
    });
    return copied;
}

unsigned int zarnBLOB::read(unsigned int offset, unsigned int count, QByteArray& dst) const
{
    const unsigned int available = m_size - std::min(offset, m_size);
    const unsigned int copied = std::min({count, available, max_array_size});
    dst.resize(static_cast<int>(copied));
    return read(offset, copied, dst.data());
}

void zarnBLOB::write(unsigned int offset, unsigned int count, const char* src)
{
    if (count > max_size - offset) {
        return;
    }
    extend_to(offset + count);
    for_each_slab_part(offset, count, [&src](char* bytes, unsigned int length) {
        std::memcpy(bytes, src, length);
        src += length;
    });
}

void zarnBLOB::write(unsigned int offset, QByteArray data)
{
    write(offset, static_cast<unsigned int>(data.size()), data.constData());
}

unsigned int zarnBLOB::load_from_file(QString path)
{
    clear();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > max_size) {
        return 0;
    }
    extend_to(static_cast<unsigned int>(file.size()));
    // A file that gets shorter while it is read leaves zeros, as its size was taken before.
    for_each_slab_part(0, m_size,
                       [&file](char* bytes, unsigned int length) { file.read(bytes, length); });
    return m_size;
}

unsigned int zarnBLOB::save_to_file(QString path) const
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return m_size;
    }
    // The last chunk contributes size % chunk_size bytes, which is none when it is full.
    const bool last_chunk_is_full = m_size > 0 && m_size % m_chunk_size == 0;
    const unsigned int count = last_chunk_is_full ? m_size - m_chunk_size : m_size;
    for_each_slab_part(
        0, count, [&file](const char* bytes, unsigned int length) { file.write(bytes, length); });
    return m_size;
}

QString zarnBLOB::to_hex_string() const
{
    QString text;
    QByteArray bytes;
    for (unsigned int chunk = 0; chunk < chunks_for(m_size, m_chunk_size); ++chunk) {
        read(chunk * m_chunk_size, m_chunk_size, bytes);
        text += QStringLiteral("block %1: ").arg(chunk);
        text += QString::fromLatin1(bytes.toHex(' ').toUpper()) + QLatin1Char('\n');
    }
    return text;
}
