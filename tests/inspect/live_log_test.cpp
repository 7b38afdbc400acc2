#include "sim/device/SimulatedDevice.h"
#include "sim/rig/Rig.h"
#include "tests/inspect/InspectTest.h"
#include "tests/support/Replies.h"
#include "tests/support/ToolRun.h"

#include <gmock/gmock.h>

#include <memory>

using namespace test;

// Logs that the real uploader writes on a line where something is wrong, and what is found in them.

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

namespace
{

constexpr int attempts = 40;

/// Rows of flash from the begin of a page on.
QByteArray image_of_rows(int rows)
{
    constexpr int record_size = 16;
    QByteArray text;
    for (int i = 0; i < rows * 128 / record_size; ++i) {
        text += hex_record(0, static_cast<unsigned int>(0x800 + i * record_size),
                           QByteArray(record_size, static_cast<char>(i + 1)));
    }
    return text + end_record;
}

/// The uploader beside a simulated device, with its log.
class LiveLog : public testing::Test
{
protected:
    LiveLog()
    {
        m_tool.put_file(QStringLiteral("device.txt"), table_row());
        m_tool.put_file(QStringLiteral("a.hex"), image_of_rows(4));
    }

    /// Adds to the log. Returns the status.
    int run(const sim::SimulatedDevice& device, const char* arguments) const
    {
        return m_tool
            .run(QStringList{QStringLiteral("-s"), device.port_path(), QStringLiteral("-x"),
                             QStringLiteral("frames.log")} +
                 QString::fromLatin1(arguments).split(QLatin1Char(' ')))
            .status;
    }

    /// The same on a device with a fault.
    int run_with_fault(const char* fault, const char* arguments)
    {
        sim::RigOptions options;
        sim::add_fault(options.faults, QString::fromLatin1(fault));
        sim::Rig rig(*m_lark, options);
        return run(rig.device(), arguments);
    }

    QJsonObject report() const
    {
        return inspect_json({QStringLiteral("log"), m_tool.path(QStringLiteral("frames.log")),
                             QStringLiteral("--table"), m_tool.path(QStringLiteral("device.txt"))});
    }

    ToolRun m_tool;
    const std::unique_ptr<Profile> m_lark = lark_profile();
};

std::string message_of(const QJsonObject& report, const char* code)
{
    for (const QJsonValue problem : report[QStringLiteral("problems")].toArray()) {
        if (problem[QStringLiteral("code")] == QLatin1String(code)) {
            return problem[QStringLiteral("message")].toString().toStdString();
        }
    }
    return "no such problem";
}

int commands(const QJsonObject& report, const char* kind)
{
    return report[QStringLiteral("commands")][QLatin1String(kind)].toInt();
}

std::vector<std::string> of_runs(const QJsonObject& report, const char* key)
{
    std::vector<std::string> texts;
    for (const QJsonValue run : report[QStringLiteral("runs")].toArray()) {
        texts.push_back(run[QLatin1String(key)].toString().toStdString());
    }
    return texts;
}

} // namespace

TEST_F(LiveLog, OfAGoodRunHasNoProblem)
{
    sim::SimulatedDevice device(*m_lark, {sim::Entry::Version});
    ASSERT_EQ(run(device, "-e -w a.hex -r b.hex -v a.hex -R"), 0);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), IsEmpty());
    EXPECT_EQ(commands(found, "version"), 1);
    EXPECT_EQ(commands(found, "erase"), 1);
    EXPECT_EQ(commands(found, "write"), 4);
    EXPECT_EQ(commands(found, "read"), 240 + 32 + 4);
    EXPECT_EQ(commands(found, "reset"), 1);
    EXPECT_EQ(found[QStringLiteral("retries")].toInt(), 0);
    EXPECT_THAT(of_runs(found, "ends"), ElementsAre("reset"));
}

TEST_F(LiveLog, OfAPageByPageUpdateIsOneRun)
{
    sim::SimulatedDevice device(*m_lark);
    m_tool.put_file(QStringLiteral("a.hex"), image_of_rows(20));
    ASSERT_EQ(run(device, "-B 0110 -wv a.hex"), 0);
    ASSERT_EQ(run(device, "-B 0110 -wv a.hex"), 0);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), IsEmpty());
    EXPECT_THAT(of_runs(found, "begins"), ElementsAre("start", "order"));
}

TEST_F(LiveLog, AccountsForEveryByteThatTheDeviceHeard)
{
    sim::RigOptions options;
    sim::add_fault(options.faults, QStringLiteral("lose-response=0.2"));
    sim::Rig rig(*m_lark, options);
    ASSERT_EQ(run(rig.device(), "-B 0110 -e -w a.hex -v a.hex"), 0);
    const QJsonObject found = report();
    EXPECT_EQ(found[QStringLiteral("bytes")][QStringLiteral("to_device")].toInt(),
              rig.device().bytes_from_host());
    EXPECT_EQ(commands(found, "erase") + commands(found, "write") + commands(found, "read") +
                  found[QStringLiteral("retries")].toInt(),
              static_cast<int>(rig.device().commands().size()));
}

