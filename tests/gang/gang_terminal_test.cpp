#include "tests/gang/GangTest.h"
#include "tests/support/Waiting.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

using namespace test;

namespace
{

/// Runs a gang in tmux, a real terminal whose screen can be captured as text.
class GangTerminal : public GangTest
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE(QStandardPaths::findExecutable(QStringLiteral("tmux")).isEmpty());
        m_good = device(link("--entry version", "ttyA"));
        m_silent = device(link("--entry silent", "ttyC"));
    }

    ~GangTerminal() override { tmux(words("kill-server")); }

    QByteArray link(const char* options, const char* name) const
    {
        return QByteArray(options) + " --link " + path(QLatin1String(name)).toUtf8();
    }

    std::unique_ptr<SimProcess> device(const QByteArray& options) const
    {
        return GangTest::device(options.constData());
    }

    QByteArray tmux(const QStringList& arguments) const
    {
        QProcess process;
        process.setWorkingDirectory(folder());
        process.start(QStringLiteral("tmux"),
                      QStringList{QStringLiteral("-f"), QStringLiteral("/dev/null"),
                                  QStringLiteral("-S"), path(QStringLiteral("tmux"))} +
                          arguments);
        process.waitForFinished();
        return process.readAllStandardOutput();
    }

    /// Starts a gang for a good device, a port that does not exist and a device that stays silent
    /// for longer than the test takes.
    void start(const char* columns, const char* lines, const char* environment = "") const
    {
        const QString command =
            QStringLiteral(
                "env LC_ALL=C.UTF-8 %1 %2 --zserial %3 --tries 3 ./ttyA ttyB ./ttyC -- -wv "
                "image.hex; sleep 60")
                .arg(QLatin1String(environment), QStringLiteral(ZSERIAL_GANG_PROGRAM),
                     QStringLiteral(ZSERIAL_PROGRAM));
        tmux({QStringLiteral("new-session"), QStringLiteral("-d"), QStringLiteral("-x"),
              QLatin1String(columns), QStringLiteral("-y"), QLatin1String(lines), command});
    }

    /// Returns the screen without blank lines and with each time replaced by TIME.
    std::string screen() const
    {
        QString text = QString::fromUtf8(tmux(words("capture-pane -p")));
        text.replace(QRegularExpression(QStringLiteral(" *\\d+\\.\\d s")), QStringLiteral(" TIME"));
        text.replace(QRegularExpression(QStringLiteral(" *\\n\\n*")), QStringLiteral("\n"));
        text.replace(QRegularExpression(QStringLiteral(" +/")), QStringLiteral(" /"));
        return text.toStdString();
    }

    bool shows(const char* pattern) const
    {
        const QRegularExpression wanted(QString::fromLatin1(pattern));
        return wait_until(
            [&] { return wanted.match(QString::fromStdString(screen())).hasMatch(); });
    }

    std::unique_ptr<SimProcess> m_good;
    std::unique_ptr<SimProcess> m_silent;
};

TEST_F(GangTerminal, ShowsATableThatFollowsTheSize)
{
    start("80", "24");
    ASSERT_TRUE(shows("ttyA +done")) << screen();
    ASSERT_TRUE(shows("ttyB +done")) << screen();
    EXPECT_EQ(screen(), "zserial-gang  3 ports: 1 failed, 1 running, 1 ok TIME\n"
                        "ttyA          done       [############] 100% TIME           ok\n"
                        "ttyB          done       [............] TIME           port: Port ttyB~\n"
                        "ttyC          running    [............] TIME / TIME\n");
    tmux(words("resize-window -x 120 -y 40"));
    ASSERT_TRUE(shows("ttyB cannot be opened")) << screen();
    EXPECT_EQ(screen(),
              "zserial-gang  3 ports: 1 failed, 1 running, 1 ok TIME\n"
              "ttyA                 done       [####################] 100% TIME           ok\n"
              "ttyB                 done       [....................] TIME           port: "
              "Port ttyB cannot be opened. Aborti~\n"
              "ttyC                 running    [....................] TIME / TIME\n");
    tmux(words("resize-window -x 60 -y 3"));
    ASSERT_TRUE(shows("and 2 more: 1 running, 1 ok")) << screen();
}

TEST_F(GangTerminal, HasColours)
{
    start("80", "24");
    ASSERT_TRUE(shows("ttyA +done"));
    EXPECT_TRUE(tmux(words("capture-pane -p -e")).contains("\033[32mok"));
}

TEST_F(GangTerminal, HasNoColoursIfTheyAreNotWanted)
{
    start("80", "24", "NO_COLOR=1");
    ASSERT_TRUE(shows("ttyA +done"));
    EXPECT_FALSE(tmux(words("capture-pane -p -e")).contains("\033[3"));
}

TEST_F(GangTerminal, LeavesTheSummaryOnTheScreen)
{
    start("80", "24");
    ASSERT_TRUE(shows("ttyC +running"));
    tmux(words("send-keys C-c"));
    ASSERT_TRUE(shows("3 runs: 1 ok, 1 port, 1 silent"));
    EXPECT_EQ(screen().find("zserial-gang "), std::string::npos);
}

using GangOnALine = GangTest;

TEST_F(GangOnALine, DrawsForATerminalWithoutASizeAsForOneOf80By24)
{
    // The terminal that script makes has the size of its own input, which is none.
    const auto simulated = device();
    GangProcess gang(folder(), QStringList{simulated->port()} + words("-- -B 0102 -w image.hex"),
                     QStringLiteral("export TERM=xterm; exec script -qec \"$(printf '%q ' \"$0\" "
                                    "\"$@\")\" /dev/null </dev/null"));
    const GangResult result = gang.result();
    EXPECT_EQ(result.status, 0) << result;
    EXPECT_THAT(
        result.out.toStdString(),
        testing::ContainsRegex("zserial-gang  1 ports: 1 running  .*\r\npts_[0-9]+ +[a-z]+ "));
}

} // namespace
