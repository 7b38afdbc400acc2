#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/RowName.h"

#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

using namespace test;

namespace
{

using Lines = std::vector<std::string>;

const char* const record_failed = "MemoryMap::load_from_hex_file(): failed to read record";
const char* const no_colon = "MemoryMap::read_record(): failed to read character";
const char* const blobs_overlap = "MemoryMap::load_from_hex_file(): BLOBs overlap";

QString data_file(const std::string& name)
{
    return QStringLiteral(ZSERIAL_MEMORY_TEST_DATA "/%1.hex").arg(QString::fromStdString(name));
}

// ---- Files as they are found in the field ----

struct FileCase {
    std::string file; // of the data folder, without ".hex"
    Blobs image;      // in the map afterwards
    Lines messages;   // none when the file loads
};

std::ostream& operator<<(std::ostream& out, const FileCase& c)
{
    return out << c.file;
}

class HexFile : public testing::TestWithParam<FileCase>
{
};

TEST_P(HexFile, LoadsOrReportsWhyNot)
{
    MemoryMap map(16);
    const DebugMessages messages;
    EXPECT_EQ(map.load_from_hex_file(data_file(GetParam().file), {}), GetParam().messages.empty());
    EXPECT_EQ(blobs_of(map), GetParam().image);
    EXPECT_EQ(lines_of(messages), GetParam().messages);
}

const std::string sixteen = "000102030405060708090A0B0C0D0E0F";
const std::string sixteen_more = "101112131415161718191A1B1C1D1E1F";

INSTANTIATE_TEST_SUITE_P(
    Data, HexFile,
    testing::Values(
        FileCase{"one_record", {{0, "01020304"}}, {}},
        FileCase{
            "bad_checksum", {}, {"MemoryMap::read_record(): checksum mismatch", record_failed}},
        FileCase{"bad_checksum_in_second_record",
                 {{0, "01020304"}},
                 {"MemoryMap::read_record(): checksum mismatch", record_failed}},
        FileCase{"lower_case_digits", {{0xABCD, "DEADBEEF"}}, {}},
        FileCase{"carriage_returns", {{0, "01020304"}, {0x20, "05"}}, {}},
        FileCase{"blank_inside_record",
                 {},
                 {"MemoryMap::read_record(): failed to read data", record_failed}},
        FileCase{"cut_inside_record",
                 {},
                 {"MemoryMap::read_record(): failed to read data", record_failed}},
        FileCase{"touching_records", {{0, sixteen + sixteen_more}}, {}},
        FileCase{"gap_between_records", {{0, sixteen}, {0x20, sixteen_more}}, {}},
        FileCase{"records_in_falling_order", {{0, sixteen}, {0x10, sixteen_more}}, {}},
        FileCase{"record_across_segments", {{0xFFF8, sixteen + sixteen_more}}, {}},
        FileCase{"empty", {}, {}}, FileCase{"blank_lines_only", {}, {}},
        FileCase{"no_end_record", {{0, "01020304"}}, {}},
        FileCase{"no_end_record_and_no_line_end", {{0, "01020304"}}, {}},
        FileCase{"no_end_record_but_blank_lines", {{0, "01020304"}}, {}},
        FileCase{"no_end_record_but_text", {{0, "01020304"}}, {no_colon, record_failed}},
        FileCase{"text_only", {}, {no_colon, record_failed}},
        FileCase{"text_between_records", {{0, "01020304"}, {0x20, "05"}}, {}},
        FileCase{"anything_after_end_record", {{0, "01020304"}}, {}},
        FileCase{"same_address_twice",
                 {{0, "01020304"}, {0, "05060708"}},
                 {"\"Overlap at 0 with size 4 with 0 size 4\"", blobs_overlap}},
        FileCase{"overlap_out_of_order",
                 {{0x10, sixteen}, {0x1F, "FF"}, {0x30, "EE"}},
                 {"\"Overlap at 10 with size 16 with 1f size 1\"", blobs_overlap}},
        FileCase{"extended_segment_address",
                 {{0, "01020304"}},
                 {"MemoryMap::load_from_hex_file(): encountered ExtendedSegmentAddress in hex "
                  "file"}},
        FileCase{"start_segment_address",
                 {{0, "01020304"}},
                 {"MemoryMap::load_from_hex_file(): encountered StartSegmentAddress in hex file"}},
        FileCase{"extended_linear_address", {{0x00010008, "01020304"}, {0x7F7F0008, "05"}}, {}},
        FileCase{"extended_linear_address_with_high_second_byte", {{0xFF800000, "01020304"}}, {}},
        FileCase{"start_linear_address", {{0x12345678, "01020304"}}, {}},
        FileCase{"unknown_types", {{0, "01020304"}, {0x20, "05"}}, {}},
        FileCase{"record_without_data", {{0x1000, ""}}, {}},
        FileCase{"record_without_data_after_data", {{0, "0102030405"}, {0x40, ""}}, {}}),
    [](const auto& row) { return row.param.file; });

// ---- Address records ----

struct AddressCase {
    const char* name;
    int type;
    const char* data;
    unsigned int upper; // in force afterwards
};

std::ostream& operator<<(std::ostream& out, const AddressCase& c)
{
    return out << c.name;
}

/// Loads texts from a file of its own.
class HexText : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_folder.isValid()); }

    bool load(MemoryMap& map, const QByteArray& text, const QSet<unsigned int>& boundaries = {})
    {
        const QString path = m_folder.filePath(QStringLiteral("text.hex"));
        write_file(path, text);
        return map.load_from_hex_file(path, boundaries);
    }

    QString folder() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};

