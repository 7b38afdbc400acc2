#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"
#include "tests/support/DebugMessages.h"

#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

using namespace test;

namespace
{

using Lines = std::vector<std::string>;

constexpr unsigned int max_address = std::numeric_limits<unsigned int>::max();

/// The map of most tests: 600 bytes from 0x1000 on in pieces of 256.
MemoryMap three_blobs()
{
    MemoryMap map(256);
    map.write(0x1000, counting(600, 1));
    return map;
}

/// What read() leaves in an array of `count` bytes "?", or nothing when it returns false.
std::string bytes_at(const MemoryMap& map, unsigned int address, unsigned int count)
{
    QByteArray bytes(static_cast<int>(count), '?');
    const bool any = map.read(address, count, bytes.data());
    if (!any) {
        EXPECT_EQ(bytes, QByteArray(static_cast<int>(count), '?'));
    }
    return any ? bytes.toStdString() : std::string();
}

// Callers cannot change a map's blobs.
static_assert(std::is_const_v<std::remove_reference_t<decltype(*MemoryMap(1).blobs()[0])>>);

TEST(MemoryMap, BeginsEmpty)
{
    MemoryMap map(16);
    EXPECT_TRUE(map.blobs().empty());
    EXPECT_EQ(map.size(), 0U);
    EXPECT_EQ(map.get_blob_index(0), -1);
    EXPECT_EQ(bytes_at(map, 0, 4), "");
    EXPECT_FALSE(map.has_overlaps());
}

TEST(MemoryMap, WriteCutsDataIntoPiecesOfTheChunkSize)
{
    const MemoryMap map = three_blobs();
    EXPECT_EQ(blobs_of(map), (Blobs{{0x1000, digits_of(counting(256, 1))},
                                    {0x1100, digits_of(counting(256, 1))},
                                    {0x1200, digits_of(counting(88, 1))}}));
    EXPECT_EQ(map.size(), 600U);
    for (const auto& blob : map.blobs()) {
        EXPECT_EQ(blob->chunk_size(), 256U);
        EXPECT_EQ(blob->capacity(), 256U);
    }
}

TEST(MemoryMap, WriteOfNothingAddsNothing)
{
    MemoryMap map(16);
    map.write(0x1000, 0, nullptr);
    map.write(0x1000, QByteArray());
    EXPECT_TRUE(map.blobs().empty());
}

TEST(MemoryMap, WriteAppendsInTheOrderOfTheCalls)
{
    MemoryMap map(16);
    map.write(0x2000, QByteArray("bb"));
    map.write(0x1000, QByteArray("aa"));
    map.write(0x3000, 2, "cc");
    EXPECT_EQ(blobs_of(map), (Blobs{{0x2000, "6262"}, {0x1000, "6161"}, {0x3000, "6363"}}));
}

TEST(MemoryMap, BlobIndexIsThatOfTheBlobWhichHoldsTheAddress)
{
    const MemoryMap map = three_blobs();
    EXPECT_EQ(map.get_blob_index(0x0FFF), -1);
    EXPECT_EQ(map.get_blob_index(0x1000), 0);
    EXPECT_EQ(map.get_blob_index(0x10FF), 0);
    EXPECT_EQ(map.get_blob_index(0x1100), 1);
    EXPECT_EQ(map.get_blob_index(0x1257), 2);
    EXPECT_EQ(map.get_blob_index(0x1258), -1);
}

TEST(MemoryMap, BlobIndexIsTheFirstInListOrder)
{
    MemoryMap map(16);
    map.write(0x1008, QByteArray(16, 'a'));
    map.write(0x1000, QByteArray(16, 'b'));
    EXPECT_EQ(map.get_blob_index(0x1000), 1);
    EXPECT_EQ(map.get_blob_index(0x100A), 0);
    EXPECT_EQ(map.get_blob_index(0x1017), 0);
}

TEST(MemoryMap, ReadCopiesTheCoveredPartAndLeavesGapsAlone)
{
    const MemoryMap map = three_blobs();
    EXPECT_EQ(bytes_at(map, 0x0FF8, 16), "????????\x01\x02\x03\x04\x05\x06\x07\x08");
    EXPECT_EQ(bytes_at(map, 0x1254, 8), "\x55\x56\x57\x58????");
    EXPECT_EQ(bytes_at(map, 0x2000, 16), "");
    EXPECT_EQ(bytes_at(map, 0x1000, 0), "");
}

TEST(MemoryMap, ReadGoesAcrossBlobs)
{
    const MemoryMap map = three_blobs();
    EXPECT_EQ(bytes_at(map, 0x1000, 600), counting(600, 1).toStdString());
    EXPECT_EQ(bytes_at(map, 0x0FFE, 604), "??" + counting(600, 1).toStdString() + "??");
}

TEST(MemoryMap, ReadAcrossAGapCopiesBothSides)
{
    MemoryMap map(16);
    map.write(0x10, QByteArray("ab"));
    map.write(0x14, QByteArray("cd"));
    EXPECT_EQ(bytes_at(map, 0x0F, 8), "?ab??cd?");
}

TEST(MemoryMap, ReadIntoAnArrayGivesItTheLength)
{
    MemoryMap map(16);
    map.write(0x10, QByteArray("abcd"));
    QByteArray bytes = "a longer text";
    EXPECT_TRUE(map.read(0x10, 4, bytes));
    EXPECT_EQ(bytes, "abcd");
    bytes = "12345678";
    EXPECT_TRUE(map.read(0x0E, 8, bytes));
    EXPECT_EQ(bytes, "12abcd78");
    EXPECT_FALSE(map.read(0x20, 3, bytes));
    EXPECT_EQ(bytes, "12a");
    EXPECT_TRUE(map.read(0x11, 2, bytes));
    EXPECT_EQ(bytes, "bc");
}

TEST(MemoryMap, ReadIntoASharedArrayLeavesTheOtherCopyAlone)
{
    MemoryMap map(16);
    map.write(0x10, QByteArray("abcd"));
    QByteArray bytes = "1234";
    const QByteArray copy = bytes;
    map.read(0x10, 4, bytes);
    EXPECT_EQ(bytes, "abcd");
    EXPECT_EQ(copy, "1234");
}

TEST(MemoryMap, ReadIntoAnArrayTooLongForMemoryThrows)
{
    const MemoryMap map = three_blobs();
    QByteArray bytes = "as it was";
    EXPECT_THROW(map.read(0, max_address, bytes), std::bad_alloc);
    EXPECT_EQ(bytes, "as it was");
}

TEST(MemoryMap, DataWrittenLaterWin)
{
    MemoryMap map = three_blobs();
    map.write(0x1010, QByteArray("\xAA\xBB\xCC\xDD"));
    ASSERT_EQ(map.blobs().size(), 4U);
    EXPECT_EQ(map.size(), 604U);
    EXPECT_EQ(bytes_at(map, 0x1010, 4), "\xAA\xBB\xCC\xDD");
    EXPECT_EQ(bytes_at(map, 0x100F, 6), "\x10\xAA\xBB\xCC\xDD\x15");
    EXPECT_EQ(map.get_blob_index(0x1010), 0);
}

TEST(MemoryMap, FirstOverlapIsReported)
{
    MemoryMap map = three_blobs();
    map.write(0x1010, QByteArray("\xAA\xBB\xCC\xDD"));
    map.write(0x1210, QByteArray("\xEE"));
    const DebugMessages messages;
    EXPECT_TRUE(map.has_overlaps());
    EXPECT_EQ(lines_of(messages), Lines{"\"Overlap at 1000 with size 256 with 1010 size 4\""});
}

TEST(MemoryMap, OverlapAddressesAreLowerCaseWithoutPadding)
{
    MemoryMap map(16);
    map.write(0xABC, QByteArray(11, 'x'));
    map.write(0xABD, QByteArray(12, 'x'));
    const DebugMessages messages;
    EXPECT_TRUE(map.has_overlaps());
    EXPECT_EQ(lines_of(messages), Lines{"\"Overlap at abc with size 11 with abd size 12\""});
}

TEST(MemoryMap, OverlapCheckSortsByAddress)
{
    MemoryMap map(16);
    map.write(0x80000000, QByteArray("d"));
    map.write(0x20, QByteArray("c"));
    map.write(0x00, QByteArray("a"));
    map.write(0x10, QByteArray("b"));
    EXPECT_FALSE(map.has_overlaps());
    EXPECT_EQ(blobs_of(map), (Blobs{{0x00, "61"}, {0x10, "62"}, {0x20, "63"}, {0x80000000, "64"}}));
}

TEST(MemoryMap, OverlapCheckSortsAMapWithOverlapsToo)
{
    MemoryMap map(16);
    map.write(0x20, QByteArray("ccc"));
    map.write(0x00, QByteArray("a"));
    map.write(0x21, QByteArray("d"));
    map.write(0x10, QByteArray("b"));
    const DebugMessages overlap_is_expected;
    EXPECT_TRUE(map.has_overlaps());
    EXPECT_EQ(blobs_of(map), (Blobs{{0x00, "61"}, {0x10, "62"}, {0x20, "636363"}, {0x21, "64"}}));
    EXPECT_EQ(bytes_at(map, 0x20, 3), "cdc");
}

TEST(MemoryMap, BlobsAtOneAddressKeepTheirOrder)
{
    MemoryMap map(16);
    for (char byte = 'a'; byte <= 'z'; ++byte) {
        map.write(0x1000, QByteArray(1, byte));
    }
    map.write(0x10, QByteArray("0"));
    const DebugMessages overlap_is_expected;
    EXPECT_TRUE(map.has_overlaps());
    EXPECT_EQ(bytes_at(map, 0x1000, 1), "z");
    EXPECT_EQ(map.get_blob_index(0x1000), 1);
    EXPECT_EQ(bytes_of(*map.blobs().at(1)), "a");
}

TEST(MemoryMap, TouchingBlobsDoNotOverlap)
{
    MemoryMap map(16);
    map.write(0x10, counting(16));
    map.write(0x00, counting(16));
    const DebugMessages messages;
    EXPECT_FALSE(map.has_overlaps());
    EXPECT_EQ(lines_of(messages), Lines{});
}

TEST(MemoryMap, OneBlobDoesNotOverlap)
{
    MemoryMap map(16);
    map.write(0x10, counting(16));
    EXPECT_FALSE(map.has_overlaps());
}

TEST(MemoryMap, WritesAfterTheOverlapCheckStillWin)
{
    MemoryMap map(16);
    map.write(0x10, QByteArray("abcd"));
    map.write(0x20, QByteArray("efgh"));
    EXPECT_FALSE(map.has_overlaps());
    map.write(0x11, QByteArray("X"));
    EXPECT_EQ(bytes_at(map, 0x10, 4), "aXcd");
    EXPECT_EQ(bytes_at(map, 0x20, 4), "efgh");
    EXPECT_EQ(map.get_blob_index(0x22), 1);
}

TEST(MemoryMap, ClearKeepsTheChunkSize)
{
    MemoryMap map = three_blobs();
    map.write(0x0, QByteArray("out of order"));
    map.clear();
    EXPECT_TRUE(map.blobs().empty());
    EXPECT_EQ(map.size(), 0U);
    map.write(0x1000, counting(300));
    EXPECT_EQ(map.blobs().size(), 2U);
    EXPECT_EQ(map.get_blob_index(0x112B), 1);
}

TEST(MemoryMap, AMovedMapTakesItsBlobsAlong)
{
    MemoryMap map = three_blobs();
    const MemoryMap moved = std::move(map);
    EXPECT_EQ(moved.size(), 600U);
    EXPECT_EQ(bytes_at(moved, 0x1254, 8), "\x55\x56\x57\x58????");
}

// Ends of ranges wrap at 2^32: a range that reaches it ends at or below its beginning and holds
// no address.

TEST(MemoryMap, TheLastAddressBelowTheWrapCanBeRead)
{
    MemoryMap map(16);
    map.write(max_address - 4, QByteArray("abcd"));
    EXPECT_EQ(bytes_at(map, max_address - 5, 5), "?abcd");
    EXPECT_EQ(map.get_blob_index(max_address - 1), 0);
    EXPECT_EQ(map.get_blob_index(max_address), -1);
}

TEST(MemoryMap, ABlobThatEndsAtTheWrapHoldsNoAddress)
{
    MemoryMap map(16);
    map.write(max_address - 3, QByteArray("abcd"));
    EXPECT_EQ(map.size(), 4U);
    EXPECT_EQ(map.get_blob_index(max_address - 3), -1);
    EXPECT_EQ(map.get_blob_index(max_address), -1);
    EXPECT_EQ(bytes_at(map, max_address - 7, 7), "");
    EXPECT_EQ(bytes_at(map, 0, 4), "");
    EXPECT_FALSE(map.has_overlaps());
}

TEST(MemoryMap, AReadAcrossTheWrapCopiesNothing)
{
    MemoryMap map(16);
    map.write(max_address - 8, QByteArray("abcd"));
    map.write(0, QByteArray("efgh"));
    for (const unsigned int count : {9U, 10U, 16U}) {
        SCOPED_TRACE(count);
        EXPECT_EQ(bytes_at(map, max_address - 8, count), "");
    }
    EXPECT_EQ(bytes_at(map, max_address - 8, 8), "abcd????");
    EXPECT_FALSE(map.has_overlaps());
    EXPECT_EQ(bytes_at(map, max_address - 8, 9), "");
    EXPECT_EQ(bytes_at(map, max_address - 8, 16), "");
    char byte = '?';
    EXPECT_FALSE(map.read(1, max_address, &byte));
    EXPECT_FALSE(map.read(max_address, max_address, &byte));
    EXPECT_EQ(byte, '?');
}

TEST(MemoryMap, PiecesOfAWriteGoOnAt0AfterTheWrap)
{
    MemoryMap map(16);
    map.write(max_address - 19, counting(40));
    EXPECT_EQ(blobs_of(map), (Blobs{{max_address - 19, digits_of(counting(16))},
                                    {max_address - 3, digits_of(counting(16, 16))},
                                    {12, digits_of(counting(8, 32))}}));
    EXPECT_EQ(bytes_at(map, 12, 8), counting(8, 32).toStdString());
    EXPECT_EQ(map.get_blob_index(12), 2);
    EXPECT_EQ(map.get_blob_index(max_address - 4), 0);
}

} // namespace
