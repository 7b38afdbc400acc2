#include "device/FrameCodec.h"
#include "tests/inspect/InspectTest.h"

#include <gmock/gmock.h>

using namespace test;

// What people read of made-up logs.

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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

    static std::string message(const QJsonObject& report)
    {
        return report[QStringLiteral("problems")][0][QStringLiteral("message")]
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
