#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

using namespace test;

// A map that is known to be sorted and without overlaps looks up addresses in a faster way, and
// does not search for overlaps. Whatever happened to a map, its answers must be those of a plain
// walk over its list.

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

/// Where each blob lies: address and size.
using Spans = std::vector<std::pair<unsigned int, unsigned int>>;

Spans spans_of(const MemoryMap& map)
{
    Spans spans;
    for (const auto& blob : map.blobs()) {
        spans.emplace_back(blob->address, blob->size());
    }
    return spans;
}

Spans sorted_by_address(Spans spans)
{
    std::stable_sort(spans.begin(), spans.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    return spans;
}

/// Whether any span ends in the next one, both by addresses that wrap.
bool overlap(const Spans& sorted)
{
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        if (sorted[i - 1].first + sorted[i - 1].second > sorted[i].first) {
            return true;
        }
    }
    return false;
}

/// Properties of a list of blobs that matter to a search for overlaps.
std::set<std::string> kinds_of(const Spans& spans)
{
    std::set<std::string> kinds;
    const Spans sorted = sorted_by_address(spans);
    if (spans.size() < 2) {
        return kinds;
    }
    kinds.insert(overlap(sorted)   ? "overlapping"
                 : spans != sorted ? "disjoint, unsorted"
                                   : "disjoint, sorted");
    for (std::size_t i = 0; i < spans.size(); ++i) {
        if (spans[i].second == 0) {
            kinds.insert("with an empty blob");
        } else if (i > 0 && spans[i - 1].first + spans[i - 1].second == spans[i].first) {
            kinds.insert("with blobs that touch");
        }
    }
    return kinds;
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
        load(path, text, {m_middle, m_middle + 16});
    }

    void load_anyhow(const QString& path)
    {
        QByteArray text;
        for (unsigned int i = below(6); i > 0; --i) {
            text += record(some_address(), some_bytes(20));
        }
        load(path, text, {});
    }

    void check_overlaps()
    {
        const Spans spans = spans_of(m_map);
        m_kinds.merge(kinds_of(spans));
        const Spans sorted = sorted_by_address(spans);
        EXPECT_EQ(m_map.has_overlaps(), overlap(sorted));
        EXPECT_EQ(spans_of(m_map), sorted);
    }

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

    /// Of the maps that overlaps were looked for in.
    const std::set<std::string>& kinds() const { return m_kinds; }

private:
    void load(const QString& path, const QByteArray& text, const QSet<unsigned int>& boundaries)
    {
        if (!m_map.blobs().empty()) {
            m_kinds.insert("loaded into");
        }
        write_file(path, text);
        const bool loaded = m_map.load_from_hex_file(path, boundaries);
        const Spans spans = spans_of(m_map);
        EXPECT_EQ(loaded, !overlap(spans));
        EXPECT_EQ(spans, sorted_by_address(spans));
        m_loads += loaded ? 1 : 0;
    }

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
        return hex_record(4, 0, upper) + hex_record(0, address & 0xFFFF, bytes);
    }

    MemoryMap m_map{16};
    std::mt19937 m_random;
    unsigned int m_middle;
    int m_loads = 0;
    std::set<std::string> m_kinds;
};

void compare_maps_around(unsigned int middle)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("image.hex"));
    const DebugMessages overlaps_are_expected;
    int successful_loads = 0;
    std::set<std::string> kinds;
    for (unsigned int seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        RandomMap map(seed, middle);
        for (int step = 0; step < 25; ++step) {
            map.do_something(path);
            ASSERT_NO_FATAL_FAILURE(map.compare_answers()) << "step " << step;
            ASSERT_FALSE(testing::Test::HasFailure()) << "step " << step;
        }
        successful_loads += map.successful_loads();
        kinds.insert(map.kinds().begin(), map.kinds().end());
    }
    EXPECT_GT(successful_loads, 50); // else hardly any map was ever in order
    EXPECT_THAT(kinds,
                testing::ElementsAre("disjoint, sorted", "disjoint, unsorted", "loaded into",
                                     "overlapping", "with an empty blob", "with blobs that touch"));
}

TEST(RandomMemoryMap, AnswersAsAWalkOverItsListDoes)
{
    compare_maps_around(0x10000);
}

TEST(RandomMemoryMap, AnswersAsAWalkDoesWhereAddressesWrap)
{
    compare_maps_around(0);
}

TEST(RandomMemoryMap, AnswersAsAWalkDoesWhereAddressesTurnNegative)
{
    compare_maps_around(0x80000000);
}

} // namespace
