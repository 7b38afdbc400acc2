#include "tests/inspect/InspectTest.h"
#include "tests/inspect/ProcessRun.h"

#include <gmock/gmock.h>

using namespace test;

// What the report and its documentation advise for files with segment records.

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class Conversion : public InspectTest
{
protected:
    QJsonObject report_on(const QString& name) const
    {
        return inspect_json({QStringLiteral("image"), path(name)});
    }

    QByteArray advice(const QString& name) const
    {
        const QJsonObject report = report_on(name);
        return report[QStringLiteral("problems")][0][QStringLiteral("remedy")]
            .toString()
            .toLocal8Bit();
    }
};

/// 1 2 3 4 at 0x10010 and 5 6 7 8 at 0x8800, and an entry point, as tools for 16-bit processors
/// write them.
QByteArray segmented_image()
{
    return hex_record(2, 0, QByteArray::fromHex("1000")) +
           hex_record(0, 0x10, QByteArray::fromHex("01020304")) +
           hex_record(2, 0, QByteArray::fromHex("0800")) +
           hex_record(0, 0x800, QByteArray::fromHex("05060708")) +
           hex_record(3, 0, QByteArray::fromHex("10000010")) + end_record;
}

} // namespace

TEST_F(Conversion, AsAdvisedMakesAFileThatLoads)
{
    for (const char* name : {"segmented.hex", "with blank and 'quote'.hex"}) {
        const QString image = QString::fromLatin1(name);
        put_file(image, segmented_image());
        QByteArray command = advice(image);
        ASSERT_TRUE(command.contains(": srec_cat ")) << command.constData();
        command = command.mid(command.indexOf("srec_cat ") + 8);
        const ProcessResult result =
            run_process(QStringLiteral("/bin/sh"),
                        {QStringLiteral("-c"),
                         QStringLiteral("cd \"$1\" && " SREC_CAT) + QString::fromLocal8Bit(command),
                         QStringLiteral("sh"), path(QString())});
        ASSERT_EQ(result.status, 0) << result.err.constData();
        const QJsonObject report = report_on(QStringLiteral("converted.hex"));
        EXPECT_THAT(codes(report), IsEmpty());
        EXPECT_EQ(report[QStringLiteral("segments")][0][QStringLiteral("start")].toInt(), 0x8800);
        EXPECT_EQ(report[QStringLiteral("segments")][1][QStringLiteral("start")].toInt(), 0x10010);
        EXPECT_EQ(report[QStringLiteral("bytes")].toInt(), 8);
        ASSERT_TRUE(QFile::remove(path(QStringLiteral("converted.hex"))));
    }
}

TEST_F(Conversion, WithObjcopyWorksBelow64KiBOnly)
{
    put_file(QStringLiteral("low.hex"), hex_record(2, 0, QByteArray::fromHex("0800")) +
                                            hex_record(0, 0x800, QByteArray::fromHex("05060708")) +
                                            hex_record(3, 0, QByteArray::fromHex("10000010")) +
                                            end_record);
    put_file(QStringLiteral("high.hex"), segmented_image());
    for (const char* name : {"low", "high"}) {
        const QString from = path(QString::fromLatin1(name) + QStringLiteral(".hex"));
        const QString to = path(QString::fromLatin1(name) + QStringLiteral("_new.hex"));
        const ProcessResult result = run_process(
            QStringLiteral(OBJCOPY),
            {QStringLiteral("-I"), QStringLiteral("ihex"), QStringLiteral("-O"),
             QStringLiteral("ihex"), QStringLiteral("--set-start"), QStringLiteral("0"), from, to});
        ASSERT_EQ(result.status, 0) << result.err.constData();
    }
    EXPECT_THAT(codes(report_on(QStringLiteral("low_new.hex"))), IsEmpty());
    EXPECT_THAT(codes(report_on(QStringLiteral("high_new.hex"))), ElementsAre("I007"));
}
