#include "memory/zarnBLOB.h"
#include "tests/memory/Images.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

using namespace test;

namespace
{

constexpr unsigned int max_offset = std::numeric_limits<unsigned int>::max();

static_assert(std::has_virtual_destructor_v<zarnBLOB>);
static_assert(!std::is_copy_constructible_v<zarnBLOB>);

/// Chunk sizes that are one byte, odd, small powers of two and larger than any content here.
class ZarnBlobOfAnyChunkSize : public testing::TestWithParam<unsigned int>
{
};

INSTANTIATE_TEST_SUITE_P(ChunkSizes, ZarnBlobOfAnyChunkSize, testing::Values(1, 3, 4, 16, 1000),
                         testing::PrintToStringParamName());

TEST(ZarnBlob, BeginsEmpty)
{
    const zarnBLOB blob(16);
    EXPECT_EQ(blob.size(), 0U);
    EXPECT_EQ(blob.capacity(), 0U);
    EXPECT_EQ(blob.chunk_size(), 16U);
}

TEST(ZarnBlob, WriteBeyondTheEndFillsTheGapWithZeros)
{
    zarnBLOB blob(16);
    blob.write(20, 4, "\x01\x02\x03\x04");
    EXPECT_EQ(blob.capacity(), 32U);
    EXPECT_EQ(blob.size(), 24U);
    EXPECT_EQ(bytes_of(blob), QByteArray(20, '\0') + "\x01\x02\x03\x04");
}

TEST(ZarnBlob, ReadAtTheEndCopiesNothing)
{
    zarnBLOB blob(16);
    blob.write(0, counting(24));
    QByteArray bytes = "untouched!";
    EXPECT_EQ(blob.read(24, 10, bytes.data()), 0U);
    EXPECT_EQ(bytes, "untouched!");
}

TEST(ZarnBlob, ReadStopsAtTheEnd)
{
    zarnBLOB blob(16);
    blob.write(0, counting(24));
    QByteArray bytes(100, '?');
    EXPECT_EQ(blob.read(8, 100, bytes.data()), 16U);
    EXPECT_EQ(bytes, counting(16, 8) + QByteArray(84, '?'));
}

TEST(ZarnBlob, ReadBeyondTheEndCopiesNothing)
{
    zarnBLOB blob(16);
    blob.write(0, counting(24));
    QByteArray bytes = "untouched!";
    EXPECT_EQ(blob.read(25, 10, bytes.data()), 0U);
    EXPECT_EQ(blob.read(max_offset, max_offset, bytes.data()), 0U);
    EXPECT_EQ(bytes, "untouched!");
}

TEST(ZarnBlob, ReadIntoAnArrayLeavesItAsLongAsWhatWasRead)
{
    zarnBLOB blob(16);
    blob.write(0, counting(24));
    QByteArray bytes = "something longer than what is read from the blob";
    EXPECT_EQ(blob.read(8, 100, bytes), 16U);
    EXPECT_EQ(bytes, counting(16, 8));
    EXPECT_EQ(blob.read(3, 5, bytes), 5U);
    EXPECT_EQ(bytes, counting(5, 3));
    EXPECT_EQ(blob.read(24, 10, bytes), 0U);
    EXPECT_EQ(bytes, QByteArray());
}

TEST(ZarnBlob, ReadOfAllThereMayBeTakesNoMoreMemoryThanThereIs)
{
    zarnBLOB blob(16);
    blob.write(0, counting(24));
    QByteArray bytes;
    EXPECT_EQ(blob.read(4, max_offset, bytes), 20U);
    EXPECT_EQ(bytes, counting(20, 4));
}

TEST(ZarnBlob, ReadIntoASharedArrayLeavesTheOtherCopyAlone)
{
    zarnBLOB blob(16);
    blob.write(0, counting(4));
    QByteArray bytes = "abcd";
    const QByteArray copy = bytes;
    blob.read(0, 4, bytes);
    EXPECT_EQ(copy, "abcd");
}

TEST(ZarnBlob, WriteInsideTheUsedRangeOverwritesInPlace)
{
    zarnBLOB blob(4);
    blob.write(0, counting(12));
    blob.write(3, QByteArray("\xAA\xBB\xCC"));
    EXPECT_EQ(digits_of(bytes_of(blob)), "000102AABBCC060708090A0B");
    EXPECT_EQ(blob.size(), 12U);
    EXPECT_EQ(blob.capacity(), 12U);
}

TEST(ZarnBlob, WriteAcrossTheEndOverwritesAndAppends)
{
    zarnBLOB blob(4);
    blob.write(0, counting(6));
    blob.write(5, QByteArray("\xAA\xBB\xCC\xDD"));
    EXPECT_EQ(digits_of(bytes_of(blob)), "0001020304AABBCCDD");
    EXPECT_EQ(blob.capacity(), 12U);
}

TEST(ZarnBlob, WriteOfNothingStillReachesItsOffset)
{
    zarnBLOB blob(16);
    blob.write(0, 0, nullptr);
    EXPECT_EQ(blob.size(), 0U);
    EXPECT_EQ(blob.capacity(), 0U);
    blob.write(20, 0, nullptr);
    EXPECT_EQ(blob.size(), 20U);
    EXPECT_EQ(blob.capacity(), 32U);
    EXPECT_EQ(bytes_of(blob), QByteArray(20, '\0'));
    blob.write(5, QByteArray());
    EXPECT_EQ(blob.size(), 20U);
}

TEST(ZarnBlob, WritePastTheLast32BitOffsetIsNotStored)
{
    zarnBLOB blob(16);
    blob.write(0, counting(4));
    const std::array<char, 2> bytes = {'x', 'y'};
    blob.write(max_offset, 1, bytes.data());
    blob.write(max_offset - 1, 2, bytes.data());
    blob.write(max_offset, 2, bytes.data());
    blob.write(4, max_offset, bytes.data());
    EXPECT_EQ(bytes_of(blob), counting(4));
    EXPECT_EQ(blob.capacity(), 16U);
}

TEST_P(ZarnBlobOfAnyChunkSize, CapacityIsWholeChunksAndNeverBelowTheSize)
{
    zarnBLOB blob(GetParam());
    for (unsigned int size = 1; size < 100; ++size) {
        blob.write(size - 1, 1, "x");
        EXPECT_EQ(blob.size(), size);
        EXPECT_EQ(blob.capacity() % GetParam(), 0U);
        EXPECT_GE(blob.capacity(), size);
        EXPECT_LT(blob.capacity() - size, GetParam());
    }
}

TEST_P(ZarnBlobOfAnyChunkSize, EveryRangeOfTheContentCanBeRead)
{
    const QByteArray content = counting(70);
    zarnBLOB blob(GetParam());
    blob.write(0, content);
    QByteArray bytes;
    for (int offset = 0; offset <= content.size(); ++offset) {
        for (int count = 0; count <= content.size() + 2; ++count) {
            blob.read(static_cast<unsigned int>(offset), static_cast<unsigned int>(count), bytes);
            ASSERT_EQ(digits_of(bytes), digits_of(content.mid(offset, count)))
                << "offset " << offset << " count " << count;
        }
    }
}

TEST_P(ZarnBlobOfAnyChunkSize, EveryRangeCanBeOverwritten)
{
    const QByteArray content = counting(40);
    for (int offset = 0; offset <= 45; ++offset) {
        for (int count = 0; count <= 20; ++count) {
            zarnBLOB blob(GetParam());
            blob.write(0, content);
            blob.write(static_cast<unsigned int>(offset), QByteArray(count, 'x'));
            QByteArray expected = content;
            expected.append(std::max(0, offset + count - expected.size()), '\0');
            expected.replace(offset, count, QByteArray(count, 'x'));
            ASSERT_EQ(digits_of(bytes_of(blob)), digits_of(expected))
                << "offset " << offset << " count " << count;
        }
    }
}

TEST(ZarnBlob, ClearFreesTheBytesAndKeepsTheChunkSize)
{
    zarnBLOB blob(16);
    blob.write(0, counting(40));
    blob.clear();
    EXPECT_EQ(blob.size(), 0U);
    EXPECT_EQ(blob.capacity(), 0U);
    EXPECT_EQ(blob.chunk_size(), 16U);
}

TEST(ZarnBlob, BytesOfBeforeAClearDoNotComeBack)
{
    zarnBLOB blob(16);
    blob.write(0, counting(40, 1));
    blob.clear();
    blob.write(39, 1, "x");
    EXPECT_EQ(bytes_of(blob), QByteArray(39, '\0') + 'x');
}

TEST(ZarnBlob, HexListingHasALinePerChunk)
{
    zarnBLOB blob(4);
    blob.write(0, counting(5, 1));
    EXPECT_EQ(blob.to_hex_string().toStdString(), "block 0: 01 02 03 04\nblock 1: 05\n");
}

TEST(ZarnBlob, HexListingOfAFullLastChunkShowsItWhole)
{
    zarnBLOB blob(2);
    blob.write(0, QByteArray("\xFF\x00\xAB\x7F", 4));
    EXPECT_EQ(blob.to_hex_string().toStdString(), "block 0: FF 00\nblock 1: AB 7F\n");
}

TEST(ZarnBlob, HexListingNumbersChunksInDecimal)
{
    zarnBLOB blob(1);
    blob.write(0, counting(12));
    EXPECT_EQ(blob.to_hex_string().toStdString(),
              "block 0: 00\nblock 1: 01\nblock 2: 02\nblock 3: 03\nblock 4: 04\nblock 5: 05\n"
              "block 6: 06\nblock 7: 07\nblock 8: 08\nblock 9: 09\nblock 10: 0A\nblock 11: 0B\n");
}

TEST(ZarnBlob, HexListingOfAnEmptyBlobIsEmpty)
{
    EXPECT_EQ(zarnBLOB(4).to_hex_string().toStdString(), "");
}

class ZarnBlobFiles : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_folder.isValid()); }

    QString path() const { return m_folder.filePath(QStringLiteral("bytes.bin")); }

    QString folder() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

