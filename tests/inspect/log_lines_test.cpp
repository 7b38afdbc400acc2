#include "inspect/LogReader.h"
#include "tests/inspect/InspectTest.h"

#include <gmock/gmock.h>

using namespace test;

// A log as a file: which lines are entries, and what becomes of the others.

using inspect::LogReader;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class LogLines : public InspectTest
{
protected:
    /// Kind and number of each line.
    std::vector<std::string> lines_of(const QByteArray& content) const
    {
        static const char* const names[] = {"sent", "received", "damaged", "other"};
        QFile file(put_file(QStringLiteral("frames.log"), content));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        LogReader reader(file);
        std::vector<std::string> lines;
        while (const auto line = reader.next()) {
            lines.push_back(names[static_cast<int>(line->kind)] + std::string(" ") +
                            std::to_string(line->number));
        }
        return lines;
    }

    std::string damage_of(const QByteArray& content) const
    {
        QFile file(put_file(QStringLiteral("frames.log"), content));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return LogReader(file).next()->damage.toStdString();
    }
};

} // namespace

TEST_F(LogLines, BeginWithANewlineAsTheUploaderWritesThem)
{
    EXPECT_THAT(lines_of("\nTX:555500000004\nRX:555502fe04"), ElementsAre("sent 2", "received 3"));
}

TEST_F(LogLines, HaveTheBytesOfTheirFrames)
{
    QFile file(put_file(QStringLiteral("frames.log"), "\nTX:555500000004"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(LogReader(file).next()->frame.toHex().toStdString(), "555500000004");
}

TEST_F(LogLines, MayHaveBeenThroughAnotherSystem)
{
    EXPECT_THAT(lines_of("\r\nTX:555500000004\r\nRX:555502FE04 \r\n"),
                ElementsAre("sent 2", "received 3"));
}

TEST_F(LogLines, OfNoLogAreOther)
{
    EXPECT_THAT(lines_of("kept\nTX:555500000004\ntx:00\n TX:00"),
                ElementsAre("other 1", "sent 2", "other 3", "other 4"));
}

TEST_F(LogLines, ThatAreCutAreDamaged)
{
    EXPECT_EQ(damage_of("TX:555500000"), "it has 9 digits, and a byte has two");
    EXPECT_EQ(damage_of("T"), "it ends after 1 character");
    EXPECT_EQ(damage_of("RX"), "it ends after 2 characters");
}

TEST_F(LogLines, WithOtherCharactersAreDamaged)
{
    EXPECT_EQ(damage_of("TX:55550g0000"), "character 9 is no hexadecimal digit");
    EXPECT_EQ(damage_of(QByteArray("RX:55\00055", 8)), "character 6 is no hexadecimal digit");
}

TEST_F(LogLines, ThatAreTooLongAreNotHeld)
{
    const QByteArray digits(static_cast<int>(3 * LogReader::longest_line), '5');
    EXPECT_THAT(lines_of("TX:" + digits + "\nTX:555500000004\n" + digits),
                ElementsAre("damaged 1", "sent 2", "other 3"));
    EXPECT_EQ(damage_of("TX:" + digits), "it has more than 1 MiB");
}

TEST_F(LogLines, OfAnEmptyFileAreNone)
{
    EXPECT_THAT(lines_of(""), IsEmpty());
    EXPECT_THAT(lines_of("\n\n\n"), IsEmpty());
}

TEST_F(LogLines, AreListedUpToALimitAndAllCounted)
{
    constexpr int resets = 21000;
    const QString log =
        put_file(QStringLiteral("frames.log"), QByteArray("\nTX:555500000004").repeated(resets));
    const QJsonObject report = inspect_json({QStringLiteral("log"), log});
    EXPECT_EQ(report[QStringLiteral("frame_count")].toInt(), resets);
    EXPECT_EQ(report[QStringLiteral("run_count")].toInt(), resets);
    EXPECT_EQ(report[QStringLiteral("frames")].toArray().size(), 20000);
    EXPECT_EQ(report[QStringLiteral("runs")].toArray().size(), 1000);
}