TEST_F(LiveLog, ShowsLostAnswers)
{
    ASSERT_EQ(run_with_fault("lose-response@2,4", "-B 0110 -w a.hex -v a.hex"), 0);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L017"));
    EXPECT_EQ(message_of(found, "L017"),
              "2 of 10 attempts came to nothing, and the next one was answered; the first: write "
              "128 bytes to flash at word 0x000880 (byte 0x00000880).");
    EXPECT_EQ(found[QStringLiteral("retries")].toInt(), 2);
    EXPECT_EQ(found[QStringLiteral("longest_streak")].toInt(), 1);
    EXPECT_EQ(found[QStringLiteral("error_rate")].toDouble(), 0.2);
}

TEST_F(LiveLog, ShowsDamagedAnswers)
{
    sim::SimulatedDevice device(*m_lark);
    device.set_reply_filter(to_command(1, raw("55 55 02 FD 04")));
    ASSERT_EQ(run(device, "-B 0110 -w a.hex"), 0);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L016"));
    EXPECT_EQ(message_of(found, "L016"), "1 answer: response checksum mismatch (1).");
}

TEST_F(LiveLog, ShowsNoise)
{
    sim::SimulatedDevice device(*m_lark);
    device.set_reply_filter(to_command(1, raw("31 32 33 55 55 02 FE 04")));
    ASSERT_EQ(run(device, "-B 0110 -w a.hex"), 0);
    EXPECT_THAT(codes(report()), ElementsAre("L015"));
}

TEST_F(LiveLog, ShowsFaultyLinesAsSuch)
{
    for (const char* fault : {"corrupt-response=0.3", "noise=0.3", "truncate-response=0.3"}) {
        ASSERT_EQ(run_with_fault(fault, "-B 0110 -e -w a.hex -v a.hex"), 0) << fault;
    }
    EXPECT_THAT(codes(report()), AllOf(IsSupersetOf({"L015", "L016", "L017"}),
                                       Not(Contains("L010")), Not(Contains("L011"))));
}

TEST_F(LiveLog, ShowsAnEchoInPlaceOfTheAnswer)
{
    sim::SimulatedDevice device(*m_lark, {sim::Entry::Probe, sim::Options::Echo::Apart});
    device.set_reply_filter(always(no_reply()));
    ASSERT_EQ(run(device, "-B 0110 -e"), 1);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L010", "L009"));
    EXPECT_THAT(message_of(found, "L010"), HasSubstr("The first of 40 places."));
}

TEST_F(LiveLog, ShowsAnEchoInFrontOfTheAnswer)
{
    sim::SimulatedDevice device(*m_lark, {sim::Entry::Probe, sim::Options::Echo::Together});
    ASSERT_EQ(run(device, "-B 0110 -e"), 1);
    EXPECT_THAT(codes(report()), Contains("L010"));
}

TEST_F(LiveLog, HasNoEchoOfAHalfDuplexRun)
{
    sim::SimulatedDevice device(*m_lark, {sim::Entry::Probe, sim::Options::Echo::Apart});
    ASSERT_EQ(run(device, "-h -B 0110 -e -w a.hex"), 0);
    EXPECT_THAT(codes(report()), Not(Contains("L010")));
}

TEST_F(LiveLog, ShowsARateThatTheDeviceDoesNotHear)
{
    const auto slower = lark_profile({{2, "57600"}});
    sim::SimulatedDevice device(*slower, {sim::Entry::Version});
    ASSERT_EQ(run(device, "-e"), 1);
    EXPECT_THAT(codes(report()), ElementsAre("L008"));
}

TEST_F(LiveLog, ShowsThatNothingIsAnswered)
{
    sim::SimulatedDevice device(*m_lark, {sim::Entry::Silent});
    ASSERT_EQ(run(device, "-B 0110 -e"), 1);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L007"));
    EXPECT_EQ(message_of(found, "L007"),
              "40 attempts to erase 30 pages of flash at word 0x000800 (byte "
              "0x00000800): 40 without an answer, 0 with one that was refused.");
    EXPECT_EQ(found[QStringLiteral("longest_streak")].toInt(), attempts - 1);
}

TEST_F(LiveLog, ShowsThatNoDeviceIsFound)
{
    sim::SimulatedDevice device(*m_lark, {sim::Entry::Silent});
    ASSERT_EQ(run(device, "-e"), 1);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L006"));
    EXPECT_THAT(of_runs(found, "ends"), ElementsAre("failure"));
}

TEST_F(LiveLog, ShowsADeviceThatStopsAnswering)
{
    ASSERT_EQ(run_with_fault("power-loss@3", "-B 0110 -e -w a.hex"), 1);
    EXPECT_THAT(codes(report()), ElementsAre("L009"));
}