TEST_F(ZarnBlobFiles, SavingLeavesOutAFullLastChunk)
{
    struct Case {
        int size;
        int saved;
    };

    const std::vector<Case> cases = {{0, 0},   {1, 1},   {15, 15}, {16, 0},
                                     {17, 17}, {32, 16}, {33, 33}, {48, 32}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.size);
        zarnBLOB blob(16);
        blob.write(0, counting(c.size));
        EXPECT_EQ(blob.save_to_file(path()), static_cast<unsigned int>(c.size));
        EXPECT_EQ(file_content(path()), counting(c.saved));
    }
}

TEST_F(ZarnBlobFiles, SavingReplacesWhatTheFileHeld)
{
    write_file(path(), "a much longer text than what is saved");
    zarnBLOB blob(16);
    blob.write(0, QByteArray("short"));
    blob.save_to_file(path());
    EXPECT_EQ(file_content(path()), "short");
}

TEST_F(ZarnBlobFiles, SavingToAFileThatCannotBeOpenedReturnsTheSize)
{
    zarnBLOB blob(16);
    blob.write(0, QByteArray("12345"));
    EXPECT_EQ(blob.save_to_file(folder()), 5U);
    EXPECT_EQ(blob.save_to_file(folder() + QStringLiteral("/no/such/folder")), 5U);
}