class HexAddressRecord : public HexText, public testing::WithParamInterface<AddressCase>
{
};

TEST_P(HexAddressRecord, MovesTheDataThatFollow)
{
    MemoryMap map(16);
    EXPECT_TRUE(
        load(map, hex_record(4, 0, "\x11\x11") +
                      hex_record(GetParam().type, 0xAAAA, QByteArray::fromHex(GetParam().data)) +
                      data_record(0x0010, "42")));
    EXPECT_EQ(blobs_of(map), (Blobs{{GetParam().upper + 0x10, "42"}}));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HexAddressRecord,
    testing::Values(AddressCase{"linear_without_data", 4, "", 0},
                    AddressCase{"linear_one_byte", 4, "12", 0x12000000},
                    AddressCase{"linear_one_high_byte", 4, "F2", 0xF2000000},
                    AddressCase{"linear_two_bytes", 4, "1234", 0x12340000},
                    AddressCase{"linear_second_byte_0x7F", 4, "007F", 0x007F0000},
                    AddressCase{"linear_second_byte_0x80", 4, "0080", 0xFF800000},
                    AddressCase{"linear_second_byte_0xF0", 4, "00F0", 0xFFF00000},
                    AddressCase{"linear_further_bytes", 4, "12345678", 0x12340000},
                    AddressCase{"linear_further_high_byte", 4, "123480", 0x12340000},
                    AddressCase{"start_without_data", 5, "", 0},
                    AddressCase{"start_one_byte", 5, "12", 0x12000000},
                    AddressCase{"start_two_bytes", 5, "1234", 0x12340000},
                    AddressCase{"start_three_bytes", 5, "123456", 0x12345600},
                    AddressCase{"start_four_bytes", 5, "12345678", 0x12345678},
                    AddressCase{"start_five_bytes", 5, "1234567880", 0x12345678},
                    AddressCase{"start_high_second_byte", 5, "00800000", 0xFF800000},
                    AddressCase{"start_high_third_byte", 5, "00008000", 0xFFFF8000},
                    AddressCase{"start_high_last_byte", 5, "00000080", 0xFFFFFF80}),
    row_name);

// ---- Boundaries ----

struct BoundaryCase {
    const char* name;
    QSet<unsigned int> boundaries;
    Blobs image;
};

std::ostream& operator<<(std::ostream& out, const BoundaryCase& c)
{
    return out << c.name;
}

class HexBoundaries : public testing::TestWithParam<BoundaryCase>
{
};

TEST_P(HexBoundaries, CutBetweenRecords)
{
    MemoryMap map(16);
    EXPECT_TRUE(map.load_from_hex_file(data_file("touching_records"), GetParam().boundaries));
    EXPECT_EQ(blobs_of(map), GetParam().image);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, HexBoundaries,
    testing::Values(
        BoundaryCase{"between_records", {0x10}, {{0, sixteen}, {0x10, sixteen_more}}},
        BoundaryCase{"inside_first_record", {0x08}, {{0, sixteen + sixteen_more}}},
        BoundaryCase{"inside_second_record", {0x11, 0x1F}, {{0, sixteen + sixteen_more}}},
        BoundaryCase{"at_both_ends", {0x00, 0x20}, {{0, sixteen + sixteen_more}}},
        BoundaryCase{"everywhere", {0x00, 0x10, 0x20}, {{0, sixteen}, {0x10, sixteen_more}}}),
    row_name);

