#include "gang/TableText.h"
#include "tests/gang/GangTest.h"
#include "tests/support/Waiting.h"

#include <QRegularExpression>

using namespace test;

namespace
{

using gang::RunState;
using gang::Verdict;
using Phase = gang::RunState::Phase;

RunState state(const char* name, Phase phase, double done = 0, Verdict verdict = Verdict::Ok,
               const char* message = "")
{
    RunState state;
    state.port = {QStringLiteral("/dev/") + QLatin1String(name), QLatin1String(name), 1};
    state.phase = phase;
    state.done = done;
    state.verdict = verdict;
    state.message = QLatin1String(message);
    state.seconds = 12.34;
    state.attempt = 1;
    return state;
}

std::string table(const gang::RunStates& states, int columns, int lines)
{
    return table_text(states, {columns, lines, false}, 42, 30)
        .join(QLatin1Char('\n'))
        .toStdString();
}

const gang::RunStates few = {state("ttyUSB0", Phase::Done), state("ttyUSB1", Phase::Writing, 0.5),
                             state("ttyUSB2", Phase::Done, 0.25, Verdict::Mismatch,
                                   "Row verify failure at address 0x00000800"),
                             state("ttyUSB3", Phase::Waiting)};

TEST(TableText, HasALineForEachPort)
{
    EXPECT_EQ(table(few, 80, 24),
              "zserial-gang  4 ports: 1 failed, 1 running, 1 waiting, 1 ok  42.0 s\n"
              "ttyUSB0       done       [############] 100%  12.3 s           ok              \n"
              "ttyUSB1       writing    [######......]  50%   0.0 s / 30.0 s                  \n"
              "ttyUSB2       done       [###.........]  25%  12.3 s           mismatch: Row v~\n"
              "ttyUSB3       waiting    [............]        0.0 s                           ");
}

TEST(TableText, NamesThePhase)
{
    const std::vector<std::pair<Phase, const char*>> phases = {
        {Phase::Waiting, "waiting"},       {Phase::Running, "running"},
        {Phase::Writing, "writing"},       {Phase::Verifying, "verifying"},
        {Phase::Certifying, "certifying"}, {Phase::Pausing, "pausing"},
        {Phase::Skipped, "left out"},      {Phase::Done, "done"}};
    for (const auto& [phase, name] : phases) {
        EXPECT_EQ(table_line(state("ttyUSB0", phase), {80, 24, false}, 0)
                      .mid(14)
                      .section(QLatin1Char('['), 0, 0)
                      .trimmed()
                      .toStdString(),
                  name);
    }
}

TEST(TableText, ShowsAMinuteAndMoreAsMinutesAndSeconds)
{
    RunState slow = state("ttyUSB0", Phase::Done);
    slow.seconds = 59.9;
    EXPECT_TRUE(table_line(slow, {80, 24, false}, 0).contains(QStringLiteral(" 59.9 s ")));
    slow.seconds = 60;
    EXPECT_TRUE(table_line(slow, {80, 24, false}, 0).contains(QStringLiteral(" 1:00 ")));
    slow.seconds = 725.9;
    EXPECT_TRUE(table_line(slow, {80, 24, false}, 0).contains(QStringLiteral(" 12:05 ")));
}

TEST(TableText, ExpectsWhatItsOwnPaceComesToIfNoOtherIsKnown)
{
    RunState half = state("ttyUSB0", Phase::Writing, 0.5);
    half.since.start();
    ASSERT_TRUE(wait_until([&half] { return half.since.elapsed() >= 100; }));
    const QString line = table_line(half, {80, 24, false}, 0);
    EXPECT_TRUE(line.contains(QRegularExpression(QStringLiteral("\\d\\.\\d s / \\d+\\.\\d s "))))
        << line.toStdString();
    half.done = 0;
    EXPECT_TRUE(table_line(half, {80, 24, false}, 0).contains(QStringLiteral(" s / - ")));
}

TEST(TableText, SaysWhyAPortIsLeftOut)
{
    const RunState skipped = state("ttyUSB0", Phase::Skipped, 0, Verdict::Failed, "no number");
    EXPECT_TRUE(
        table_line(skipped, {80, 24, false}, 0).trimmed().endsWith(QStringLiteral("no number")));
    EXPECT_EQ(table({skipped}, 80, 24).substr(0, 41), "zserial-gang  1 ports: 1 left out  42.0 s");
}

TEST(TableText, UsesTheWidthThatThereIs)
{
    for (const int columns : {1, 20, 40, 79, 80, 120, 300}) {
        for (const QString& line : table_text(few, {columns, 24, false}, 42, 30)) {
            EXPECT_LT(line.size(), columns);
        }
    }
    EXPECT_NE(table(few, 140, 24).find("mismatch: Row verify failure at address 0x00000800"),
              std::string::npos);
}

TEST(TableText, ShowsFailuresFirstWhenThereIsNoRoom)
{
    gang::RunStates many;
    for (int i = 0; i < 10; ++i) {
        many.push_back(state(QByteArray("ok" + QByteArray::number(i)).constData(), Phase::Done));
    }
    many.push_back(state("busy", Phase::Running));
    many.push_back(state("bad", Phase::Done, 0, Verdict::Silent));
    const QStringList lines = table_text(many, {80, 6, false}, 1, 0);
    ASSERT_EQ(lines.size(), 6);
    EXPECT_TRUE(lines.at(1).startsWith(QStringLiteral("bad ")));
    EXPECT_TRUE(lines.at(2).startsWith(QStringLiteral("busy ")));
    EXPECT_TRUE(lines.at(3).startsWith(QStringLiteral("ok0 ")));
    EXPECT_EQ(lines.at(5), QStringLiteral("and 8 more: 8 ok"));
}

TEST(TableText, ColoursTheVerdictOnly)
{
    const QString line = table_line(few.at(2), {80, 24, true}, 0);
    EXPECT_TRUE(line.contains(QStringLiteral("\033[31mmismatch")));
    EXPECT_TRUE(line.endsWith(QStringLiteral("\033[0m")));
    EXPECT_FALSE(table_line(few.at(2), {80, 24, false}, 0).contains(QLatin1Char('\033')));
}

TEST(TableText, ShowsTheEndOfALongName)
{
    RunState named = state("usb-adapter-with-serial-A1234-port0", Phase::Waiting);
    EXPECT_TRUE(table_line(named, {80, 24, false}, 0).startsWith(QStringLiteral("~1234-port0 ")) ||
                table_line(named, {80, 24, false}, 0).contains(QStringLiteral("port0")));
}

} // namespace