TEST_F(ZarnBlobFiles, LoadingTakesTheRawBytes)
{
    for (const int size : {0, 1, 15, 16, 17, 32, 1000, 100000}) {
        SCOPED_TRACE(size);
        const QByteArray content = counting(size, 7);
        write_file(path(), content);
        zarnBLOB blob(16);
        EXPECT_EQ(blob.load_from_file(path()), static_cast<unsigned int>(size));
        EXPECT_EQ(blob.size(), static_cast<unsigned int>(size));
        EXPECT_EQ(blob.capacity(), static_cast<unsigned int>((size + 15) / 16 * 16));
        EXPECT_EQ(bytes_of(blob), content);
    }
}

TEST_F(ZarnBlobFiles, LoadingReplacesTheContent)
{
    write_file(path(), "new");
    zarnBLOB blob(16);
    blob.write(0, counting(40, 1));
    blob.load_from_file(path());
    EXPECT_EQ(bytes_of(blob), "new");
    blob.write(10, 1, "x");
    EXPECT_EQ(bytes_of(blob), QByteArray("new\0\0\0\0\0\0\0x", 11));
}

TEST_F(ZarnBlobFiles, LoadingClearsThroughTheDerivedClass)
{
    struct Counting : zarnBLOB {
        using zarnBLOB::zarnBLOB;

        void clear() override
        {
            ++clears;
            zarnBLOB::clear();
        }

        int clears = 0;
    };

    write_file(path(), "new");
    Counting blob(16);
    blob.load_from_file(path());
    EXPECT_EQ(blob.clears, 1);
}

TEST_F(ZarnBlobFiles, LoadingAFileThatCannotBeOpenedEmptiesTheBlob)
{
    for (const QString& unreadable : {folder(), folder() + QStringLiteral("/missing.bin")}) {
        SCOPED_TRACE(unreadable.toStdString());
        zarnBLOB blob(16);
        blob.write(0, QByteArray("12345"));
        EXPECT_EQ(blob.load_from_file(unreadable), 0U);
        EXPECT_EQ(blob.size(), 0U);
        EXPECT_EQ(blob.capacity(), 0U);
    }
}

TEST_F(ZarnBlobFiles, AFileTooLongFor32BitOffsetsReadsAsEmpty)
{
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(qint64{max_offset} + 6)); // sparse: takes no space on the disk
    file.close();
    zarnBLOB blob(16);
    blob.write(0, QByteArray("12345"));
    EXPECT_EQ(blob.load_from_file(path()), 0U);
    EXPECT_EQ(blob.size(), 0U);
}

TEST_F(ZarnBlobFiles, SavedAndLoadedAgainTheBytesAreTheSame)
{
    zarnBLOB blob(16);
    blob.write(0, counting(1001));
    blob.save_to_file(path());
    zarnBLOB again(64);
    EXPECT_EQ(again.load_from_file(path()), 1001U);
    EXPECT_EQ(bytes_of(again), counting(1001));
}

} // namespace
