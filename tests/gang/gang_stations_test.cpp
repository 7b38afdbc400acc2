#include "tests/gang/GangTest.h"

#include <QFileInfo>
#include <QProcessEnvironment>
#include <QStandardPaths>

using namespace test;

namespace
{

/// Runs examples/production/stations.sh with a stand-in for ssh that runs the commands locally.
class GangStations : public GangTest
{
protected:
    QProcessEnvironment environment() const
    {
        QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
        const QString programs = QFileInfo(QStringLiteral(ZSERIAL_GANG_PROGRAM)).path();
        variables.insert(QStringLiteral("PATH"),
                         programs + QLatin1Char(':') + variables.value(QStringLiteral("PATH")));
        variables.insert(QStringLiteral("SSH"), QStringLiteral(GANG_TEST_SSH));
        variables.insert(QStringLiteral("SSH_LOG"), path(QStringLiteral("ssh.log")));
        return variables;
    }

    int program(const QStringList& arguments, QByteArray& out) const
    {
        QProcess script;
        script.setWorkingDirectory(folder());
        script.setProcessEnvironment(environment());
        script.setProcessChannelMode(QProcess::MergedChannels);
        script.start(QStringLiteral(GANG_STATIONS_SCRIPT), arguments);
        EXPECT_TRUE(script.waitForFinished(120000));
        out = script.readAll();
        return script.exitCode();
    }
};

TEST_F(GangStations, AreProgrammedAtOnceAndReportedTogether)
{
    ASSERT_FALSE(QStandardPaths::findExecutable(QStringLiteral("parallel")).isEmpty());
    const auto one = device();
    const auto other = device();
    const auto bad = device("--entry version --fault wrong-ack@1");
    put_file(QStringLiteral("stations.txt"), "# host, then ports\n\nnorth " + one->port().toUtf8() +
                                                 ' ' + bad->port().toUtf8() + "\nsouth " +
                                                 other->port().toUtf8() + '\n');
    QByteArray out;
    EXPECT_EQ(
        program(words("stations.txt image.hex device.txt results --tries 1 -- -w -B 0102 -e"), out),
        1)
        << out.constData();
    EXPECT_EQ(record(QStringLiteral("results/north.jsonl")).size(), 2U) << out.constData();
    ASSERT_EQ(record(QStringLiteral("results/south.jsonl")).size(), 1U);
    EXPECT_EQ(text(record(QStringLiteral("results/south.jsonl")).front(), "station"), "south");
    EXPECT_TRUE(out.contains("Yield: 66.7%")) << out.constData();
    EXPECT_TRUE(file(QStringLiteral("results/report.html")).contains("north"));
    EXPECT_TRUE(file(QStringLiteral("ssh.log")).contains("south\n"));
}

} // namespace