TEST_F(HexText, BoundaryIsAFullAddress)
{
    const QByteArray text = hex_record(4, 0, QByteArray("\x00\x01", 2)) + data_record(0x10, "01") +
                            data_record(0x11, "02");
    MemoryMap map(16);
    EXPECT_TRUE(load(map, text, {0x00000011}));
    EXPECT_EQ(blobs_of(map), (Blobs{{0x10010, "0102"}}));
    map.clear();
    EXPECT_TRUE(load(map, text, {0x00010011}));
    EXPECT_EQ(blobs_of(map), (Blobs{{0x10010, "01"}, {0x10011, "02"}}));
}

// ---- Blobs ----

TEST_F(HexText, BlobsHaveTheChunkSizeOfTheMap)
{
    MemoryMap map(32);
    EXPECT_TRUE(load(map, data_record(0, "01") + data_record(0x10, "02")));
    ASSERT_EQ(map.blobs().size(), 2U);
    EXPECT_EQ(map.blobs()[0]->chunk_size(), 32U);
    EXPECT_EQ(map.blobs()[1]->chunk_size(), 32U);
    EXPECT_EQ(map.blobs()[1]->capacity(), 32U);
}

TEST_F(HexText, LoadingAddsToWhatTheMapHolds)
{
    MemoryMap map(16);
    map.write(0x10, QByteArray("a"));
    EXPECT_TRUE(load(map, data_record(0x11, "62") + data_record(0x00, "63")));
    EXPECT_EQ(blobs_of(map), (Blobs{{0x00, "63"}, {0x10, "61"}, {0x11, "62"}}));
}

TEST_F(HexText, TheSameFileTwiceOverlapsItself)
{
    MemoryMap map(16);
    const QByteArray text = data_record(0x11, "62");
    EXPECT_TRUE(load(map, text));
    const DebugMessages messages;
    EXPECT_FALSE(load(map, text));
    EXPECT_EQ(lines_of(messages),
              (Lines{"\"Overlap at 11 with size 1 with 11 size 1\"", blobs_overlap}));
}

TEST_F(HexText, ARecordContinuesOnlyTheBlobOfTheRecordBefore)
{
    MemoryMap map(16);
    EXPECT_TRUE(load(map, data_record(0x00, "01") + data_record(0x10, "02") +
                              data_record(0x01, "03") + data_record(0x11, "04")));
    EXPECT_EQ(blobs_of(map), (Blobs{{0x00, "01"}, {0x01, "03"}, {0x10, "02"}, {0x11, "04"}}));
}

TEST_F(HexText, OtherRecordsInBetweenDoNotEndABlob)
{
    MemoryMap map(16);
    EXPECT_TRUE(load(map, data_record(0x00, "01") + hex_record(4, 0, "") +
                              hex_record(9, 0x1234, "ignored") + data_record(0x01, "02")));
    EXPECT_EQ(blobs_of(map), (Blobs{{0x00, "0102"}}));
}

TEST_F(HexText, RecordsLongerThanAChunkAreStoredWhole)
{
    MemoryMap map(16);
    EXPECT_TRUE(
        load(map, hex_record(0, 0x00, counting(255)) + hex_record(0, 0xFF, counting(255, 255))));
    EXPECT_EQ(blobs_of(map), (Blobs{{0, digits_of(counting(510))}}));
}

TEST_F(HexText, ABlobGoesOnAcrossTheEndOfTheAddressSpace)
{
    MemoryMap map(16);
    EXPECT_TRUE(load(map, hex_record(4, 0, "\xFF\xFF") + data_record(0xFFFC, "01020304") +
                              hex_record(4, 0, "") + data_record(0x0000, "05060708")));
    EXPECT_EQ(blobs_of(map), (Blobs{{0xFFFFFFFC, "0102030405060708"}}));
    EXPECT_EQ(map.get_blob_index(0xFFFFFFFC), -1);
    QByteArray bytes;
    EXPECT_FALSE(map.read(0, 16, bytes));
    EXPECT_FALSE(map.read(0xFFFFFFF0, 16, bytes));
}

TEST_F(HexText, AnEmptyBlobOverlapsOnlyWhatItLiesInside)
{
    MemoryMap map(16);
    EXPECT_TRUE(load(map, data_record(0x10, "") + hex_record(9, 0, "") + data_record(0x00, "01") +
                              data_record(0x10, "0203")));
    EXPECT_EQ(blobs_of(map), (Blobs{{0x00, "01"}, {0x10, ""}, {0x10, "0203"}}));
    EXPECT_EQ(map.get_blob_index(0x10), 2);
    const DebugMessages messages;
    EXPECT_FALSE(load(map, data_record(0x11, "")));
    EXPECT_EQ(lines_of(messages),
              (Lines{"\"Overlap at 10 with size 2 with 11 size 0\"", blobs_overlap}));
}

