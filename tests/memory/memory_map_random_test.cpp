#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

// A map that knows itself to be sorted and disjoint looks addresses up in another way than one
// that does not. Whatever happened to a map, it must answer as the plain walk over its list does.

namespace
{

bool holds(const AddressedBLOB& blob, unsigned int address)
{
    return address >= blob.address && address < blob.address + blob.size();
}

int walked_blob_index(const MemoryMap& map, unsigned int address)
{
    for (std::size_t i = 0; i < map.blobs().size(); ++i) {
        if (holds(*map.blobs()[i], address)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

bool walked_read(const MemoryMap& map, unsigned int address, unsigned int count, char* dst)
{
    bool any = false;
    for (const auto& blob : map.blobs()) {
        for (unsigned int a = address; a < address + count; ++a) {
            if (holds(*blob, a)) {
                any = true;
                blob->read(a - blob->address, 1, dst + (a - address));
            }
        }
    }
    return any;
}

/// Does random things to a map around one address and compares its answers.
class RandomMap
{
public:
    RandomMap(unsigned int seed, unsigned int middle) : m_random(seed), m_middle(middle) {}

    void write() { m_map.write(some_address(), some_bytes(40)); }

    void write_at_the_end()
    {
        if (!m_map.blobs().empty()) {
            const AddressedBLOB& last = *m_map.blobs().back();
            m_map.write(last.address + last.size() + below(3), some_bytes(40));
        }
    }

    /// Records in rising order with a gap, an empty record or nothing between them.
    void load_rising(const QString& path)
    {
        QByteArray text;
        unsigned int address = some_address();
        for (unsigned int i = below(12); i > 0; --i) {
            const QByteArray bytes = some_bytes(20);
            text += record(address, bytes);
            address += static_cast<unsigned int>(bytes.size()) + (below(2) == 0 ? 0 : below(20));
        }
        write_file(path, text);
        m_loads += m_map.load_from_hex_file(path, {m_middle, m_middle + 16}) ? 1 : 0;
    }

    void load_anyhow(const QString& path)
    {
        QByteArray text;
        for (unsigned int i = below(6); i > 0; --i) {
            text += record(some_address(), some_bytes(20));
        }
        write_file(path, text);
        m_loads += m_map.load_from_hex_file(path, {}) ? 1 : 0;
    }

    void check_overlaps() { m_map.has_overlaps(); }

    void clear() { m_map.clear(); }

    void do_something(const QString& path)
    {
        switch (below(12)) {
        case 0:
            return clear();
        case 1:
        case 2:
            return check_overlaps();
        case 3:
        case 4:
        case 5:
            return load_rising(path);
        case 6:
            return load_anyhow(path);
        case 7:
        case 8:
        case 9:
            return write_at_the_end();
        default:
            return write();
        }
    }

    void compare_answers()
    {
        for (int i = 0; i < 20; ++i) {
            const unsigned int address = some_address();
            const unsigned int count = below(80);
            std::string expected(80, '?');
            std::string bytes = expected;
            const bool any = walked_read(m_map, address, count, expected.data());
            ASSERT_EQ(m_map.read(address, count, bytes.data()), any) << address << " " << count;
            ASSERT_EQ(bytes, expected) << address << " " << count;
            ASSERT_EQ(m_map.get_blob_index(address), walked_blob_index(m_map, address)) << address;
        }
    }

    int successful_loads() const { return m_loads; }

private:
    unsigned int below(unsigned int limit) { return static_cast<unsigned int>(m_random()) % limit; }

    unsigned int some_address() { return m_middle - 300 + below(600); }

    QByteArray some_bytes(unsigned int limit)
    {
        QByteArray bytes(static_cast<int>(below(limit)), '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(below(256));
        }
        return bytes;
    }

    QByteArray record(unsigned int address, const QByteArray& bytes)
    {
        // Where the second byte is high the loader puts the data at the top of the address space:
        // a map may then hold both.
        const QByteArray upper =
            QByteArray(1, static_cast<char>(address >> 24)) + static_cast<char>(address >> 16);
        return hex_record(4, 0, upper) + hex_record(0, static_cast<int>(address & 0xFFFF), bytes);
    }

    MemoryMap m_map{16};
    std::mt19937 m_random;
    unsigned int m_middle;
    int m_loads = 0;
};

void compare_maps_around(unsigned int middle)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("image.hex"));
    const DebugMessages overlaps_are_expected;
    int successful_loads = 0;
    for (unsigned int seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        RandomMap map(seed, middle);
        for (int step = 0; step < 25; ++step) {
            map.do_something(path);
            ASSERT_NO_FATAL_FAILURE(map.compare_answers()) << "step " << step;
        }
        successful_loads += map.successful_loads();
    }
    EXPECT_GT(successful_loads, 50); // else hardly any map was ever in order
}

TEST(RandomMemoryMap, answers_as_a_walk_over_its_list_does)
{
    compare_maps_around(0x10000);
}

TEST(RandomMemoryMap, answers_as_a_walk_does_where_addresses_wrap)
{
    compare_maps_around(0);
}

TEST(RandomMemoryMap, answers_as_a_walk_does_where_addresses_turn_negative)
{
    compare_maps_around(0x80000000);
}

} // namespace
