#include "inspect/ImageFile.h"
#include "tests/inspect/InspectTest.h"
#include "tests/support/OtherUser.h"

#include <QCryptographicHash>
#include <gmock/gmock.h>

#include <utility>
#include <vector>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class ImageFacts : public InspectTest
{
protected:
    QJsonObject report_on(const QByteArray& content, const QStringList& words = {}) const
    {
        return inspect_json(
            QStringList{QStringLiteral("image"), put_file(QStringLiteral("image.hex"), content)} +
            words);
    }

    QStringList in_device(const Changes& changes = {}) const
    {
        return {QStringLiteral("--table"),
                put_file(QStringLiteral("device.txt"), table_row(changes))};
    }
};

std::string segments(const QJsonObject& report)
{
    std::string text;
    for (const QJsonValue segment : report[QStringLiteral("segments")].toArray()) {
        text += QStringLiteral("%1-%2 ")
                    .arg(segment[QStringLiteral("start")].toDouble(), 0, 'f', 0)
                    .arg(segment[QStringLiteral("end")].toDouble(), 0, 'f', 0)
                    .toStdString();
    }
    return text;
}

int area(const QJsonObject& report, const char* name)
{
    return report[QStringLiteral("areas")][QLatin1String(name)].toInt();
}

} // namespace

TEST_F(ImageFacts, JoinSegmentsThatTouchWhateverTheirOrder)
{
    const QJsonObject report = report_on(hex_record(0, 0x14, "cd") + hex_record(0, 0x10, "abcd") +
                                         hex_record(0, 0x20, "e") + end_record);
    EXPECT_EQ(segments(report), "16-22 32-33 ");
    EXPECT_EQ(report[QStringLiteral("bytes")].toInt(), 7);
}

TEST_F(ImageFacts, JoinSegmentsThatTheDeviceCutsInTwo)
{
    const QJsonObject report = report_on(
        hex_record(0, 0x3FFC, "abcd") + hex_record(0, 0x4000, "efgh") + end_record, in_device());
    EXPECT_EQ(segments(report), "16380-16388 ");
    EXPECT_EQ(area(report, "unencrypted"), 4);
    EXPECT_EQ(area(report, "encrypted"), 4);
    EXPECT_THAT(codes(report), IsEmpty());
}

TEST_F(ImageFacts, HashTheFile)
{
    const QByteArray content = hex_record(0, 0, "abc") + end_record;
    EXPECT_EQ(
        report_on(content)[QStringLiteral("sha256")].toString(),
        QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex()));
}

TEST_F(ImageFacts, SumUpTheBytesInTheOrderOfTheirAddresses)
{
    // The check value of this polynomial: that of "123456789".
    const QJsonObject report =
        report_on(hex_record(0, 0x900, "6789") + hex_record(0, 0x10, "12345") + end_record);
    EXPECT_EQ(report[QStringLiteral("crc32")].toString(), QStringLiteral("cbf43926"));
}

TEST_F(ImageFacts, CountBytesByArea)
{
    const QJsonObject report = report_on(
        hex_record(0, 0x100, "b") + hex_record(0, 0x800, "pp") + hex_record(0, 0x4000, "eee") +
            hex_record(0, 0x9000, "oooo") + hex_record(4, 0, QByteArray::fromHex("0001")) +
            hex_record(0, 0, "EEEEE") + end_record,
        in_device());
    EXPECT_EQ(area(report, "bootloader"), 1);
    EXPECT_EQ(area(report, "unencrypted"), 2);
    EXPECT_EQ(area(report, "encrypted"), 3);
    EXPECT_EQ(area(report, "outside"), 4);
    EXPECT_EQ(area(report, "eeprom"), 5);
    EXPECT_THAT(codes(report), ElementsAre("I019", "I020"));
}

TEST_F(ImageFacts, CountPagesAndRows)
{
    const QJsonObject report = report_on(hex_record(0, 0x880, QByteArray(128, 'a')) +
                                             hex_record(0, 0xC00, "b") + end_record,
                                         in_device());
    // Pages of 0x400 bytes, rows of 0x80: one row is full, the other has a single byte.
    EXPECT_EQ(report[QStringLiteral("pages")][QStringLiteral("touched")].toInt(), 2);
    EXPECT_EQ(report[QStringLiteral("flash_rows")][QStringLiteral("touched")].toInt(), 2);
    EXPECT_EQ(report[QStringLiteral("flash_rows")][QStringLiteral("partly_filled")].toInt(), 1);
}

