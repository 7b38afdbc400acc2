#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace test;

namespace
{

unsigned int below(unsigned int limit, std::mt19937& random)
{
    return static_cast<unsigned int>(random()) % limit;
}

QByteArray random_bytes(std::mt19937& random, unsigned int count)
{
    QByteArray bytes(static_cast<int>(count), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(below(256, random));
    }
    return bytes;
}

bool save_and_load(const MemoryMap& map, MemoryMap& again)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("image.hex"));
    return map.save_to_hex_file(path) && again.load_from_hex_file(path, {});
}

TEST(HexRoundTrip, ImagesAroundAndBeyondTheSizeOfABlockComeBack)
{
    for (const unsigned int size : {1U, 16U, 23000U, 24000U, 65536U, 300001U}) {
        SCOPED_TRACE(size);
        std::mt19937 random(size);
        const QByteArray bytes = random_bytes(random, size);
        MemoryMap map(1 << 20);
        map.write(0x00010000, bytes);
        MemoryMap again(16);
        ASSERT_TRUE(save_and_load(map, again));
        ASSERT_EQ(again.blobs().size(), 1U);
        EXPECT_EQ(again.blobs()[0]->address, 0x00010000U);
        EXPECT_TRUE(bytes_of(*again.blobs()[0]) == bytes);
    }
}

TEST(HexRoundTrip, IslandsComeBackAtTheirAddresses)
{
    for (unsigned int seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        MemoryMap map(64);
        // Second address bytes from 0x80 on come back elsewhere, so the islands stay below.
        for (unsigned int address = below(100, random); address < 0x007F0000;
             address += 65 + below(0x20000, random)) {
            map.write(address, random_bytes(random, 1 + below(64, random)));
        }
        MemoryMap again(16);
        ASSERT_TRUE(save_and_load(map, again));
        EXPECT_EQ(blobs_of(again), blobs_of(map));
    }
}

/// Where the loader puts a record that was saved from `address`, below the topmost 64 KiB.
unsigned int comes_back_at(unsigned int address)
{
    return (address & 0x00800000) != 0 ? address | 0xFF000000 : address;
}

using Bytes = std::map<unsigned int, char>;

Bytes bytes_by_address(const MemoryMap& map)
{
    Bytes bytes;
    for (const auto& blob : map.blobs()) {
        unsigned int address = blob->address;
        for (const char byte : bytes_of(*blob)) {
            bytes[address++] = byte;
        }
    }
    return bytes;
}

TEST(HexRoundTrip, EveryByteComesBackWhereItsRecordGoes)
{
    for (unsigned int seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        MemoryMap map(256);
        Bytes expected;
        for (unsigned int island = 1 + below(8, random); island > 0; --island) {
            // Often right before a limit of the segments or where bit 23 changes.
            const unsigned int limit = (1 + below(0xFFFE, random)) << 16;
            const unsigned int address =
                below(2, random) == 0 ? limit - below(40, random) : limit + below(0xFF00, random);
            // Islands that bit 23 brings together would overlap.
            const auto neighbour = expected.lower_bound(comes_back_at(address) - 200);
            if (neighbour != expected.end() && neighbour->first < comes_back_at(address) + 200) {
                continue;
            }
            const QByteArray bytes = random_bytes(random, 1 + below(100, random));
            map.write(address, bytes);
            for (unsigned int i = 0; i < static_cast<unsigned int>(bytes.size()); ++i) {
                expected[comes_back_at(address + i / 16 * 16) + i % 16] =
                    bytes.at(static_cast<int>(i));
            }
        }
        MemoryMap again(16);
        ASSERT_TRUE(save_and_load(map, again));
        EXPECT_EQ(bytes_by_address(again), expected);
    }
}

TEST(HexRoundTrip, SecondAddressBytesFrom0x80OnComeBackAtTheTop)
{
    MemoryMap map(16);
    map.write(0x00F00010, QByteArray("A"));
    MemoryMap again(16);
    ASSERT_TRUE(save_and_load(map, again));
    EXPECT_EQ(blobs_of(again), (Blobs{{0xFFF00010, "41"}}));
}

} // namespace
