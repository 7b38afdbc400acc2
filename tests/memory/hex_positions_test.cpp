#include "memory/IntelHexRecordReader.h"
#include "tests/memory/Images.h"

#include <QTemporaryDir>

#include <tuple>
#include <vector>

using namespace test;

namespace intel_hex
{

bool operator==(const TextPosition& left, const TextPosition& right)
{
    return std::tie(left.line, left.column) == std::tie(right.line, right.column);
}

std::ostream& operator<<(std::ostream& stream, const TextPosition& position)
{
    return stream << "line " << position.line << ", column " << position.column;
}

} // namespace intel_hex

namespace
{

using intel_hex::Record;
using intel_hex::RecordOutcome;
using intel_hex::TextPosition;

/// Reads the records of a file that a test fills.
class HexPositions : public testing::Test
{
protected:
    explicit HexPositions() : m_file(m_folder.filePath(QStringLiteral("text.hex"))) {}

    intel_hex::RecordReader& reader_of(const QByteArray& text)
    {
        write_file(m_file.fileName(), text);
        EXPECT_TRUE(m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
        m_reader = std::make_unique<intel_hex::RecordReader>(m_file);
        return *m_reader;
    }

    Record record;

private:
    QTemporaryDir m_folder;
    QFile m_file;
    std::unique_ptr<intel_hex::RecordReader> m_reader;
};

} // namespace

TEST_F(HexPositions, AreThoseOfTheColons)
{
    auto& reader = reader_of("\n  :00000001FF\r\n:00000001FF:00000001FF\n\n");
    const TextPosition expected[] = {{2, 3}, {3, 1}, {3, 12}};
    for (const TextPosition& position : expected) {
        EXPECT_FALSE(reader.is_at_end());
        EXPECT_EQ(reader.position(), position);
        EXPECT_EQ(reader.next(record).outcome, RecordOutcome::Complete);
        EXPECT_EQ(reader.record_position(), position);
    }
    EXPECT_TRUE(reader.is_at_end());
    EXPECT_EQ(reader.position(), (TextPosition{5, 1}));
}

TEST_F(HexPositions, ShowTextThatIsPassedOver)
{
    auto& reader = reader_of(":00000001FF\n 00000001FF\n; note\n :00000001FF");
    reader.next(record);
    EXPECT_EQ(reader.text_position(), (TextPosition{1, 1}));
    reader.next(record);
    EXPECT_EQ(reader.text_position(), (TextPosition{2, 2}));
    EXPECT_EQ(reader.record_position(), (TextPosition{4, 2}));
    EXPECT_EQ(reader.text_offset(), 13);
    EXPECT_EQ(reader.text_length(), 19);
}

TEST_F(HexPositions, ComeWithTheCharacterThatDoesNotFit)
{
    auto& reader = reader_of(":00000x\n:0000");
    reader.next(record);
    EXPECT_EQ(reader.peek(), 'x');
    reader.next(record);
    EXPECT_EQ(reader.peek(), std::nullopt);
}

TEST_F(HexPositions, AreKnownWhileAMapIsLoaded)
{
    auto& reader = reader_of(":0100000041BE\n:0100010042BD\n:0100020043BA\n");
    std::vector<RecordOutcome> outcomes;
    MemoryMap map(16);
    const DebugMessages messages;
    EXPECT_FALSE(map.load_from_hex_records(
        reader, {1}, [&](const auto& at, const auto& parsed, const auto& read) {
            outcomes.push_back(parsed.outcome);
            EXPECT_EQ(at.record_position(),
                      (TextPosition{static_cast<qint64>(outcomes.size()), 1}));
            EXPECT_EQ(read.address + 1U, outcomes.size());
        }));
    EXPECT_EQ(outcomes, (std::vector<RecordOutcome>{RecordOutcome::Complete,
                                                    RecordOutcome::ChecksumMismatch}));
    EXPECT_EQ(blobs_of(map), (Blobs{{0, "41"}}));
    EXPECT_EQ(messages.texts().size(), 2);
}

TEST_F(HexPositions, AreThoseOfTheRestAfterAMapIsLoaded)
{
    auto& reader = reader_of(":0100000041BE\n:00000001FF\n\n:0100010042BC\n");
    MemoryMap map(16);
    EXPECT_TRUE(map.load_from_hex_records(reader, {}));
    EXPECT_EQ(reader.position(), (TextPosition{2, 12}));
    EXPECT_EQ(reader.next(record).outcome, RecordOutcome::Complete);
    EXPECT_EQ(reader.record_position(), (TextPosition{4, 1}));
}

TEST_F(HexPositions, StandWhereARecordGoesWrongAndTheNextOneIsFoundFromThere)
{
    auto& reader = reader_of(":04000000:00000001FF\n:0000\n:00000001FF\n");
    EXPECT_EQ(reader.next(record).outcome, RecordOutcome::NoData);
    EXPECT_EQ(reader.position(), (TextPosition{1, 10}));
    EXPECT_EQ(reader.next(record).outcome, RecordOutcome::Complete);
    EXPECT_EQ(reader.record_position(), (TextPosition{1, 10}));
    EXPECT_EQ(reader.next(record).outcome, RecordOutcome::NoAddressLow);
    EXPECT_EQ(reader.position(), (TextPosition{2, 6}));
    EXPECT_EQ(reader.next(record).outcome, RecordOutcome::Complete);
    EXPECT_EQ(reader.record_position(), (TextPosition{3, 1}));
    EXPECT_EQ(reader.next(record).outcome, RecordOutcome::NoColon);
}

TEST_F(HexPositions, CountAcrossTheBlocksInWhichAFileIsRead)
{
    constexpr int lines = 20000;
    auto& reader = reader_of(QByteArray(":0400000001020304F2\n").repeated(lines) + "   :00");
    for (int line = 1; line <= lines; ++line) {
        ASSERT_FALSE(reader.is_at_end());
        ASSERT_EQ(reader.next(record).outcome, RecordOutcome::Complete);
        ASSERT_EQ(reader.record_position(), (TextPosition{line, 1}));
    }
    EXPECT_FALSE(reader.is_at_end());
    EXPECT_EQ(reader.next(record).outcome, RecordOutcome::NoAddressHigh);
    EXPECT_EQ(reader.position(), (TextPosition{lines + 1, 7}));
    EXPECT_TRUE(reader.is_at_end());
}