TEST_F(ImageFacts, HaveNoDataOfAFileThatIsRefused)
{
    const QJsonObject report =
        report_on(hex_record(0, 0, "abc") + hex_record(2, 0, "ab") + end_record, in_device());
    EXPECT_FALSE(report[QStringLiteral("loads")].toBool());
    EXPECT_EQ(report[QStringLiteral("bytes")].toInt(), 0);
    EXPECT_EQ(segments(report), "");
    EXPECT_TRUE(report[QStringLiteral("areas")].isUndefined());
}

TEST_F(ImageFacts, StopAtTheFirstBadRecord)
{
    EXPECT_THAT(places(report_on(hex_record(0, 0, "abc") + ":00\n" + hex_record(2, 0, "ab"))),
                ElementsAre("I003:2:4"));
}

TEST_F(ImageFacts, NameThePartInWhichARecordIsCutShort)
{
    const std::vector<std::pair<const char*, const char*>> cuts = {
        {":", "byte count"},
        {":03001", "address"},
        {":0300100", "type"},
        {":03001000414", "data"},
        {":030010004142434", "checksum"}};
    for (const auto& [record, part] : cuts) {
        const QJsonObject report = report_on(QByteArray(record) + "\n");
        EXPECT_THAT(codes(report), ElementsAre("I003")) << record;
        EXPECT_EQ(report[QStringLiteral("problems")][0][QStringLiteral("message")].toString(),
                  QStringLiteral("The line ends in the %1 of the record that begins in column 1.")
                      .arg(QLatin1String(part)));
    }
}

TEST_F(ImageFacts, TakeTextAfterTheEndRecordForHarmless)
{
    EXPECT_THAT(codes(report_on(hex_record(0, 0, "abc") + end_record + "made by hand\n")),
                IsEmpty());
}

TEST_F(ImageFacts, PassOverARecordWithoutData)
{
    const QJsonObject report =
        report_on(hex_record(0, 0x10, "ab") + hex_record(0, 0x40, "") + end_record);
    EXPECT_EQ(segments(report), "16-18 ");
    EXPECT_THAT(codes(report), IsEmpty());
}

TEST_F(ImageFacts, CountBytesBeyondTheLastAddressAsOutside)
{
    const QJsonObject report = report_on(
        hex_record(4, 0, "\xFF\xFF") + hex_record(0, 0xFFFE, "abcd") + end_record, in_device());
    EXPECT_EQ(segments(report), "4294967294-4294967298 ");
    EXPECT_EQ(area(report, "outside"), 4);
}

TEST_F(ImageFacts, OfWhatCannotBeReadAreNone)
{
    // The first byte of this process's memory is no memory.
    const QJsonObject report =
        inspect_json({QStringLiteral("image"), QStringLiteral("/proc/self/mem")});
    ASSERT_THAT(codes(report), testing::Contains("I001"));
    EXPECT_EQ(report[QStringLiteral("problems")][0][QStringLiteral("message")].toString(),
              QStringLiteral("reading it fails"));
}

TEST_F(ImageFacts, OfAFileThatIsClosedToTheUserAreNone)
{
    const QString image = put_file(QStringLiteral("image.hex"), end_record);
    ASSERT_TRUE(QFile::setPermissions(path(QString()), QFile::Permissions(0x7777)));
    ASSERT_TRUE(QFile::setPermissions(image, {}));
    const OtherUser user;
    const QJsonObject report = inspect_json({QStringLiteral("image"), image});
    EXPECT_THAT(codes(report), ElementsAre("I001"));
    EXPECT_EQ(report[QStringLiteral("problems")][0][QStringLiteral("message")].toString(),
              QStringLiteral("Permission denied"));
}

TEST_F(ImageFacts, ShowSixPartsOfAScatteredImage)
{
    QByteArray image;
    for (unsigned int i = 0; i < 8; ++i) {
        image += hex_record(4, 0, QByteArray::fromHex("00") + static_cast<char>(2 * i)) +
                 hex_record(0, 0, "a");
    }
    const QString name = put_file(QStringLiteral("image.hex"), image + end_record);
    const QString text = QString::fromUtf8(inspect_run({QStringLiteral("image"), name}).out);
    EXPECT_EQ(text.count(QStringLiteral("image, 1 byte")), 6) << text.toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("Not shown: 2 further parts of the image.")))
        << text.toStdString();
}

