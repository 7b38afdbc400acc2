#include "tests/inspect/InspectTest.h"

#include <QProcess>
#include <QThread>

#include <csignal>

// A machine that stops for a while makes a real run repeat a command. A plan must not count that.

namespace
{

constexpr int longest_ms = 60000;
constexpr int rehearsing_ms = 50;
constexpr unsigned long stop_ms = 450; ///< longer than the uploader waits for an answer

/// A device with so many rows that a rehearsal is under way long after the program has started.
const char* const many_rows =
    "v0110:\t115200\tMANY-ROWS\t0x100000\t0x100000\t0x0\t0x800\t0x400\t0x40\t2\t2\t0x40\t"
    "0xFFFF0000\t2\t0x0\t0x0\t0\t0\t0\t0\t0\t0\t0\t0x800\t0x100000\n";

class PlanOfAMachineThatStops : public test::InspectTest
{
protected:
    QByteArray plan_with_stops(int stops)
    {
        const QString table = put_file(QStringLiteral("device.txt"), many_rows);
        QProcess process;
        process.start(QStringLiteral(INSPECT_PROGRAM),
                      QStringList{QStringLiteral("plan"), QStringLiteral("--json"),
                                  QStringLiteral("--table"), table, QStringLiteral("--")} +
                          QStringLiteral("-s port -B 0110 -r back.hex").split(QLatin1Char(' ')));
        EXPECT_TRUE(process.waitForStarted());
        const auto id = static_cast<pid_t>(process.processId());
        for (int i = 0; i < stops; ++i) {
            EXPECT_FALSE(process.waitForFinished(rehearsing_ms));
            ::kill(id, SIGSTOP);
            QThread::msleep(stop_ms);
            ::kill(id, SIGCONT);
        }
        EXPECT_TRUE(process.waitForFinished(longest_ms));
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
        return process.readAllStandardOutput();
    }
};

} // namespace

// About every second stop comes while an answer is on its way, and four are as many as a plan
// takes.
TEST_F(PlanOfAMachineThatStops, IsThatOfAnyOther)
{
    const QByteArray undisturbed = plan_with_stops(0);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(plan_with_stops(4).toStdString(), undisturbed.toStdString());
    }
}
