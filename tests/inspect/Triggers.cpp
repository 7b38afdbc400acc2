#include "tests/inspect/Triggers.h"

#include "device/FrameCodec.h"
#include "tests/inspect/InspectTest.h"

namespace test
{

namespace
{

QByteArray bytes(const char* digits)
{
    return QByteArray::fromHex(digits);
}

const QByteArray data_at_0x800 = hex_record(0, 0x800, bytes("01020304"));

QByteArray with_blanks(QByteArray row)
{
    return row.replace('\t', "   ");
}

QByteArray without_column(int column)
{
    QList<QByteArray> fields = table_row().split('\t');
    fields.removeAt(column - 1);
    return fields.join('\t');
}

std::vector<Trigger> table_triggers()
{
    return {
        {"T001", {}, 0, 0},
        {"T002", "A title\n" + with_blanks(table_row()), 2, 0},
        {"T003", without_column(7), 1, 0},
        {"T003", table_row().replace("\t2\t2\t", "\t\t2\t"), 1, 0},
        {"T003", table_row().replace("\n", "\t0\n"), 1, 0},
        {"T004", "\n\n" + table_row({{1, "V0110:"}}), 3, 1},
        {"T004", table_row({{1, "version"}}), 1, 1},
        {"T005", table_row({{9, "12O"}}), 1, 9},
        {"T005", table_row({{5, "4294967296"}}), 1, 5},
        {"T005", table_row({{1, "v01G0:"}}), 1, 1},
        {"T006", table_row({{11, "0"}}), 1, 11},
        {"T006", table_row({{18, "0x0"}}), 1, 18},
        {"T007", table_row() + table_row({{3, "OTHER"}}), 2, 1},
        {"T008", "Nothing but remarks\n", 0, 0},
        {"T008", "", 0, 0},
        {"T009", table_row({{10, "0x40000000"}}), 1, 10},
        {"T010", table_row({{10, "1"}}), 1, 11},
        {"T010", table_row({{18, "2"}}), 1, 18},
        {"T011", table_row({{9, "0"}}), 1, 9},
        {"T011", table_row({{19, "0"}}), 1, 19},
        {"T012", table_row({{12, "0"}}), 1, 12},
        {"T012", table_row({{20, "0"}}), 1, 20},
        {"T013", table_row({{8, "0"}}), 1, 8},
        {"T013", table_row({{8, "0x80000000"}}), 1, 8},
        {"T024", table_row({{8, "0x10000"}}), 1, 7},
        {"T014", table_row({{5, "0x800"}}), 1, 5},
        {"T014", table_row({{16, "0x10000"}}), 1, 16},
        {"T015", table_row({{10, "0"}}), 1, 10},
        {"T015", table_row({{17, "0"}}), 1, 17},
        {"T016", table_row({{2, "0"}}), 1, 2},
        {"T016", table_row({{2, "2147483648"}}), 1, 2},
        {"T017", table_row({{15, "0x10008"}}), 1, 15},
        {"T018", table_row({{11, "1"}, {7, "0x80000000"}}), 1, 7},
        {"T019", table_row({{9, "0x200"}, {12, "0x200"}, {8, "0x800"}, {10, "1"}, {11, "1"}}), 1,
         9},
        {"T020", table_row({{8, "0xC0"}}), 1, 8},
        {"T021", table_row({{9, "0x81"}}), 1, 9},
        {"T021", table_row({{9, "1"}}), 1, 9},
        {"T022", table_row({{12, "0x81"}}), 1, 12},
        {"T023", table_row({{9, "0x100"}}), 1, 12},
        {"T023", table_row({{12, "0x100"}}), 1, 12},
        {"T023", table_row({{20, "0x20"}}), 1, 20},
        {"T024", table_row({{7, "0x900"}}), 1, 7},
        {"T024", table_row({{5, "0x7E00"}}), 1, 5},
        {"T025", table_row({{7, "0x810"}}), 1, 7},
        {"T025", table_row({{16, "0x10208"}}), 1, 16},
        {"T026", table_row({{12, "0x3000"}}), 1, 7},
        {"T027", table_row({{25, "0x9000"}}), 1, 24},
        {"T027", table_row({{24, "0x5000"}}), 1, 24},
        {"T028", table_row({{25, "0x4100"}}), 1, 25},
        {"T029", table_row({{15, "0x4000"}, {16, "0x4200"}}), 1, 15},
        {"T029", table_row({{15, "0x100"}, {16, "0x300"}}), 1, 15},
        {"T030", table_row({{7, "0"}}), 1, 7},
        {"T031", table_row({{13, "0xFFFF"}}), 1, 13},
        {"T031", table_row({{21, "0xFF"}}), 1, 21},
        {"T032", table_row({{15, "0xF00000"}, {16, "0xF00200"}}), 1, 15},
        {"T033", table_row({{11, "1"}}), 1, 11},
        {"T034", table_row({{10, "3"}}), 1, 11},
        {"T035", table_row({{2, "115201"}}), 1, 2},
        {"T036", table_row({{1, "v0180:"}}), 1, 1},
        {"T037", table_row({{5, "0x4000"}}), 1, 5},
        {"T037", table_row({{4, "0x4000"}}), 1, 5},
        {"T038", table_row({{16, "0x10100"}}), 1, 16},
        {"T039", table_row({{14, "4"}}), 1, 14},
        {"T039", table_row({{22, "2"}}), 1, 22},
        {"T040", table_row({{2, "1200"}}), 1, 9},
        {"T041", table_row({{5, "0x2000000"}, {4, "0x2000000"}}), 1, 5},
        {"T042",
         table_row({{10, "1024"},
                    {11, "1024"},
                    {9, "0x10000"},
                    {12, "0x10000"},
                    {8, "0x10000"},
                    {5, "0x200000"}}),
         1, 10},
        {"T043", table_row(), 1, 8, table_row({{8, "0x800"}})},
        {"T043", table_row(), 1, 10, table_row({{10, "4"}})},
        {"T044", table_row(), 1, 1, table_row({{1, "v0111:"}})},
    };
}

QByteArray sent(const char* payload)
{
    return "\nTX:" + frame::encode(bytes(payload)).toHex();
}

QByteArray received(const char* payload)
{
    return "\nRX:" + frame::encode(bytes(payload)).toHex();
}

std::vector<Trigger> image_triggers()
{
    const QByteArray device = table_row();
    return {
        {"I001", {}, 0, 0},
        {"I002", "", 0, 0},
        {"I002", end_record, 0, 0},
        {"I003", data_at_0x800 + ":040804000102", 2, 14},
        {"I003", ":040804000102\n" + end_record, 1, 14},
        {"I004", ":0408000001020X04E6\n", 1, 15},
        {"I004", ": 0408000001020304E6\n", 1, 2},
        {"I005", data_at_0x800 + ":0408000001020304E7\n" + end_record, 2, 18},
        {"I006", data_at_0x800 + "00000001FF\n", 2, 1},
        {"I006", "no image\n", 1, 1},
        {"I007", data_at_0x800 + hex_record(2, 0, bytes("1000")) + end_record, 2, 1},
        {"I008", data_at_0x800 + "\n" + hex_record(3, 0, bytes("10000000")) + end_record, 3, 1},
        {"I009", data_at_0x800 + data_at_0x800 + end_record, 2, 1},
        {"I010", data_at_0x800 + hex_record(0, 0x900, bytes("05")).mid(1) + end_record, 2, 1},
        {"I011", "A remark\n" + data_at_0x800 + end_record, 1, 1},
        {"I011", "\xEF\xBB\xBF" + data_at_0x800 + end_record, 1, 1},
        {"I012", data_at_0x800 + end_record + hex_record(0, 0x900, bytes("05")) + end_record, 3, 1},
        {"I013", data_at_0x800, 2, 1},
        {"I014", hex_record(4, 0, bytes("00F0")) + data_at_0x800 + end_record, 1, 1},
        {"I015", hex_record(5, 0, bytes("00000800")) + data_at_0x800 + end_record, 1, 1},
        {"I016", hex_record(4, 0, bytes("00")) + data_at_0x800 + end_record, 1, 1},
        {"I016", data_at_0x800 + hex_record(5, 0, bytes("0000")) + end_record, 2, 1},
        {"I017", data_at_0x800 + hex_record(6, 0, bytes("0000")) + end_record, 2, 1},
        {"I018",
         hex_record(4, 0, bytes("FFFF")) + hex_record(0, 0xFFFE, bytes("0102")) + end_record, 2, 1},
        {"I019", data_at_0x800 + hex_record(0, 0x9000, bytes("0102")) + end_record, 2, 0, device},
        {"I020", hex_record(0, 0, bytes("01")) + data_at_0x800 + end_record, 1, 0, device},
        {"I021", hex_record(0, 0x7FFE, bytes("01020304")) + end_record, 1, 0, device},
        {"I021", hex_record(0, 0x3FFE, bytes("01020304")) + end_record, 1, 0, device},
        {"I021", hex_record(0, 0x7FE, bytes("01020304")) + end_record, 1, 0, device},
        {"I022", hex_record(4, 0, bytes("0001")) + hex_record(0, 0x0008, bytes("01")) + end_record,
         2, 0, device},
        {"I022", hex_record(0, 0x808, bytes("01")) + end_record, 1, 0,
         table_row({{15, "0"},
                    {16, "0"},
                    {17, "0"},
                    {18, "0"},
                    {19, "0"},
                    {20, "0"},
                    {21, "0"},
                    {22, "0"},
                    {23, "0"}})},
        {"I023", hex_record(0, 0x9000, bytes("0102")) + end_record, 0, 0, device},
    };
}

std::vector<Trigger> log_triggers()
{
    const QByteArray version = sent("0002");
    const QByteArray erase = sent("031e000800");
    const QByteArray erased = erase + received("03");
    const QByteArray write = sent("02010008000102");
    const QByteArray read = sent("0102000800");
    return {
        {"L001", {}, 0, 0},
        {"L002", "", 0, 0},
        {"L002", "\n", 0, 0},
        {"L003", "kept" + erased, 1, 0},
        {"L004", erased + "\nTX:5555020", 4, 0},
        {"L004", erased + write + "\nRX:555502", 5, 0},
        {"L004", erased + "\nTX:555502fe", 4, 0},
        {"L005", received("02") + erased, 2, 0},
        {"L005", erased + received("03"), 4, 0},
        {"L006", version.repeated(15), 14, 0},
        {"L007", erase.repeated(40), 2, 0},
        {"L008", version + received("00020110") + erase.repeated(40), 4, 0},
        {"L009", erased + write.repeated(40), 4, 0},
        {"L010", write + received("02010008000102"), 3, 0},
        {"L010", erased + write + received("02") + write.mid(QByteArray("\nTX:").size()), 5, 0},
        {"L010", write + received("02") + read + received("02010008000102"), 5, 0},
        {"L011", erase + erased, 2, 0},
        {"L012", erased + write + received("03"), 5, 0},
        {"L012",
         read + received("01000008000a0b") + sent("0102020800") + received("01000008000a0b"), 5, 0},
        {"L013", erase + received("0a"), 3, 0},
        {"L014", read + received("010200080001"), 3, 0},
        {"L014", read + received("01020008000102") + read + received("010200080001020304"), 5, 0},
        {"L014", read + received("01020008000102"), 3, 0, table_row()},
        {"L014", version + received("000201"), 3, 0},
        {"L015", write + "\nRX:31555502fe04", 3, 0},
        {"L016", write + "\nRX:555502fd04", 3, 0},
        {"L017", erased + write + write + received("02"), 4, 0},
        {"L018", write + received("02") + read + received("01020008000103"), 5, 0},
        {"L019", erased + write, 4, 0},
        {"L019", write + erased, 2, 0},
        {"L020", version + received("00020111") + erased, 3, 0, table_row()},
    };
}

} // namespace

const std::vector<Trigger>& triggers()
{
    static const std::vector<Trigger> all = [] {
        std::vector<Trigger> joined = table_triggers();
        for (const std::vector<Trigger>& more : {image_triggers(), log_triggers()}) {
            joined.insert(joined.end(), more.begin(), more.end());
        }
        return joined;
    }();
    return all;
}

} // namespace test