TEST_F(ImageFacts, TakeAStartAddressAtTheEndForHarmless)
{
    const QJsonObject report = report_on(
        hex_record(0, 0, "abc") + hex_record(5, 0, QByteArray::fromHex("12345678")) + end_record);
    EXPECT_EQ(report[QStringLiteral("start_address")].toInt(), 0x12345678);
    EXPECT_THAT(codes(report), IsEmpty());
}

TEST_F(ImageFacts, TakeAStartAddressBeforeAnAddressRecordForHarmless)
{
    EXPECT_THAT(codes(report_on(hex_record(5, 0, QByteArray::fromHex("12345678")) +
                                hex_record(4, 0, QByteArray::fromHex("0000")) +
                                hex_record(0, 0, "abc") + end_record)),
                IsEmpty());
}

TEST_F(ImageFacts, DistinguishALostColonFromARemark)
{
    const QJsonObject report =
        report_on(hex_record(0, 0, "abc") + hex_record(0, 3, "def").mid(1) + "a remark\r\n" +
                  hex_record(0, 6, "ghi") + "0123456789\n" + hex_record(0, 9, "j") + end_record);
    EXPECT_THAT(places(report), ElementsAre("I010:2:1", "I011:3:1"));
}

TEST_F(ImageFacts, FindALostColonWhereAllRecordsAreOnOneLine)
{
    QByteArray lines;
    for (unsigned int i = 0; i < 100; ++i) {
        lines += hex_record(0, 16 * i, "0123456789ABCDEF");
    }
    const int length = lines.size() / 100;
    lines +=
        hex_record(0, 0x1000, "lost").mid(1) + hex_record(0, 0x1004, "gone").mid(1) + end_record;
    for (const char end : {'\r', ' '}) {
        const QJsonObject report = report_on(QByteArray(lines).replace('\n', end));
        EXPECT_THAT(places(report), ElementsAre(QStringLiteral("%1:1:%2")
                                                    .arg(end == '\r' ? QStringLiteral("I010")
                                                                     : QStringLiteral("I011"))
                                                    .arg(100 * length + 1)
                                                    .toStdString()));
    }
}

TEST_F(ImageFacts, FindALostColonAfterManyRemarks)
{
    QByteArray lines;
    for (unsigned int i = 0; i < 1500; ++i) {
        lines += hex_record(0, i, "a").chopped(1) + " ; a remark\n";
    }
    const QJsonObject report = report_on(lines + hex_record(0, 0x1000, "lost").mid(1) + end_record);
    EXPECT_THAT(places(report), ElementsAre("I011:1:15", "I010:1501:1"));
    EXPECT_EQ(report[QStringLiteral("problems")][0][QStringLiteral("message")].toString(),
              QStringLiteral("1500 lines of text that is no record."));
}

TEST_F(ImageFacts, AcceptOtherLineEndsAndBlanksBetweenRecords)
{
    const QByteArray lines = hex_record(0, 0, "abc") + hex_record(0, 3, "def") + end_record;
    for (const char* end : {"\r\n", "\r", "\n\n", " \t\n"}) {
        EXPECT_THAT(codes(report_on(QByteArray(lines).replace('\n', end))), IsEmpty());
    }
    EXPECT_THAT(codes(report_on(lines.chopped(1))), IsEmpty());
}

TEST_F(ImageFacts, CountFurtherPlacesOfAProblem)
{
    const QByteArray unknown = hex_record(6, 0, "a");
    const QJsonObject report =
        report_on(unknown + unknown + hex_record(0, 0, "a") + unknown + end_record);
    EXPECT_THAT(places(report), ElementsAre("I017:1:1"));
    EXPECT_EQ(report[QStringLiteral("problems")][0][QStringLiteral("message")].toString(),
              QStringLiteral("The type is 6. 3 places in all."));
}

TEST_F(ImageFacts, NameBothRecordsOfAnOverlap)
{
    const QJsonObject report =
        report_on(hex_record(0, 0x10, "abcd") + "\n" + hex_record(0, 0x12, "x") + end_record);
    EXPECT_EQ(report[QStringLiteral("problems")][0][QStringLiteral("message")].toString(),
              QStringLiteral("Lines 1 and 3 both have data for 0x00000012."));
}

