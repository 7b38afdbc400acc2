#include "memory/IntelHexRecord.h"
#include "tests/memory/Images.h"
#include "tests/support/RowName.h"

#include <ostream>

using namespace test;

namespace
{

using intel_hex::ParsedRecord;
using intel_hex::Record;
using intel_hex::RecordOutcome;

/// Text after a colon, the outcome of parsing it, and how many characters fit.
struct Text {
    const char* name;
    const char* text;
    RecordOutcome outcome;
    int consumed;
    bool is_cut_short;
};

std::ostream& operator<<(std::ostream& stream, const Text& text)
{
    return stream << text.text;
}

const Text texts[] = {
    {"complete", "0400000001020304F2", RecordOutcome::Complete, 18, false},
    {"complete_with_more_after_it", "00000001FFFF", RecordOutcome::Complete, 10, false},
    {"lower_case", "01abcdff7810", RecordOutcome::Complete, 12, false},
    {"nothing", "", RecordOutcome::NoByteCount, 0, true},
    {"half_a_byte_count", "0", RecordOutcome::NoByteCount, 1, true},
    {"bad_byte_count", "0:", RecordOutcome::NoByteCount, 1, false},
    {"line_end_for_a_record", "\n", RecordOutcome::NoByteCount, 0, false},
    {"no_address", "04", RecordOutcome::NoAddressHigh, 2, true},
    {"bad_high_address", "04g0", RecordOutcome::NoAddressHigh, 2, false},
    {"half_an_address", "0400", RecordOutcome::NoAddressLow, 4, true},
    {"bad_low_address", "04000 ", RecordOutcome::NoAddressLow, 5, false},
    {"no_type", "040000", RecordOutcome::NoType, 6, true},
    {"bad_type", "040000-1", RecordOutcome::NoType, 6, false},
    {"no_data", "04000000", RecordOutcome::NoData, 8, true},
    {"part_of_the_data", "04000000010203", RecordOutcome::NoData, 14, true},
    {"line_end_in_the_data", "04000000010203\r\n", RecordOutcome::NoData, 14, false},
    {"no_checksum", "0400000001020304", RecordOutcome::NoChecksum, 16, true},
    {"half_a_checksum", "0400000001020304F", RecordOutcome::NoChecksum, 17, true},
    {"bad_checksum_digit", "0400000001020304Fx", RecordOutcome::NoChecksum, 17, false},
    {"wrong_checksum", "0400000001020304F3", RecordOutcome::ChecksumMismatch, 18, false},
};

class HexRecord : public testing::TestWithParam<Text>
{
};

} // namespace

TEST_P(HexRecord, IsTakenApartAsFarAsItGoes)
{
    const QByteArray text(GetParam().text);
    Record record;
    const ParsedRecord parsed = intel_hex::parse_record(text.begin(), text.end(), record);
    EXPECT_EQ(parsed.outcome, GetParam().outcome);
    EXPECT_EQ(parsed.consumed, GetParam().consumed);
    EXPECT_EQ(intel_hex::is_cut_short(parsed, text.begin(), text.end()), GetParam().is_cut_short);
}

INSTANTIATE_TEST_SUITE_P(Texts, HexRecord, testing::ValuesIn(texts), row_name);

TEST(HexRecordMessage, IsOneForEachOutcomeThatIsNoRecord)
{
    QSet<QByteArray> messages;
    for (int outcome = static_cast<int>(RecordOutcome::NoColon);
         outcome <= static_cast<int>(RecordOutcome::ChecksumMismatch); ++outcome) {
        const QByteArray message = intel_hex::message_of(static_cast<RecordOutcome>(outcome));
        EXPECT_TRUE(message.startsWith("MemoryMap::read_record(): ")) << message.constData();
        messages.insert(message);
    }
    EXPECT_EQ(messages.size(), 8);
    EXPECT_STREQ(intel_hex::message_of(RecordOutcome::Complete), "");
}

TEST(HexRecordLength, FollowsFromTheByteCount)
{
    EXPECT_EQ(intel_hex::record_length(""), 10);
    EXPECT_EQ(intel_hex::record_length("F"), 10);
    EXPECT_EQ(intel_hex::record_length("01"), 12);
    EXPECT_EQ(intel_hex::record_length("FF00"), 520);
}

TEST(HexUpperAddress, ChangesWithAddressRecordsOnly)
{
    const auto after = [](int type, const char* digits) {
        const Record record{static_cast<IntelHexFileRecordType>(type), 0x1234,
                            QByteArray::fromHex(digits)};
        return intel_hex::upper_address_after(record, 0x00AB0000);
    };
    EXPECT_EQ(after(0, "01020304"), 0x00AB0000U);
    EXPECT_EQ(after(1, ""), 0x00AB0000U);
    EXPECT_EQ(after(4, "0102"), 0x01020000U);
    EXPECT_EQ(after(4, "0080"), 0xFF800000U);
    EXPECT_EQ(after(4, ""), 0U);
    EXPECT_EQ(after(5, "01020304"), 0x01020304U);
    EXPECT_EQ(after(6, "01020304"), 0x00AB0000U);
}
