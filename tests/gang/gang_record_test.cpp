#include "tests/gang/GangTest.h"
#include "tests/support/Waiting.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonArray>

#include <csignal>

using namespace test;

namespace
{

std::string sha256(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
}

class GangRecord : public GangTest
{
};

TEST_F(GangRecord, HasALineForEachRun)
{
    const auto simulated = device();
    const GangResult result = run(simulated->port(), "-B 0102 -wv image.hex",
                                  "--record record.jsonl --station line-3 --keep logs");
    ASSERT_EQ(result.status, 0) << result;
    const auto lines = record();
    ASSERT_EQ(lines.size(), 1U);
    const QJsonObject& line = lines.front();
    for (const char* key :
         {"time", "station", "port", "name", "serial", "version", "arguments", "image_sha256",
          "table_sha256", "tries", "seconds", "verdict", "message", "log"}) {
        EXPECT_TRUE(line.contains(QLatin1String(key))) << key;
    }
    EXPECT_EQ(text(line, "station"), "line-3");
    EXPECT_EQ(text(line, "port"), simulated->port().toStdString());
    EXPECT_EQ(text(line, "version"), "0x0102");
    EXPECT_EQ(line.value(QStringLiteral("arguments")).toArray().toVariantList().size(), 4);
    EXPECT_EQ(text(line, "image_sha256"), sha256(file(QStringLiteral("image.hex"))));
    EXPECT_EQ(text(line, "table_sha256"), sha256(file(QStringLiteral("device.txt"))));
    EXPECT_EQ(line.value(QStringLiteral("tries")).toInt(), 1);
    EXPECT_GT(line.value(QStringLiteral("seconds")).toDouble(), 0);
    EXPECT_EQ(text(line, "verdict"), "ok");
    EXPECT_TRUE(QDir(QString::fromStdString(text(line, "log"))).exists());
}

TEST_F(GangRecord, IsOnTheDiskBeforeTheVerdictIsShown)
{
    const auto simulated = device();
    GangProcess gang(folder(), QStringList{simulated->port()} +
                                   words("--record record.jsonl -- -B 0102 -wv image.hex"));
    ASSERT_TRUE(gang.has_printed(": ok,"));
    EXPECT_EQ(record().size(), 1U);
    EXPECT_EQ(gang.result().status, 0);
}

TEST_F(GangRecord, GoesOnAfterATornLine)
{
    put_file(QStringLiteral("record.jsonl"), "{\"torn");
    const auto simulated = device();
    EXPECT_EQ(run(simulated->port(), "-B 0102", "--record record.jsonl").status, 0);
    EXPECT_EQ(record().size(), 1U);
    EXPECT_TRUE(file(QStringLiteral("record.jsonl")).startsWith("{\"torn\n{"));
}

TEST_F(GangRecord, IsBegunAnewIfItIsStoredAway)
{
    const auto silent = device("--entry silent");
    GangProcess gang(folder(),
                     QStringList{silent->port()} + words("--record record.jsonl -- -wv image.hex"));
    ASSERT_TRUE(gang.has_printed("started"));
    ASSERT_TRUE(QFile::rename(path(QStringLiteral("record.jsonl")), path(QStringLiteral("old"))));
    EXPECT_EQ(gang.result().status, 1);
    EXPECT_EQ(record().size(), 1U);
    EXPECT_EQ(file(QStringLiteral("old")).size(), 0);
}

TEST_F(GangRecord, WithoutItNoDeviceIsOk)
{
    const auto simulated = device();
    const GangResult result = run(simulated->port(), "-B 0102", "--record /dev/full");
    EXPECT_EQ(text(result.last("end"), "verdict"), "failed") << result;
    EXPECT_THAT(text(result.last("end"), "message"),
                testing::StartsWith("ok, but not recorded: /dev/full"));
    EXPECT_EQ(result.status, 1);
}

TEST_F(GangRecord, IsWholeWhenGangsShareIt)
{
    std::vector<std::unique_ptr<SimProcess>> devices;
    QStringList ports;
    for (int i = 0; i < 8; ++i) {
        devices.push_back(device());
        ports << devices.back()->port();
    }
    const QStringList arguments = words("--record record.jsonl -- -B 0102 -w image.hex");
    GangProcess one(folder(), ports.mid(0, 4) + arguments);
    GangProcess other(folder(), ports.mid(4) + arguments);
    EXPECT_EQ(one.result().status, 0);
    EXPECT_EQ(other.result().status, 0);
    EXPECT_EQ(record().size(), 8U);
    EXPECT_EQ(file(QStringLiteral("record.jsonl")).count('\n'), 8);
}

class GangKeep : public GangTest
{
protected:
    QStringList kept() const
    {
        return QDir(path(QStringLiteral("logs")))
            .entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
    }
};

TEST_F(GangKeep, HasConsoleAndFramesOfEachRun)
{
    const auto simulated = device();
    ASSERT_EQ(run(simulated->port(), "-B 0102 -wv image.hex", "--keep logs").status, 0);
    ASSERT_EQ(kept().size(), 1);
    const QString log = QStringLiteral("logs/") + kept().first();
    EXPECT_TRUE(file(log + QStringLiteral("/console.txt")).contains("Uploaded!"));
    EXPECT_TRUE(file(log + QStringLiteral("/frames.log")).contains("\nTX:5555"));
}

TEST_F(GangKeep, CanBeOfFailuresOnly)
{
    const auto good = device();
    const auto bad = device("--entry version --fault wrong-ack@1");
    const GangResult result = run(QStringList{QStringLiteral("--json"), good->port(), bad->port()} +
                                  words("--keep logs --keep-failures -- -B 0102 -e"));
    EXPECT_EQ(result.status, 1);
    ASSERT_EQ(kept().size(), 1) << result;
    EXPECT_EQ(text(result.last("end", good->port()), "log"), "");
    EXPECT_THAT(text(result.last("end", bad->port()), "log"),
                testing::EndsWith(kept().first().toStdString()));
}

TEST_F(GangKeep, FailsARunThatHasNoFolder)
{
    const QString tool = put_tool("rm -r ../../logs\n: > ../../logs\nexit 1\n");
    const GangResult result =
        run(words("--json --jobs 1 --keep logs --zserial") + QStringList{tool} +
            words("/dev/no-such-a /dev/no-such-b -- -B 0102 -e"));
    const QJsonObject end = result.last("end", QStringLiteral("/dev/no-such-b"));
    EXPECT_EQ(text(end, "verdict"), "file") << result;
    EXPECT_THAT(text(end, "message"), testing::StartsWith("cannot create the folder logs/"));
    EXPECT_THAT(text(end, "message"), testing::EndsWith("-no-such-b"));
    EXPECT_EQ(result.status, 1);
}

TEST_F(GangKeep, TakesAFrameLogWithoutANameAsNone)
{
    const auto simulated = device();
    const GangResult result = run(QStringList{simulated->port()} +
                                  words("--keep logs -- -B 0102 -e -x") + QStringList{{}});
    EXPECT_EQ(result.status, 0) << result;
}

TEST_F(GangKeep, LeavesTheUsersOwnFrameLogAlone)
{
    const auto simulated = device();
    ASSERT_EQ(run(simulated->port(), "-B 0102 -e -x {name}.log", "--keep logs").status, 0);
    EXPECT_FALSE(
        QDir(path(QStringLiteral("logs/") + kept().value(0))).exists(QStringLiteral("frames.log")));
}

} // namespace