TEST_F(ImageFacts, NameARecordWithoutDataAmidOtherData)
{
    const QJsonObject report =
        report_on(hex_record(0, 0x10, "abcd") + hex_record(0, 0x12, "") + end_record);
    EXPECT_THAT(places(report), ElementsAre("I009:2:1"));
    const QJsonValue problem = report[QStringLiteral("problems")][0];
    EXPECT_EQ(problem[QStringLiteral("message")].toString(),
              QStringLiteral("A record without data stands at 0x00000012, amid other data."));
    EXPECT_EQ(problem[QStringLiteral("remedy")].toString(),
              QStringLiteral("Remove the record without data."));
}

TEST_F(ImageFacts, AcceptAStartAddressThatMovesNothing)
{
    const QByteArray data = hex_record(0, 0, "a") + end_record;
    const QByteArray start_at_0 = hex_record(5, 0, QByteArray(4, '\0'));
    const QByteArray upper = hex_record(4, 0, QByteArray("\0\1", 2));
    EXPECT_THAT(codes(report_on(start_at_0 + data)), IsEmpty());
    EXPECT_THAT(codes(report_on(upper + hex_record(5, 0, QByteArray("\0\1\0\0", 4)) + data)),
                IsEmpty());
    EXPECT_THAT(places(report_on(upper + start_at_0 + data)), ElementsAre("I015:2:1"));
}

TEST_F(ImageFacts, NameTheFirstOfManyPiecesAtTheEndOfTheAddresses)
{
    const QByteArray data = hex_record(0, 0xFFFE, "ab");
    const QJsonObject report =
        report_on(hex_record(4, 0, "\xFF\xFF") + data + data + data + end_record);
    EXPECT_THAT(places(report), ElementsAre("I018:2:1"));
    EXPECT_EQ(report[QStringLiteral("problems")][0][QStringLiteral("message")].toString(),
              QStringLiteral("A piece of 2 bytes begins at 0xFFFFFFFE. 3 places in all."));
}

TEST_F(ImageFacts, PromiseNoSuccessOfAVerificationThatFails)
{
    const auto outside = [&](const QByteArray& content) {
        const QJsonObject report = report_on(content + end_record, in_device());
        const QJsonValue problem = report[QStringLiteral("problems")][0];
        EXPECT_EQ(problem[QStringLiteral("code")].toString(), QStringLiteral("I019"));
        return problem[QStringLiteral("uploader")].toString();
    };
    EXPECT_TRUE(outside(hex_record(0, 0x7FFE, "abcd")).contains(QStringLiteral("-v and -wv fail")));
    EXPECT_TRUE(outside(hex_record(0, 0x9000, "abcd")).contains(QStringLiteral("and succeed")));
}

TEST_F(ImageFacts, WarnOfTheTableOnlyWhereItIsOfNoUse)
{
    const QString table = put_file(QStringLiteral("device.txt"),
                                   table_row({{13, "0"}}) + table_row({{1, "v0111:"}, {9, "x"}}));
    const QJsonObject report = inspect_json(
        {QStringLiteral("image"),
         put_file(QStringLiteral("a.hex"), hex_record(0, 0x800, "a") + end_record),
         QStringLiteral("--table"), table, QStringLiteral("--device"), QStringLiteral("0110")});
    EXPECT_THAT(places(report), ElementsAre("T005:2:9"));
}

TEST_F(ImageFacts, NeedNotFitIntoMemoryTwice)
{
    // Data at both ends of the address space take no memory for what lies between.
    const QJsonObject report =
        report_on(hex_record(0, 0, "a") + hex_record(4, 0, QByteArray::fromHex("FFFF")) +
                  hex_record(0, 0xFFF0, "b") + end_record);
    EXPECT_EQ(segments(report), "0-1 4294967280-4294967281 ");
}

TEST_F(ImageFacts, OfSeveralFilesStandInAList)
{
    const QString first = put_file(QStringLiteral("a.hex"), hex_record(0, 0, "a") + end_record);
    const QString missing = path(QStringLiteral("none.hex"));
    const inspect::Outcome outcome =
        inspect_run({QStringLiteral("image"), first, missing, QStringLiteral("--json")});
    const QJsonObject report = QJsonDocument::fromJson(outcome.out).object();
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(report[QStringLiteral("images")].toArray().size(), 2);
    EXPECT_EQ(report[QStringLiteral("images")][0][QStringLiteral("bytes")].toInt(), 1);
    EXPECT_THAT(codes(report), ElementsAre("I001"));
}