TEST_F(HexText, LinesMayLieAcrossTheBlocksInWhichAFileIsRead)
{
    QByteArray text;
    QByteArray bytes;
    for (int i = 0; text.size() < 300000; ++i) {
        const QByteArray data = counting(1 + i % 32, i);
        text += hex_record(4, 0, QByteArray("\x00", 1) + static_cast<char>(bytes.size() >> 16));
        text += hex_record(0, static_cast<unsigned int>(bytes.size()), data);
        bytes += data;
    }
    MemoryMap map(16);
    EXPECT_TRUE(load(map, text));
    EXPECT_EQ(blobs_of(map), (Blobs{{0, digits_of(bytes)}}));
}

TEST_F(HexText, TheLongestLineMayBeginAnywhereAroundTheEndOfABlock)
{
    const QByteArray bytes = counting(255, 1);
    const QByteArray lines = hex_record(0, 0, bytes) + data_record(255, "AA");
    for (int before = 65536 - lines.size() - 2; before <= 65536 + 2; ++before) {
        SCOPED_TRACE(before);
        MemoryMap map(16);
        EXPECT_TRUE(load(map, QByteArray(before, '\n') + lines));
        EXPECT_EQ(blobs_of(map), (Blobs{{0, digits_of(bytes) + "AA"}}));
        MemoryMap cut(16);
        const DebugMessages messages;
        EXPECT_FALSE(load(cut, QByteArray(before, '\n') + lines.chopped(2)));
        EXPECT_EQ(blobs_of(cut), (Blobs{{0, digits_of(bytes)}}));
        EXPECT_EQ(lines_of(messages),
                  (Lines{"MemoryMap::read_record(): failed to read checksum", record_failed}));
    }
}

TEST_F(HexText, ALongRunOfTextBetweenRecordsIsSkipped)
{
    MemoryMap map(16);
    EXPECT_TRUE(load(map, data_record(0, "01") + QByteArray(200000, '.') + data_record(1, "02") +
                              QByteArray(200000, '\n')));
    EXPECT_EQ(blobs_of(map), (Blobs{{0, "0102"}}));
}

TEST_F(HexText, EveryCutThroughAFileLoadsOrFailsInWords)
{
    const QByteArray text = data_record(0, "0102") + data_record(8, "03") + ":00000001FF\n";
    const int first = data_record(0, "0102").size();
    const int second = first + data_record(8, "03").size();
    for (int length = 0; length <= text.size(); ++length) {
        SCOPED_TRACE(length);
        MemoryMap map(16);
        const DebugMessages messages;
        const bool between_records = length == 0 || (length >= first - 1 && length <= first) ||
                                     (length >= second - 1 && length <= second) ||
                                     length >= text.size() - 1;
        EXPECT_EQ(load(map, text.left(length)), between_records);
        EXPECT_EQ(messages.texts().size(), between_records ? 0 : 2);
        EXPECT_EQ(map.size(), (length >= first - 1 ? 2U : 0U) + (length >= second - 1 ? 1U : 0U));
    }
}

// ---- Files that cannot be read ----

TEST_F(HexText, AFileThatCannotBeOpenedIsReported)
{
    for (const QString& path : {folder(), folder() + QStringLiteral("/missing.hex")}) {
        SCOPED_TRACE(path.toStdString());
        MemoryMap map(16);
        map.write(0x10, QByteArray("kept"));
        const DebugMessages messages;
        EXPECT_FALSE(map.load_from_hex_file(path, {}));
        EXPECT_EQ(lines_of(messages),
                  Lines{"MemoryMap::load_from_hex_file(): failed to open file"});
        EXPECT_EQ(map.size(), 4U);
    }
}

TEST(HexFileOfTheSystem, AReadErrorIsNotTakenForTheEndOfTheFile)
{
    MemoryMap map(16);
    const DebugMessages messages;
    // Opens like any file, but nothing is mapped at its beginning, so that reading fails.
    EXPECT_FALSE(map.load_from_hex_file(QStringLiteral("/proc/self/mem"), {}));
    EXPECT_EQ(lines_of(messages), (Lines{no_colon, record_failed}));
}

} // namespace
