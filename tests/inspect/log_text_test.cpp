#include "device/FrameCodec.h"
#include "tests/inspect/InspectTest.h"

#include <gmock/gmock.h>

using namespace test;

// What people read of made-up logs.

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace
{

QByteArray entry(const char* direction, const QByteArray& frames)
{
    return '\n' + QByteArray(direction) + ':' + frames.toHex();
}

QByteArray frame_with(const char* payload)
{
    return frame::encode(QByteArray::fromHex(payload));
}

QByteArray sent(const char* payload)
{
    return entry("TX", frame_with(payload));
}

QByteArray received(const char* payload)
{
    return entry("RX", frame_with(payload));
}

/// A command and its answer.
QByteArray answered(const char* payload, const char* answer)
{
    return sent(payload) + received(answer);
}

const char* const write_row = "020100080001";

class LogText : public InspectTest
{
protected:
    QString log(const QByteArray& lines) const
    {
        return put_file(QStringLiteral("frames.log"), lines);
    }

    /// Without its line breaks.
    std::string text_of(const QByteArray& lines) const
    {
        return inspect_run({QStringLiteral("log"), log(lines)}).out.simplified().toStdString();
    }

    QJsonObject report_on(const QByteArray& lines) const
    {
        return inspect_json({QStringLiteral("log"), log(lines)});
    }

    static std::string message(const QJsonObject& report, int problem = 0)
    {
        return text(report, problem, "message");
    }

    static std::string remedy(const QJsonObject& report, int problem)
    {
        return text(report, problem, "remedy");
    }

private:
    static std::string text(const QJsonObject& report, int problem, const char* key)
    {
        return report[QStringLiteral("problems")][problem][QLatin1String(key)]
            .toString()
            .toStdString();
    }
};

} // namespace

TEST_F(LogText, SaysWhyARunBegins)
{
    const QByteArray written = answered(write_row, "02");
    EXPECT_THAT(text_of(written), HasSubstr("the first in the log"));
    EXPECT_THAT(text_of(written + sent("0000") + written), HasSubstr("after a reset"));
    EXPECT_THAT(text_of(written + answered("0002", "00020110")), HasSubstr("asks for the version"));
    EXPECT_THAT(text_of(written + answered("031e000800", "03")),
                HasSubstr("sends what the run before cannot have sent at this point"));
    EXPECT_THAT(text_of(sent(write_row).repeated(40) + answered("031e000800", "03")),
                HasSubstr("after a failure"));
}

TEST_F(LogText, NamesACommandThatTheUploaderDoesNotSend)
{
    const QByteArray unknown = answered("0001", "000155");
    EXPECT_THAT(text_of(unknown), HasSubstr("an unknown command"));
    EXPECT_THAT(codes(report_on(unknown)), IsEmpty());
}

TEST_F(LogText, SaysThatNotAllIsListed)
{
    const std::string text = text_of(sent("0000").repeated(21000));
    EXPECT_THAT(text, HasSubstr("The first 20000 frames are listed; all count."));
    EXPECT_THAT(text, HasSubstr("The first 1000 runs are listed; all count."));
}

TEST_F(LogText, FindsAnswersThatCameTwice)
{
    const QByteArray twice = sent(write_row) + entry("RX", frame_with("02") + frame_with("02"));
    const QJsonObject report = report_on(twice + answered(write_row, "02"));
    EXPECT_THAT(codes(report), ElementsAre("L012"));
    EXPECT_THAT(message(report), HasSubstr("came several answers at once."));
}

TEST_F(LogText, TakesOneLateEraseOfManyForALostAnswer)
{
    const QJsonObject report =
        report_on(answered("0301000800", "03") + sent("0301000900") + answered("0301000900", "03") +
                  answered("0301000a00", "03") + answered("0301000b00", "03"));
    EXPECT_THAT(codes(report), ElementsAre("L017"));
    EXPECT_THAT(message(report), HasSubstr("1 of 5 attempts came to nothing"));
}

namespace
{

const char* const follows = "Use -h first: this follows from the echo (L010).";
const char* const write_next_row = "020100090002";
const char* const write_other_row = "0201000a0003";

/// A command, and its echo in place of the answer.
QByteArray echoed(const char* payload)
{
    return answered(payload, payload);
}

} // namespace

TEST_F(LogText, PutsTheEchoBeforeWhatFollowsFromIt)
{
    const QJsonObject report =
        report_on(answered("031e000800", "03") + echoed(write_row).repeated(40));
    EXPECT_THAT(codes(report), ElementsAre("L010", "L009"));
    EXPECT_EQ(remedy(report, 0), "Use -h: the line is half duplex.");
    EXPECT_EQ(remedy(report, 1), follows);
}

TEST_F(LogText, TakesAnAcknowledgementAfterAnEchoForAConsequence)
{
    const QByteArray erase = echoed("031e000800") + answered("031e000800", "03");
    const QJsonObject report = report_on(erase + answered(write_row, "03"));
    EXPECT_THAT(codes(report), ElementsAre("L010", "L012"));
    EXPECT_EQ(remedy(report, 1), follows);
}

