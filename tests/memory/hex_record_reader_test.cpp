#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"
#include "tests/support/DebugMessages.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

using namespace test;

namespace
{

using Lines = std::vector<std::string>;

/// Reads from a file that a test fills with a text.
class HexRecordReader : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_folder.isValid()); }

    /// The file, open for reading at its beginning.
    QFile& file_with(const QByteArray& text)
    {
        m_file.close();
        m_file.setFileName(m_folder.filePath(QStringLiteral("text.hex")));
        write_file(m_file.fileName(), text);
        EXPECT_TRUE(m_file.open(QIODevice::ReadOnly));
        return m_file;
    }

    bool read_record(QFile& file)
    {
        return m_map.read_record_from_file(file, m_type, m_address, m_data);
    }

    const MemoryMap m_map{16};
    IntelHexFileRecordType m_type{};
    unsigned short m_address = 0;
    QByteArray m_data;

private:
    QTemporaryDir m_folder;
    QFile m_file;
};

TEST_F(HexRecordReader, DigitsAreThoseOfBase16InEitherCaseAndNothingElse)
{
    for (int c = 0; c < 256; ++c) {
        SCOPED_TRACE(c);
        unsigned char value = 99;
        const bool expected = std::isxdigit(c) != 0;
        QFile& file = file_with(QByteArray(1, static_cast<char>(c)));
        EXPECT_EQ(m_map.read_hex_digit_from_file(file, value), expected);
        EXPECT_EQ(value, expected ? QByteArray(1, static_cast<char>(c)).toInt(nullptr, 16) : 99);
        EXPECT_EQ(file.pos(), 1);
    }
}

TEST_F(HexRecordReader, DigitFailsAtTheEndOfTheFile)
{
    unsigned char value = 99;
    EXPECT_FALSE(m_map.read_hex_digit_from_file(file_with(""), value));
    EXPECT_EQ(value, 99);
}

TEST_F(HexRecordReader, ByteIsTwoDigitsHighFirst)
{
    QFile& file = file_with("A5f00");
    unsigned char value = 0;
    unsigned char checksum = 1;
    EXPECT_TRUE(m_map.read_hex_byte_from_file(file, value, checksum));
    EXPECT_EQ(value, 0xA5);
    EXPECT_EQ(checksum, 0xA6);
    EXPECT_TRUE(m_map.read_hex_byte_from_file(file, value, checksum));
    EXPECT_EQ(value, 0xF0);
    EXPECT_EQ(checksum, 0x96); // modulo 256
    EXPECT_FALSE(m_map.read_hex_byte_from_file(file, value, checksum));
    EXPECT_EQ(checksum, 0x96);
}

TEST_F(HexRecordReader, ByteFailsAtABadDigitInEitherPlace)
{
    for (const char* text : {"", "0", "G0", "0G", " 0", "0 ", "-1", "+1", "0x"}) {
        SCOPED_TRACE(text);
        unsigned char value = 0;
        unsigned char checksum = 0;
        EXPECT_FALSE(m_map.read_hex_byte_from_file(file_with(text), value, checksum));
        EXPECT_EQ(checksum, 0);
    }
}

TEST_F(HexRecordReader, BytesReplaceWhatTheArrayHeld)
{
    QByteArray data = "a longer text";
    unsigned char checksum = 0;
    EXPECT_TRUE(m_map.read_hex_bytes_from_file(file_with("0102FF80"), 3, data, checksum));
    EXPECT_EQ(digits_of(data), "0102FF");
    EXPECT_EQ(checksum, 0x02);
}

TEST_F(HexRecordReader, NoBytesSucceedAtOnce)
{
    QByteArray data = "text";
    unsigned char checksum = 7;
    QFile& file = file_with("xyz");
    EXPECT_TRUE(m_map.read_hex_bytes_from_file(file, 0, data, checksum));
    EXPECT_EQ(data, QByteArray());
    EXPECT_EQ(checksum, 7);
    EXPECT_EQ(file.pos(), 0);
}

TEST_F(HexRecordReader, BytesFailAtTheEndOfTheFileAndKeepWhatCameBefore)
{
    QByteArray data;
    unsigned char checksum = 0;
    EXPECT_FALSE(m_map.read_hex_bytes_from_file(file_with("01020"), 3, data, checksum));
    EXPECT_EQ(digits_of(data), "0102");
}

TEST_F(HexRecordReader, RecordIsTakenApart)
{
    QFile& file = file_with(":03AB4200010203"
                            "0A\n");
    EXPECT_TRUE(read_record(file));
    EXPECT_EQ(m_type, IntelHexFileRecordType::Data);
    EXPECT_EQ(m_address, 0xAB42);
    EXPECT_EQ(digits_of(m_data), "010203");
    EXPECT_EQ(file.pos(), 17); // nothing beyond the checksum is touched
}

TEST_F(HexRecordReader, RecordTypeIsNotChecked)
{
    for (const int type : {0, 1, 2, 3, 4, 5, 6, 0x7F, 0x80, 0xFF}) {
        SCOPED_TRACE(type);
        EXPECT_TRUE(read_record(file_with(hex_record(type, 0x1234, "ab"))));
        EXPECT_EQ(static_cast<int>(m_type), type);
        EXPECT_EQ(m_address, 0x1234);
        EXPECT_EQ(m_data, "ab");
    }
}

