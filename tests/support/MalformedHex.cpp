#include "tests/support/MalformedHex.h"

namespace test
{

namespace
{

using Messages = std::vector<std::string>;
using Pieces = std::vector<std::pair<unsigned int, std::string>>;

const QByteArray first = ":040080000102030472\n";
const QByteArray second = ":0400A0000506070842\n";
const QByteArray end = ":00000001FF\n";
const QByteArray upper_0 = ":020000040000FA\n";
const QByteArray upper_1 = ":020000040001F9\n";

const std::pair<unsigned int, std::string> at_80{0x80, "01020304"};
const std::pair<unsigned int, std::string> at_a0{0xA0, "05060708"};
const Pieces both{at_80, at_a0};

Messages unreadable(const char* reason)
{
    return {std::string("MemoryMap::read_record(): ") + reason,
            "MemoryMap::load_from_hex_file(): failed to read record"};
}

Messages segmented(const char* record)
{
    return {std::string("MemoryMap::load_from_hex_file(): encountered ") + record + " in hex file"};
}

Messages overlap(const char* which)
{
    return {std::string("\"Overlap at ") + which + '"',
            "MemoryMap::load_from_hex_file(): BLOBs overlap"};
}

QByteArray with_line_ends(const char* line_end)
{
    return QByteArray(first + second + end).replace("\n", line_end);
}

QByteArray in_utf16(const QByteArray& text)
{
    QByteArray words("\xFF\xFE");
    for (const char character : text) {
        words += character;
        words += '\0';
    }
    return words;
}

std::vector<MalformedHex> make_files()
{
    return {
        // Damaged records
        {"BadChecksum",
         first + ":0400A0000506070843\n" + end,
         unreadable("checksum mismatch"),
         {at_80}},
        {"BadChecksumOfTheEndRecord",
         first + ":00000001FE\n",
         unreadable("checksum mismatch"),
         {at_80}},
        {"BadDigitInTheByteCount",
         ":0G0080000102030472\n" + end,
         unreadable("failed to read byte_count"),
         {}},
        {"BadDigitInTheAddress",
         ":04G080000102030472\n" + end,
         unreadable("failed to read address_hi"),
         {}},
        {"BadDigitInTheLowAddress",
         ":0400 0000102030472\n" + end,
         unreadable("failed to read address_lo"),
         {}},
        {"BadDigitInTheType",
         ":0400800x0102030472\n" + end,
         unreadable("failed to read record_type_byte"),
         {}},
        {"BadDigitInTheData", ":04008000O102030472\n" + end, unreadable("failed to read data"), {}},
        {"BlankWithinTheData",
         first + ":0400A000050 6070842\n" + end,
         unreadable("failed to read data"),
         {at_80}},
        {"BadDigitInTheChecksum",
         ":04008000010203047-\n" + end,
         unreadable("failed to read checksum"),
         {}},
        {"CutLine", ":0400800001020\n" + second + end, unreadable("failed to read data"), {}},
        {"CutLineWithoutItsChecksum",
         ":0400800001020304\n" + second + end,
         unreadable("failed to read checksum"),
         {}},
        {"CutFile", first + ":0400A00005", unreadable("failed to read data"), {at_80}},
        {"CutFileAfterAColon", first + ":", unreadable("failed to read byte_count"), {at_80}},
        {"TwoLinesRunTogetherInTheirMiddle",
         ":04008000010203:0400A0000506070842\n" + end,
         unreadable("failed to read data"),
         {}},
        {"ByteCountAboveTheData",
         ":050080000102030471\n" + end,
         unreadable("failed to read checksum"),
         {}},
        {"ByteCountBelowTheData",
         ":030080000102030473\n" + end,
         unreadable("checksum mismatch"),
         {}},

        // A line without its colon is text like any other.
        {"LostColonOfTheFirstRecord", first.mid(1) + second + end, {}, {at_a0}},
        {"LostColonOfTheLastRecord", first + second.mid(1) + end, {}, {at_80}},
        {"LostColonOfTheUpperAddress", first + upper_1.mid(1) + second + end, {}, both},
        {"LostColonOfTheEndRecord",
         first + end.mid(1),
         unreadable("failed to read character"),
         {at_80}},
        {"LostColonOfEveryRecord",
         first.mid(1) + end.mid(1),
         unreadable("failed to read character"),
         {}},

        // End of the file
        {"NoEndRecord", first + second, {}, both},
        {"NoEndRecordAndNoLineEnd", first + second.chopped(1), {}, both},
        {"NoEndRecordButText",
         first + "checked by nobody\n",
         unreadable("failed to read character"),
         {at_80}},
        {"DataAfterTheEndRecord", first + end + second, {}, {at_80}},
        {"DamageAfterTheEndRecord", first + end + ":0G", {}, {at_80}},
        {"TextAfterTheEndRecord", first + end + "checked by nobody", {}, {at_80}},
        {"TwoFilesInOne", first + end + upper_0 + second + end, {}, {at_80}},
        {"EndRecordWithDataAndAddress", first + ":02123401AABB52\n" + second, {}, {at_80}},
        {"Empty", "", {}, {}},
        {"EndRecordAlone", end, {}, {}},

        // Addresses
        {"DescendingAddresses", second + first + end, {}, both},
        {"UpperAddressBelowTheOneBefore",
         upper_1 + second + upper_0 + first + end,
         {},
         {at_80, {0x100A0, "05060708"}}},
        {"UpperAddressOfOneByte",
         first + ":0100000401FA\n" + second + end,
         {},
         {at_80, {0x010000A0, "05060708"}}},
        {"UpperAddressWithoutBytes", upper_1 + ":00000004FC\n" + first + end, {}, {at_80}},
        {"UpperAddressOfThreeBytes", ":0300000400008079\n" + first + end, {}, {at_80}},
        {"UpperAddressWithBit23",
         first + ":0200000400807A\n" + second + end,
         {},
         {at_80, {0xFF8000A0, "05060708"}}},
        {"OverlapOfEqualBytes",
         first + first + end,
         overlap("80 with size 4 with 80 size 4"),
         {at_80, at_80}},
        {"OverlapOfDifferentBytes",
         first + ":040080000102FF0476\n" + end,
         overlap("80 with size 4 with 80 size 4"),
         {at_80, {0x80, "0102FF04"}}},
        {"OverlapOfOneEqualByte",
         first + ":010083000478\n" + end,
         overlap("80 with size 4 with 83 size 1"),
         {at_80, {0x83, "04"}}},
        {"OverlapOfTheLastByte",
         ":01008300FF7D\n" + first + end,
         overlap("80 with size 4 with 83 size 1"),
         {at_80, {0x83, "FF"}}},
        {"BeyondTheLastAddress",
         first + ":02000004FFFFFC\n:08FFFC000102030405060708D9\n" + end,
         {},
         {at_80, {0xFFFFFFFC, "0102030405060708"}}},
        {"RoundTheLastAddress", ":04000005FFFFFFF00A\n:040090000102030462\n" + end, {}, {at_80}},

        // Records that other tools write
        {"SegmentAddress",
         first + ":020000021000EC\n" + second + end,
         segmented("ExtendedSegmentAddress"),
         {at_80}},
        {"StartSegmentAddress",
         first + ":0400000300000100F8\n" + end,
         segmented("StartSegmentAddress"),
         {at_80}},
        {"StartAddressBeforeTheEnd", first + second + ":0400000500000100F6\n" + end, {}, both},
        {"StartAddressBeforeData",
         first + ":0400000500000100F6\n" + second + end,
         {},
         {at_80, {0x1A0, "05060708"}}},
        {"UnknownType6", first + ":01000006AA4F\n" + second + end, {}, both},
        {"UnknownType255", first + ":010000FFAA56\n" + second + end, {}, both},
        {"UnknownTypeWithABadChecksum",
         first + ":01000006AA50\n" + second + end,
         unreadable("checksum mismatch"),
         {at_80}},

        // What editors and transfers do to text
        {"ByteOrderMark", "\xEF\xBB\xBF" + first + second + end, {}, both},
        {"Utf16", in_utf16(first + end), unreadable("failed to read byte_count"), {}},
        {"CarriageReturnAndLineFeed", with_line_ends("\r\n"), {}, both},
        {"CarriageReturnAlone", with_line_ends("\r"), {}, both},
        {"NoLineEndsAtAll", with_line_ends(""), {}, both},
        {"LowerCaseDigits", QByteArray(first + second + end).toLower(), {}, both},
        {"TextBetweenRecords", first + "checked by nobody\n" + second + end, {}, both},
        {"BlanksBeforeRecords", with_line_ends("\n \t"), {}, both},
        {"BinaryWithoutAColon",
         QByteArray("\x7F"
                    "ELF\x02\x01\x01\x00\x00\xFF\x80",
                    11),
         unreadable("failed to read character"),
         {}},
        {"BinaryWithAColon",
         QByteArray("\x7F"
                    "ELF\x02:\x01\x00\x00\xFF\x80",
                    11),
         unreadable("failed to read byte_count"),
         {}},
        {"NulBytesInARecord",
         QByteArray(":04\0", 4) + first,
         unreadable("failed to read address_hi"),
         {}},
        {"NulBytesBetweenRecords", first + QByteArray(100, '\0') + second + end, {}, both},
        {"NulBytesAlone", QByteArray(100000, '\0'), unreadable("failed to read character"), {}},
        {"DigitsAlone", QByteArray(100000, '0'), unreadable("failed to read character"), {}},
    };
}

} // namespace

const std::vector<MalformedHex>& malformed_hex_files()
{
    static const std::vector<MalformedHex> files = make_files();
    return files;
}

} // namespace test
