#include "tests/inspect/InspectTest.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

#include <csignal>

// A machine that stops for a while makes a real run repeat a command. A plan must not count that.

namespace
{

constexpr int longest_ms = 60000;
constexpr unsigned long stop_ms = 450; ///< longer than the uploader waits for an answer

QStringList words()
{
    return QStringLiteral("plan --json --table examples/device.txt -- -s port -B 0132 -r back.hex")
        .split(QLatin1Char(' '));
}

QByteArray plan_with_stops(int stops, int first_ms)
{
    QProcess process;
    process.start(QStringLiteral(INSPECT_PROGRAM), words());
    EXPECT_TRUE(process.waitForStarted());
    const auto id = static_cast<pid_t>(process.processId());
    for (int i = 0; i < stops && !process.waitForFinished(first_ms); ++i) {
        ::kill(id, SIGSTOP);
        QThread::msleep(stop_ms);
        ::kill(id, SIGCONT);
    }
    EXPECT_TRUE(process.state() == QProcess::NotRunning || process.waitForFinished(longest_ms));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
    return process.readAllStandardOutput();
}

} // namespace

TEST(PlanOfAMachineThatStops, IsThatOfAnyOther)
{
    const QByteArray undisturbed = plan_with_stops(0, 0);
    for (const int first_ms : {25, 30, 35, 40}) {
        EXPECT_EQ(plan_with_stops(4, first_ms).toStdString(), undisturbed.toStdString());
    }
}