TEST_F(HexRecordReader, RecordMayBeEmptyOrAsLongAsItsCountCanSay)
{
    for (const int count : {0, 1, 16, 255}) {
        SCOPED_TRACE(count);
        EXPECT_TRUE(read_record(file_with(hex_record(0, 0, counting(count)))));
        EXPECT_EQ(digits_of(m_data), digits_of(counting(count)));
    }
}

TEST_F(HexRecordReader, EveryChecksumButTheRightOneIsAMismatch)
{
    for (int checksum = 0; checksum < 256; ++checksum) {
        SCOPED_TRACE(checksum);
        const DebugMessages messages;
        const QByteArray digits = QByteArray(1, static_cast<char>(checksum)).toHex();
        const bool right = checksum == 0xF2;
        EXPECT_EQ(read_record(file_with(":0400000001020304" + digits)), right);
        EXPECT_EQ(lines_of(messages),
                  right ? Lines{} : Lines{"MemoryMap::read_record(): checksum mismatch"});
    }
}

TEST_F(HexRecordReader, RecordWithAWrongChecksumIsThereAllTheSame)
{
    EXPECT_FALSE(read_record(file_with(":03AB4204010203"
                                       "0A\n")));
    EXPECT_EQ(m_type, IntelHexFileRecordType::ExtendedLinearAddress);
    EXPECT_EQ(m_address, 0xAB42);
    EXPECT_EQ(digits_of(m_data), "010203");
}

TEST_F(HexRecordReader, RecordWithoutItsChecksumIsThereAllTheSame)
{
    EXPECT_FALSE(read_record(file_with(":03AB42040102030")));
    EXPECT_EQ(m_type, IntelHexFileRecordType::ExtendedLinearAddress);
    EXPECT_EQ(m_address, 0xAB42);
    EXPECT_EQ(digits_of(m_data), "010203");
}

TEST_F(HexRecordReader, RecordWithoutAllItsDataLeavesTypeAndAddressAlone)
{
    m_type = IntelHexFileRecordType::EndOfFile;
    m_address = 0x1234;
    EXPECT_FALSE(read_record(file_with(":03AB42040102")));
    EXPECT_EQ(m_type, IntelHexFileRecordType::EndOfFile);
    EXPECT_EQ(m_address, 0x1234);
    EXPECT_EQ(digits_of(m_data), "0102");
}

TEST_F(HexRecordReader, CharacterThatDoesNotFitIsTheLastOneRead)
{
    QFile& file = file_with(":03AB42x4010203");
    EXPECT_FALSE(read_record(file));
    EXPECT_EQ(file.pos(), 8);
}

TEST_F(HexRecordReader, AllUpToTheColonIsSkipped)
{
    QFile& file = file_with("; a comment, 0123\r\n\t \xFF:00000001FFxyz\n\n:0100000041BE");
    EXPECT_TRUE(read_record(file));
    EXPECT_EQ(m_type, IntelHexFileRecordType::EndOfFile);
    EXPECT_EQ(digits_of(m_data), "");
    EXPECT_TRUE(read_record(file));
    EXPECT_EQ(m_type, IntelHexFileRecordType::Data);
    EXPECT_EQ(m_data, "A");
}

TEST_F(HexRecordReader, BlanksBeforeTheEndOfTheFileAreNoRecord)
{
    for (const char* text : {"", "\n", " \t\r\n", "0400000001020304F2"}) {
        SCOPED_TRACE(text);
        const DebugMessages messages;
        EXPECT_FALSE(read_record(file_with(text)));
        EXPECT_EQ(lines_of(messages), Lines{"MemoryMap::read_record(): failed to read character"});
    }
}

/// The message when the character at `position` of the line ":0400000001020304F2" is bad.
std::string message_for_position(int position)
{
    const std::string prefix = "MemoryMap::read_record(): failed to read ";
    if (position < 1) {
        return prefix + "character";
    }
    if (position < 3) {
        return prefix + "byte_count";
    }
    if (position < 5) {
        return prefix + "address_hi";
    }
    if (position < 7) {
        return prefix + "address_lo";
    }
    if (position < 9) {
        return prefix + "record_type_byte";
    }
    return prefix + (position < 17 ? "data" : "checksum");
}

TEST_F(HexRecordReader, ARecordCutShortReportsTheFieldThatIsMissing)
{
    const QByteArray line = ":0400000001020304F2";
    for (int length = 0; length < line.size(); ++length) {
        SCOPED_TRACE(length);
        const DebugMessages messages;
        EXPECT_FALSE(read_record(file_with(line.left(length))));
        EXPECT_EQ(lines_of(messages), Lines{message_for_position(length)});
    }
}

TEST_F(HexRecordReader, ACharacterThatIsNoDigitReportsItsField)
{
    const QByteArray line = ":0400000001020304F2";
    for (const char bad : {' ', '\n', '\r', 'G', ':', '-', '\0', '\xFF'}) {
        for (int position = 1; position < line.size(); ++position) {
            SCOPED_TRACE(testing::Message() << "position " << position << " code " << int{bad});
            QByteArray text = line;
            text[position] = bad;
            const DebugMessages messages;
            EXPECT_FALSE(read_record(file_with(text)));
            EXPECT_EQ(lines_of(messages), Lines{message_for_position(position)});
        }
    }
}

} // namespace