/// The device acknowledges the repeated erase, too, which the write meets alone or with others.
TEST_F(LiveLog, ShowsAnEraseThatTakesTooLong)
{
    sim::Options options;
    options.erase_page_ms = 15; // 450 ms for all pages
    sim::SimulatedDevice device(*m_lark, options);
    run(device, "-B 0110 -e -w a.hex");
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L011", "L012"));
    EXPECT_THAT(message_of(found, "L011"), HasSubstr("1 of 1 erase not acknowledged before"));
    EXPECT_THAT(message_of(found, "L012"), HasSubstr("To write 128 bytes to flash at word 0x000800 "
                                                     "(byte 0x00000800) came the "));
}

TEST_F(LiveLog, ShowsSinglePagesThatTakeTooLong)
{
    sim::Options options;
    options.erase_page_ms = 350;
    sim::SimulatedDevice device(*m_lark, options);
    run(device, "-B 0110 -wv a.hex");
    EXPECT_THAT(codes(report()), IsSupersetOf({"L011", "L012"}));
}

TEST_F(LiveLog, ShowsReadsThatAreAnsweredOneRowLate)
{
    sim::SimulatedDevice device(*m_lark);
    QByteArray held;
    device.set_reply_filter([&](const sim::Command&, const QByteArray& answer) {
        const QByteArray late = std::exchange(held, answer);
        return late.isEmpty() ? Reply() : Reply{{late}};
    });
    ASSERT_EQ(run(device, "-B 0110 -l 0x800 0xA00 b.hex"), 0);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L012", "L017"));
    EXPECT_THAT(message_of(found, "L012"), HasSubstr("The first of 3 places."));
}

TEST_F(LiveLog, ShowsAcknowledgementsThatComeOneRowLateAtTheNextRead)
{
    sim::SimulatedDevice device(*m_lark);
    QByteArray held;
    device.set_reply_filter([&](const sim::Command&, const QByteArray& answer) {
        const QByteArray late = std::exchange(held, answer);
        return late.isEmpty() ? Reply() : Reply{{late}};
    });
    ASSERT_EQ(run(device, "-B 0110 -w a.hex -v a.hex"), 0);
    const QJsonObject found = report();
    EXPECT_THAT(message_of(found, "L012"),
                HasSubstr("To read 64 words of flash at word 0x000800 (byte 0x00000800) "
                          "came the answer to: write 128 bytes to flash"));
}

TEST_F(LiveLog, ShowsAWrongAcknowledgement)
{
    sim::SimulatedDevice device(*m_lark);
    device.set_reply_filter(to_command(1, frame_of("0A")));
    ASSERT_EQ(run(device, "-B 0110 -w a.hex"), 1);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L013"));
    EXPECT_THAT(message_of(found, "L013"), HasSubstr("came 0x0A instead of 0x02."));
}

TEST_F(LiveLog, ShowsATableWithOtherWords)
{
    const auto other = lark_profile({{10, "4"}, {11, "4"}});
    sim::SimulatedDevice device(*other);
    ASSERT_EQ(run(device, "-B 0110 -l 0x800 0x880 b.hex"), 1);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L009", "L014"));
    EXPECT_THAT(message_of(found, "L014"), HasSubstr("response contained 256 bytes, expected 128"));
}

TEST_F(LiveLog, ShowsARowThatWasNotWritten)
{
    ASSERT_EQ(run_with_fault("phantom-write@3", "-B 0110 -wv a.hex"), 1);
    EXPECT_THAT(codes(report()), Contains("L018"));
}

TEST_F(LiveLog, ShowsAPortThatVanishes)
{
    ASSERT_EQ(run_with_fault("unplug@4", "-B 0110 -w a.hex"), 1);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), ElementsAre("L019"));
    EXPECT_THAT(of_runs(found, "ends"), ElementsAre("break"));
}

TEST_F(LiveLog, IsSplitIntoRuns)
{
    sim::SimulatedDevice device(*m_lark, {sim::Entry::Version});
    ASSERT_EQ(run(device, "-B 0110 -e -w a.hex"), 0);
    ASSERT_EQ(run(device, "-B 0110 -e -w a.hex -v a.hex -R"), 0);
    ASSERT_EQ(run(device, "-B 0110 -v a.hex"), 0);
    ASSERT_EQ(run(device, "-l 0x800 0x900 b.hex"), 0);
    const QJsonObject found = report();
    EXPECT_THAT(codes(found), IsEmpty());
    EXPECT_THAT(of_runs(found, "begins"), ElementsAre("start", "order", "reset", "version"));
    EXPECT_THAT(of_runs(found, "ends"), ElementsAre("open", "reset", "open", "open"));
}

TEST_F(LiveLog, BeginsAnewAfterAFailure)
{
    sim::SimulatedDevice device(*m_lark);
    device.set_reply_filter(to_command(0, frame_of("0A")));
    ASSERT_EQ(run(device, "-B 0110 -e"), 1);
    ASSERT_EQ(run(device, "-B 0110 -e -w a.hex"), 0);
    const QJsonObject found = report();
    EXPECT_THAT(of_runs(found, "begins"), ElementsAre("start", "failure"));
    EXPECT_THAT(of_runs(found, "ends"), ElementsAre("failure", "open"));
}
