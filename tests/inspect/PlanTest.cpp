#include "tests/inspect/PlanTest.h"

#include <QRegularExpression>

namespace test
{

namespace
{

QByteArray image(unsigned int address, const char* bytes)
{
    return hex_record(0, address, QByteArray::fromHex(bytes)) + end_record;
}

} // namespace

const std::vector<PlanTrigger>& plan_triggers()
{
    static const std::vector<PlanTrigger> all = {
        {"P001", "-- -s port -w"},
        {"P002", "-- -s port -B 0110 -vw"},
        {"P003", "-- -s port -V"},
        {"P004", "-- -s port -B 0110 -V"},
        {"P005", "-- -s port -B 110"},
        {"P006", "--device 0110 -- -s port -B 0"},
        {"P007", "-- -s port -B 10110"},
        {"P008", "--device 0111 -- -s port -B 0110"},
        {"P009", "-- -s port -B 0999"},
        {"P009", "--device 0190 -- -s port"},
        {"P010", "-- -B 0110"},
        {"P011", "-- -s port -B 0110 -M 9600"},
        {"P012", "-- -s port -B 0110 -E 0x800 0x1000"},
        {"P013", "-- -s port -B 0110 -W 0x800 0x900 @image.hex"},
        {"P014", "-- -s port -B 0120 -l 0x1000 0x1100 @back.hex"},
        {"P015", "-- -s port -B 0110 -M 010"},
        {"P016", "-- -s port -B 0110 -x -R"},
        {"P017", "-- -s port -B 0110 -x"},
        {"P018", "-- -s port -B 0110 -wv @image.hex -v @image.hex"},
        {"P019", "-- -s port -B 0110 -w @image.hex -v @other.hex"},
        {"P020", "-- -s port -B 0110 -w @image.hex -x @image.hex"},
        {"P020", "-- -s port -B 0110 -r @device.txt"},
        {"P021", "-- -s port -B 0110 -w @missing.hex"},
        {"P022", "-- -s port -B 0110 -w /dev/null"},
        {"P023", "-- -s port -B 0110 -v @image.hex"},
        {"P024", "--before @other.hex -- -s port -B 0110 -w @image.hex"},
        {"P025", "-- -s port -B 0130 -w @image.hex"},
        {"P026", "--before @outside.hex -- -s port -B 0110 -R"},
        {"P027", "--before @full.hex -- -s port -B 0110 -wv @other.hex"},
        {"P028", "-- -s port -B 0110 -e -W 0x4000 0x5000 @image.hex"},
        {"P028", "-- -s port -B 0110 -w @image.hex -xe -xu"},
        {"P028", "-- -s port -B 0110 -wv @image.hex -xe -xu"},
        {"P028", "-- -s port -B 0110 -v @image.hex -xe -xu"},
        {"I023", "-- -s port -B 0110 -w @outside.hex -r @outside.hex"},
    };
    return all;
}

PlanTest::PlanTest()
{
    put_file(QStringLiteral("device.txt"),
             table_row() + table_row({{1, "v0111:"}, {3, "LARK-33"}}) +
                 table_row({{1, "v0120:"}, {3, "WIDE"}, {4, "0x4000"}, {7, "0x400"}, {11, "1"}}) +
                 table_row({{1, "v0130:"}, {2, "1200"}, {3, "SLOW"}}) +
                 table_row({{1, "v0190:"}, {3, "NEVER"}}));
    put_file(QStringLiteral("image.hex"), image(0x800, "01020304"));
    put_file(QStringLiteral("other.hex"), image(0x800, "01020300"));
    put_file(QStringLiteral("outside.hex"), image(0x9000, "0102"));
    const QByteArray in_eeprom = hex_record(4, 0, QByteArray::fromHex("0001"));
    put_file(QStringLiteral("full.hex"),
             hex_record(0, 0x800, QByteArray::fromHex("0102030405FF07")) + in_eeprom +
                 image(0x0, "112233FF55"));
    put_file(QStringLiteral("eeprom.hex"), in_eeprom + image(0x0, "10"));
    put_file(QStringLiteral("patch.hex"),
             hex_record(0, 0x800, QByteArray::fromHex("00")) + in_eeprom + image(0x0, "10"));
    put_file(QStringLiteral("upper.hex"), image(0x7C00, "F0"));
    put_file(QStringLiteral("cleared_upper.hex"), image(0x7C00, "0F"));
}

QStringList PlanTest::plan_words(const char* words) const
{
    QStringList all = QString::fromLatin1(words).split(QLatin1Char(' '));
    all.replaceInStrings(QRegularExpression(QStringLiteral("^@")),
                         path(QString()) + QLatin1Char('/'));
    const QString table = QStringLiteral("--table");
    if (!all.contains(table)) {
        all = QStringList{table, path(QStringLiteral("device.txt"))} + all;
    }
    return QStringList(QStringLiteral("plan")) + all;
}

QJsonObject PlanTest::plan(const char* words) const
{
    QStringList all = plan_words(words);
    all.insert(1, QStringLiteral("--json"));
    const inspect::Outcome outcome = inspect_run(all);
    EXPECT_EQ(outcome.err, QByteArray());
    const QJsonDocument document = QJsonDocument::fromJson(outcome.out);
    EXPECT_TRUE(document.isObject()) << outcome.out.constData();
    return document.object();
}

inspect::Outcome PlanTest::run_plan(const char* words) const
{
    return inspect_run(plan_words(words));
}

} // namespace test
