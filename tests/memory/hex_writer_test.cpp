#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"
#include "tests/support/DebugMessages.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace test;

namespace
{

using Lines = std::vector<std::string>;

class HexWriter : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_folder.isValid()); }

    QString path() const { return m_folder.filePath(QStringLiteral("out.hex")); }

    QString folder() const { return m_folder.path(); }

    /// What `write(QFile&)` puts into a file.
    template <typename Write>
    std::string written_by(Write write) const
    {
        QFile file(path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        write(file);
        file.close();
        return file_content(path()).toStdString();
    }

    /// What a blob with these bytes writes.
    std::string content_of(unsigned int address, const QByteArray& bytes, int upper) const
    {
        AddressedBLOB blob(16);
        blob.address = address;
        blob.write(0, bytes);
        return written_by([&](QFile& file) {
            blob.write_content_to_file(file, static_cast<unsigned short>(upper));
        });
    }

    std::string saved(const MemoryMap& map) const
    {
        EXPECT_TRUE(map.save_to_hex_file(path()));
        return file_content(path()).toStdString();
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(HexWriter, RecordIsOneLineOfUpperCaseDigits)
{
    const AddressedBLOB blob(16);
    EXPECT_EQ(written_by([&](QFile& file) {
                  blob.write_record_to_file(file, IntelHexFileRecordType::StartLinearAddress,
                                            0xABCD, QByteArray::fromHex("0090ef"));
              }),
              ":03ABCD050090EF01\n");
}

TEST_F(HexWriter, RecordWithoutDataHasAChecksumToo)
{
    const AddressedBLOB blob(16);
    EXPECT_EQ(written_by([&](QFile& file) {
                  blob.write_record_to_file(file, IntelHexFileRecordType::Data, 0, {});
                  blob.write_record_to_file(file, IntelHexFileRecordType::EndOfFile, 0, {});
              }),
              ":0000000000\n:00000001FF\n");
}

TEST_F(HexWriter, CountOfARecordIsTheLow8BitsOfItsLength)
{
    const AddressedBLOB blob(16);
    EXPECT_EQ(written_by([&](QFile& file) {
                  blob.write_record_to_file(file, IntelHexFileRecordType::Data, 0,
                                            QByteArray(257, '\0'));
              }),
              ":01000000" + std::string(2 * 257, '0') + "FF\n");
}

TEST_F(HexWriter, DataRecord)
{
    const AddressedBLOB blob(16);
    EXPECT_EQ(written_by([&](QFile& file) {
                  blob.write_data_record_to_file(file, 0, QByteArray("\x01\x02\x03\x04"));
              }),
              ":0400000001020304F2\n");
}

TEST_F(HexWriter, ExtendedLinearAddressRecordHoldsTheUpperHalf)
{
    const AddressedBLOB blob(16);
    EXPECT_EQ(written_by([&](QFile& file) {
                  blob.write_extended_linear_address_record_to_file(file, 0x00010008);
                  blob.write_extended_linear_address_record_to_file(file, 0x1234ABCD);
                  blob.write_extended_linear_address_record_to_file(file, 0xFFFF0000);
              }),
              ":020000040001F9\n:020000041234B4\n:02000004FFFFFC\n");
}

TEST_F(HexWriter, EndRecord)
{
    const AddressedBLOB blob(16);
    EXPECT_EQ(written_by([&](QFile& file) { blob.write_eof_to_file(file); }), ":00000001FF\n");
}

TEST_F(HexWriter, EmptyBlobWritesNothing)
{
    EXPECT_EQ(content_of(0x1000, {}, 0xFFFF), "");
}

TEST_F(HexWriter, ContentGoesInRecordsOf16Bytes)
{
    EXPECT_EQ(content_of(0, counting(33), 0), ":10000000000102030405060708090A0B0C0D0E0F78\n"
                                              ":10001000101112131415161718191A1B1C1D1E1F68\n"
                                              ":0100200020BF\n");
}

TEST_F(HexWriter, UpperHalfInForceAlreadyIsNotWrittenAgain)
{
    EXPECT_EQ(content_of(0x00010000, "A", 0x0001), ":0100000041BE\n");
    EXPECT_EQ(content_of(0x00010000, "A", 0x0000), ":020000040001F9\n:0100000041BE\n");
    EXPECT_EQ(content_of(0xFFFF0000, "A", 0xFFFF), ":0100000041BE\n");
}

TEST_F(HexWriter, UpperHalfIsWrittenWhereItChanges)
{
    EXPECT_EQ(content_of(0x0001FFF0, QByteArray(32, '\0'), 0xFFFF),
              ":020000040001F9\n:10FFF00000000000000000000000000000000000"
              "01\n"
              ":020000040002F8\n:1000000000000000000000000000000000000000F0\n");
}

TEST_F(HexWriter, ARecordIsNotSplitAtTheEndOfASegment)
{
    EXPECT_EQ(content_of(0x0001FFF8, QByteArray(32, '\0'), 0xFFFF),
              ":020000040001F9\n:10FFF80000000000000000000000000000000000F9\n"
              ":020000040002F8\n:1000080000000000000000000000000000000000E8\n");
}

TEST_F(HexWriter, ContentAcrossTheEndOfTheAddressSpaceGoesOnAt0)
{
    EXPECT_EQ(content_of(0xFFFFFFF0, QByteArray(17, '\0'), 0xFFFF),
              ":10FFF0000000000000000000000000000000000001\n"
              ":020000040000FA\n:0100000000FF\n");
}

TEST_F(HexWriter, SavingAnEmptyMapWritesTheEndRecord)
{
    EXPECT_EQ(saved(MemoryMap(16)), ":00000001FF\n");
}

TEST_F(HexWriter, SavingABlobThatBeginsInsideASegment)
{
    MemoryMap map(32);
    map.write(0x00010008, counting(20));
    ASSERT_EQ(map.blobs().size(), 1U);
    EXPECT_EQ(saved(map), ":020000040001F9\n"
                          ":10000800000102030405060708090A0B0C0D0E0F70\n"
                          ":0400180010111213"
                          "9E\n"
                          ":00000001FF\n");
}

TEST_F(HexWriter, LargeBlobsHaveFullRecordsUpToTheirEnd)
{
    MemoryMap map(0x10000);
    map.write(0, QByteArray(0x8001, 'a'));
    const QStringList lines =
        QString::fromStdString(saved(map)).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    EXPECT_EQ(lines.filter(QRegularExpression(QStringLiteral("^:10"))).size(), 0x800);
    EXPECT_EQ(lines.filter(QRegularExpression(QStringLiteral("^:01"))).size(), 1);
}

TEST_F(HexWriter, EveryBlobBeginsWithItsUpperHalf)
{
    MemoryMap map(16);
    map.write(0x00010000, QByteArray("A"));
    map.write(0x00010001, QByteArray("B"));
    EXPECT_EQ(saved(map), ":020000040001F9\n:0100000041BE\n"
                          ":020000040001F9\n:0100010042BC\n"
                          ":00000001FF\n");
}

TEST_F(HexWriter, BlobsOfTheLastSegmentBeginWithoutIt)
{
    MemoryMap map(16);
    map.write(0x00010000, QByteArray("A"));
    map.write(0xFFFF0001, QByteArray("B"));
    EXPECT_EQ(saved(map), ":020000040001F9\n:0100000041BE\n:0100010042BC\n:00000001FF\n");
}

TEST_F(HexWriter, BlobsAreSavedInListOrder)
{
    MemoryMap map(16);
    map.write(0x20, QByteArray("B"));
    map.write(0x10, QByteArray("A"));
    EXPECT_EQ(saved(map), ":020000040000FA\n:01002000429D\n"
                          ":020000040000FA\n:0100100041AE\n"
                          ":00000001FF\n");
}

TEST_F(HexWriter, SavingReplacesWhatTheFileHeld)
{
    write_file(path(), QByteArray(1000, '?'));
    EXPECT_EQ(saved(MemoryMap(16)), ":00000001FF\n");
}

TEST_F(HexWriter, AFileThatCannotBeOpenedForWritingIsReportedWithItsPath)
{
    const QString unwritable = folder() + QStringLiteral("/no such folder/%1 %2.hex");
    const DebugMessages messages;
    EXPECT_FALSE(MemoryMap(16).save_to_hex_file(unwritable));
    EXPECT_FALSE(MemoryMap(16).save_to_hex_file(folder()));
    const std::string text = "\"MemoryMap::save_to_hex_file(): could not open file '";
    EXPECT_EQ(lines_of(messages), (Lines{text + unwritable.toStdString() + "' for writing\"",
                                         text + folder().toStdString() + "' for writing\""}));
}

} // namespace