TEST_F(LogText, BlamesTheEchoForNothingBeforeIt)
{
    const QByteArray erased = answered("031e000800", "03");
    const QJsonObject report =
        report_on(erased + answered(write_row, "03") + erased + echoed(write_row));
    EXPECT_THAT(codes(report), ElementsAre("L010", "L012", "L019"));
    EXPECT_THAT(remedy(report, 1), HasSubstr("Find out why answers take longer"));
}

TEST_F(LogText, BlamesTheEchoForNothingInAnotherRun)
{
    const QByteArray reset = sent("0000");
    const QJsonObject report =
        report_on(echoed(write_row) + answered(write_row, "02") + reset +
                  answered("031e000800", "03") + sent(write_row).repeated(40));
    EXPECT_THAT(codes(report), ElementsAre("L010", "L009"));
    EXPECT_THAT(remedy(report, 1), HasSubstr("Look at what else is reported"));
}

/// On an echoing line at least the echo would come.
TEST_F(LogText, BlamesTheEchoForNoSilence)
{
    const QJsonObject report = report_on(echoed(write_row) + answered(write_row, "02") +
                                         sent(write_next_row).repeated(40));
    EXPECT_THAT(codes(report), ElementsAre("L010", "L009"));
    EXPECT_THAT(remedy(report, 1), HasSubstr("Look at what else is reported"));
}

/// Echoes pile up when each attempt takes one answer and gets two.
TEST_F(LogText, KnowsTheEchoOfACommandLongAgo)
{
    QByteArray lines = answered(write_row, "02");
    for (const char* row : {"020100090001", "0201000a0001", "0201000b0001", "0201000c0001",
                            "0201000d0001", "0201000e0001"}) {
        lines += answered(row, "02");
    }
    const QJsonObject report = report_on(lines + answered(write_other_row, write_row));
    EXPECT_THAT(codes(report), ElementsAre("L010", "L019"));
}

TEST_F(LogText, KnowsAnEchoBetweenOtherAnswers)
{
    const QByteArray both = frame_with("02") + frame_with(write_row);
    const QJsonObject report = report_on(answered(write_row, "02") + sent(write_next_row) +
                                         entry("RX", both) + answered(write_next_row, "02"));
    EXPECT_THAT(codes(report), ElementsAre("L010"));
}

TEST_F(LogText, NamesASlowEraseWhereNoEraseIsAnswered)
{
    const QByteArray erase = sent("031e000800");
    for (const QByteArray& begin : {QByteArray(), answered("0002", "00020110")}) {
        EXPECT_THAT(
            remedy(report_on(begin + erase.repeated(40)), 0),
            AllOf(HasSubstr("Run -v FILE. If its reads are answered, erasing takes too long"),
                  HasSubstr(". If not, c"))); // what to check or to correct
        EXPECT_THAT(remedy(report_on(begin + sent(write_row).repeated(40)), 0),
                    Not(HasSubstr("-v FILE")));
    }
}

namespace
{

/// Logs beside a table of two devices.
class LogBesideATable : public LogText
{
protected:
    std::string text_of(const QByteArray& lines) const
    {
        return run(lines, {}).out.simplified().toStdString();
    }

    inspect::Outcome run(const QByteArray& lines, const QStringList& options) const
    {
        const QString table =
            put_file(QStringLiteral("device.txt"), table_row() + table_row({{1, "v0111:"}}));
        return inspect_run(
            QStringList{QStringLiteral("log"), log(lines), QStringLiteral("--table"), table} +
            options);
    }
};

const char* const which_device = "has several devices, and the log names none of them: --device";

} // namespace

TEST_F(LogBesideATable, GoesWithoutByteAddressesWhereNoVersionIsReported)
{
    const QByteArray written = answered(write_row, "02");
    EXPECT_THAT(text_of(written), HasSubstr("write 1 byte to flash at word 0x000800"));
    EXPECT_THAT(text_of(written), HasSubstr(which_device));
    EXPECT_EQ(run(written, {}).status, 0);
    const QByteArray json = run(written, {QStringLiteral("--json")}).out;
    EXPECT_TRUE(QJsonDocument::fromJson(json)[QStringLiteral("device")].isNull());
}

TEST_F(LogBesideATable, TakesTheDeviceThatReportsItsVersion)
{
    const std::string text = text_of(answered("0002", "00020111") + answered(write_row, "02"));
    EXPECT_THAT(text, HasSubstr("(byte 0x00000800)"));
    EXPECT_THAT(text, Not(HasSubstr(which_device)));
}

TEST_F(LogBesideATable, GoesWithoutByteAddressesWhereTheVersionIsUnknown)
{
    EXPECT_THAT(text_of(answered("0002", "00020112") + answered(write_row, "02")),
                HasSubstr(which_device));
}
