#include "device/FrameCodec.h"
#include "inspect/Frames.h"
#include "inspect/OperationCosts.h"
#include "tests/inspect/InspectTest.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

using TableFacts = InspectTest;

QJsonValue costs(const QJsonObject& report)
{
    return report[QStringLiteral("profiles")][0][QStringLiteral("costs")];
}

int commands(const QJsonObject& report, const char* operation)
{
    return costs(report)[QLatin1String(operation)][QStringLiteral("commands")].toInt();
}

} // namespace

TEST_F(TableFacts, CountWhatWholeOperationsCost)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row());
    const QJsonObject report = inspect_json({QStringLiteral("table"), table});
    EXPECT_EQ(commands(report, "erase"), 1);        // 30 pages
    EXPECT_EQ(commands(report, "write"), 240 + 32); // rows of flash and EEPROM
    EXPECT_EQ(commands(report, "read"), 240 + 32);
    // A read of n bytes takes n + 18 bytes on the line, a write n + 14.
    EXPECT_EQ(costs(report)[QStringLiteral("write")][QStringLiteral("bytes")].toInt(),
              240 * (128 + 14) + 32 * (16 + 14));
    EXPECT_EQ(costs(report)[QStringLiteral("read")][QStringLiteral("bytes")].toInt(),
              240 * (128 + 18) + 32 * (16 + 18));
    EXPECT_DOUBLE_EQ(costs(report)[QStringLiteral("erase")][QStringLiteral("seconds")].toDouble(),
                     14 * 10 / 115200.0);
}

TEST_F(TableFacts, CountAnEraseCommandForEvery255Pages)
{
    const QString table =
        put_file(QStringLiteral("device.txt"),
                 table_row({{5, "0x10000"}, {4, "0x10000"}, {8, "0x80"}, {15, "0x10000"}}));
    EXPECT_EQ(commands(inspect_json({QStringLiteral("table"), table}), "erase"), 2); // 496 pages
}

TEST_F(TableFacts, CountNothingWhereAnOperationCannotRun)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row({{9, "0"}}));
    const QJsonObject report = inspect_json({QStringLiteral("table"), table});
    EXPECT_TRUE(report[QStringLiteral("profiles")][0][QStringLiteral("costs")].isNull());
}

TEST_F(TableFacts, ListLinesThatAreNoDevice)
{
    const QString table =
        put_file(QStringLiteral("device.txt"),
                 "A title\n\nVersion" + table_row().mid(6) + table_row() + "v0111:\t1\n");
    QStringList kinds;
    const QJsonObject report = inspect_json({QStringLiteral("table"), table});
    for (const QJsonValue line : report[QStringLiteral("skipped")].toArray()) {
        kinds << QString::number(line[QStringLiteral("line")].toInt()) + QLatin1Char(' ') +
                     line[QStringLiteral("kind")].toString();
    }
    EXPECT_EQ(kinds, QStringList({QStringLiteral("1 remark"), QStringLiteral("2 blank"),
                                  QStringLiteral("3 title"), QStringLiteral("5 broken row")}));
}

TEST_F(TableFacts, OfWhatCannotBeReadAreNone)
{
    // The first byte of this process's memory is no memory.
    const QJsonObject report =
        inspect_json({QStringLiteral("table"), QStringLiteral("/proc/self/mem")});
    EXPECT_THAT(codes(report), ElementsAre("T001"));
    EXPECT_EQ(report[QStringLiteral("problems")][0][QStringLiteral("message")].toString(),
              QStringLiteral("Input/output error"));
}

TEST_F(TableFacts, SayWhichOfTwoRowsCounts)
{
    const QString table =
        put_file(QStringLiteral("device.txt"), table_row({{9, "0"}}) + table_row());
    const QJsonObject report = inspect_json({QStringLiteral("table"), table});
    EXPECT_FALSE(report[QStringLiteral("profiles")][0][QStringLiteral("counts")].toBool());
    EXPECT_TRUE(report[QStringLiteral("profiles")][1][QStringLiteral("counts")].toBool());
    EXPECT_THAT(codes(report), ElementsAre("T007")); // what is wrong in the first does not count
}

TEST_F(TableFacts, ReportEveryFieldOfARowThatDoesNotConvert)
{
    const QString table =
        put_file(QStringLiteral("device.txt"), table_row({{2, "fast"}, {8, "-1"}, {25, "0x"}}));
    EXPECT_THAT(places(inspect_json({QStringLiteral("table"), table})),
                ElementsAre("T005:1:2", "T005:1:8", "T005:1:25"));
}

TEST_F(TableFacts, TakeARemarkForARemark)
{
    const QString table =
        put_file(QStringLiteral("device.txt"),
                 table_row() + "v0110: is the LARK\nVersion 2 of the table\nv\n\t\nv0110\n");
    EXPECT_THAT(codes(inspect_json({QStringLiteral("table"), table})), IsEmpty());
}

TEST_F(TableFacts, KeepAVersionOf0xFF80AndAbove)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row({{1, "vFF80:"}}));
    EXPECT_THAT(codes(inspect_json({QStringLiteral("table"), table})), IsEmpty());
}

TEST_F(TableFacts, AcceptADeviceWithoutEeprom)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row({{15, "0"},
                                                                            {16, "0"},
                                                                            {17, "0"},
                                                                            {18, "0"},
                                                                            {19, "0"},
                                                                            {20, "0"},
                                                                            {21, "0"},
                                                                            {22, "0"},
                                                                            {23, "0"}}));
    EXPECT_THAT(codes(inspect_json({QStringLiteral("table"), table})), IsEmpty());
}

TEST_F(TableFacts, AgreeOnTablesThatWriteTheSameNumbersDifferently)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row({{8, "1024"}}));
    const QString other = put_file(QStringLiteral("other.txt"), table_row({{8, "0x400"}}));
    EXPECT_THAT(
        codes(inspect_json({QStringLiteral("table"), table, QStringLiteral("--against"), other})),
        IsEmpty());
}

TEST_F(TableFacts, CannotCompareWithATableThatIsMissing)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row());
    const inspect::Outcome outcome = inspect_run(
        {QStringLiteral("table"), table, QStringLiteral("--against"), path(QStringLiteral("no"))});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_TRUE(outcome.out.contains("T001"));
}

TEST(Frames, AreThoseOfTheProtocol)
{
    const QByteArray read = QByteArray(5, 'A');
    EXPECT_EQ(inspect::read_bytes(3),
              static_cast<quint64>(frame::encode(read).size() +
                                   frame::encode(read + QByteArray(3, 'A')).size()));
    EXPECT_EQ(inspect::seconds_of(960, 9600), 1.0);
}
