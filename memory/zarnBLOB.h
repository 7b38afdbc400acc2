#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

/// A growable byte buffer kept as a list of equal chunks: growing never moves a byte that is
/// already stored, and a write beyond the end leaves zeros in the gap. Offsets and counts are
/// bytes. Running out of memory throws std::bad_alloc and leaves the content as it was.
class zarnBLOB
{
public:
    /// An empty blob; `chunk_size` (bytes per chunk) must not be 0.
    explicit zarnBLOB(unsigned int chunk_size);
    virtual ~zarnBLOB();
    zarnBLOB(const zarnBLOB&) = delete;
    zarnBLOB& operator=(const zarnBLOB&) = delete;

    /// Frees all chunks; the chunk size stays.
    virtual void clear();

    /// Bytes that the present chunks can hold.
    unsigned int capacity() const;
    /// One past the highest byte ever written.
    unsigned int size() const;
    unsigned int chunk_size() const;

    /// Copies up to `count` bytes from `offset` on into `dst`, which must have room for `count`;
    /// returns the number copied (0 when `offset` is at or beyond the end).
    unsigned int read(unsigned int offset, unsigned int count, char* dst) const;
    /// The same into `dst`, which ends up exactly as long as what was read.
    unsigned int read(unsigned int offset, unsigned int count, QByteArray& dst) const;

    /// Stores `count` bytes at `offset`, growing as needed. A range that would run past the end of
    /// the 32-bit offsets is not stored at all.
    void write(unsigned int offset, unsigned int count, const char* src);
    void write(unsigned int offset, QByteArray data);

    /// Replaces the content by the raw bytes of a file; returns the file's size. A file that
    /// cannot be opened, or that is too long for 32-bit offsets, reads as empty.
    unsigned int load_from_file(QString path);
    /// Writes the content to a file and returns size(). When the size is an exact multiple of the
    /// chunk size the last chunk is left out; readers of such files count on it. A file that
    /// cannot be opened is not written.
    unsigned int save_to_file(QString path) const;

    /// A listing for diagnostics: one line of hexadecimal bytes per chunk.
    QString to_hex_string() const;

private:
    unsigned int slab_count() const;
    char* slab(unsigned int index) const;
    void add_slab();
    /// Makes room for `size` bytes and counts them as used; never shrinks.
    void extend_to(unsigned int size);
    /// Calls action(char* bytes, unsigned int length) for each part of [offset, offset + count)
    /// that lies together in storage, in order. The range must be in use.
    template <typename Action>
    void for_each_slab_part(unsigned int offset, unsigned int count, Action action) const;

    unsigned int m_size = 0;
    unsigned int m_chunk_size;
    /// The chunks, allocated several at a time: see zarnBLOB.cpp. The first slab stands apart
    /// because most blobs of an image that is read back have no other.
    std::unique_ptr<char[]> m_first_slab;
    std::vector<std::unique_ptr<char[]>> m_further_slabs;
};
