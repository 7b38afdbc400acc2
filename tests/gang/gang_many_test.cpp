#include "sim/line/PortLock.h"
#include "tests/gang/GangTest.h"
#include "tests/support/Waiting.h"

#include <QFile>
#include <QJsonArray>
#include <QSerialPort>

#include <algorithm>
#include <csignal>
#include <map>
#include <set>

using namespace test;

namespace
{

class GangMany : public GangTest
{
protected:
    SimProcess& add(const char* options = "--entry version")
    {
        m_devices.push_back(device(options));
        m_ports << m_devices.back()->port();
        return *m_devices.back();
    }

    std::string verdict_of(const QString& port) const
    {
        for (const QJsonObject& line : record()) {
            if (line.value(QStringLiteral("port")).toString() == port) {
                return text(line, "verdict");
            }
        }
        return "none";
    }

    std::vector<std::unique_ptr<SimProcess>> m_devices;
    QStringList m_ports;
};

TEST_F(GangMany, ThirtyTwoDevicesOfWhichFiveFail)
{
    for (int i = 0; i < 27; ++i) {
        add();
    }
    const QString silent = add("--entry silent").port();
    const QString also_silent = add("--entry silent").port();
    const QString unplugged = add("--entry version --fault unplug@4").port();
    const QString worn = add("--entry version --fault stuck-bits:0xB5:0x01:0").port();
    const QString held = add().port();
    QSerialPort holder(held);
    ASSERT_TRUE(holder.open(QIODevice::ReadWrite));

    const GangResult result = run(words("--json --record record.jsonl") + m_ports +
                                  words("-- -e -w image.hex -v image.hex"));
    EXPECT_EQ(result.status, 1);
    const QJsonObject verdicts =
        result.last("summary").value(QStringLiteral("verdicts")).toObject();
    EXPECT_EQ(verdicts.value(QStringLiteral("ok")).toInt(), 27) << result;
    EXPECT_EQ(record().size(), 32U);
    EXPECT_EQ(file(QStringLiteral("record.jsonl")).count('\n'), 32);
    EXPECT_EQ(verdict_of(silent), "silent");
    EXPECT_EQ(verdict_of(also_silent), "silent");
    EXPECT_EQ(verdict_of(unplugged), "write");
    EXPECT_EQ(verdict_of(worn), "mismatch");
    EXPECT_EQ(verdict_of(held), "port");
}

TEST_F(GangMany, AKilledGangLeavesWholeLines)
{
    for (int i = 0; i < 6; ++i) {
        add(i < 3 ? "--entry version" : "--entry silent");
    }
    {
        GangProcess gang(folder(),
                         words("--record record.jsonl") + m_ports + words("-- -wv image.hex"));
        ASSERT_TRUE(wait_until([&gang] { return gang.count(": ok,") == 3; }));
        gang.send(SIGKILL);
        EXPECT_TRUE(gang.result().crashed);
    }
    EXPECT_EQ(record().size(), 3U);
    QFile torn(path(QStringLiteral("record.jsonl")));
    ASSERT_TRUE(torn.open(QIODevice::Append));
    torn.write("{\"time\":\"2026-");
    torn.close();
    const GangResult report = run(words("report --json record.jsonl"));
    EXPECT_EQ(report.status, 0) << report;
    ASSERT_EQ(report.events().size(), 1U) << report;
    EXPECT_EQ(report.events().front().value(QStringLiteral("runs")).toInt(), 3);
    EXPECT_EQ(report.events().front().value(QStringLiteral("skipped_lines")).toInt(), 1);
}

TEST_F(GangMany, NoMoreThanAllowedAtOnce)
{
    for (int i = 0; i < 4; ++i) {
        add();
    }
    GangProcess gang(folder(), words("--jobs 2") + m_ports + words("-- -B 0102 -w image.hex"));
    std::size_t most = 0;
    ASSERT_TRUE(wait_until([&] {
        most = std::max(most, children_of(gang.id()).size());
        return gang.count(": ok,") == 4;
    }));
    EXPECT_EQ(most, 2U);
    EXPECT_EQ(gang.result().status, 0);
}

/// Gangs that give out serial numbers.
class GangNumbers : public GangMany
{
protected:
    static QStringList numbered()
    {
        return words(
            "--serial-at 0xE0 --serial-size 4 --serial-file numbers --record record.jsonl");
    }

    /// True if no process has any of the ports open.
    bool are_free() const
    {
        return std::all_of(m_ports.begin(), m_ports.end(),
                           [](const QString& port) { return !sim::has_port_lock(port); });
    }

    /// Returns the arguments of a gang for `count` of the ports, from `first` on.
    QStringList round(int first, int count) const
    {
        return numbered() + m_ports.mid(first, count) + words("-- -B 0102 -w image.hex");
    }
};

TEST_F(GangNumbers, AreInTheDeviceAndInTheRecord)
{
    put_file(QStringLiteral("numbers"), "4660\n");
    add("--entry version --save saved.hex");
    const GangResult result =
        run(words("--json") + numbered() + m_ports + words("-- -B 0102 -w image.hex -v image.hex"));
    ASSERT_EQ(result.status, 0) << result;
    EXPECT_EQ(result.last("end").value(QStringLiteral("number")).toInt(), 4660);
    m_devices.back()->stop();
    EXPECT_TRUE(file(QStringLiteral("saved.hex")).contains(":0400E00034120000D6"))
        << file(QStringLiteral("saved.hex")).constData();
    EXPECT_TRUE(file(QStringLiteral("numbers")).contains("4660 "));
}

TEST_F(GangNumbers, MayBeginWithTheMostSignificantByte)
{
    put_file(QStringLiteral("numbers"), "4660\n");
    add("--entry version --save saved.hex");
    const GangResult result =
        run(words("--serial-format big") + numbered() + m_ports + words("-- -B 0102 -w image.hex"));
    ASSERT_EQ(result.status, 0) << result;
    m_devices.back()->stop();
    EXPECT_TRUE(file(QStringLiteral("saved.hex")).contains(":0400E00000001234D6"))
        << file(QStringLiteral("saved.hex")).constData();
}

TEST_F(GangNumbers, AreNotUsedAgainForAnotherTryThatMayReachAnotherDevice)
{
    put_file(QStringLiteral("numbers"), "10\n");
    add("--entry version --fault wrong-ack@1");
    const GangResult result = run(words("--json --tries 3 --pause 0") + numbered() + m_ports +
                                  words("-- -B 0102 -w image.hex"));
    ASSERT_EQ(result.status, 0) << result;
    const QJsonObject end = result.last("end");
    EXPECT_EQ(end.value(QStringLiteral("number")).toInt(), 11);
    ASSERT_EQ(end.value(QStringLiteral("void_numbers")).toArray().size(), 1);
    EXPECT_EQ(end.value(QStringLiteral("void_numbers")).toArray().at(0).toInt(), 10);
}

TEST_F(GangNumbers, AreUsedAgainIfNoDeviceCanHaveThem)
{
    put_file(QStringLiteral("numbers"), "10\n");
    m_ports << QStringLiteral("/dev/no-such-port");
    const GangResult result = run(words("--json --tries 3 --pause 0") + numbered() + m_ports +
                                  words("-- -B 0102 -w image.hex"));
    const QJsonObject end = result.last("end");
    EXPECT_EQ(end.value(QStringLiteral("number")).toInt(), 10) << result;
    EXPECT_FALSE(end.contains(QStringLiteral("void_numbers")));
}

TEST_F(GangNumbers, EndTheWorkWhenTheyNoLongerFit)
{
    put_file(QStringLiteral("numbers"), "255\n");
    add();
    add();
    const GangResult result =
        run(words("--json --jobs 1 --serial-at 0xE0 --serial-size 1 --serial-file numbers") +
            m_ports + words("-- -B 0102 -w image.hex"));
    EXPECT_EQ(result.status, 1) << result;
    const QJsonObject summary = result.last("summary");
    EXPECT_EQ(summary.value(QStringLiteral("ok")).toInt(), 1);
    EXPECT_EQ(summary.value(QStringLiteral("not_started")).toInt(), 1);
    EXPECT_TRUE(result.err.contains("the serial number 256 does not fit into 1 bytes")) << result;
}

TEST_F(GangNumbers, EndARunThatFindsNoneForAnotherTry)
{
    put_file(QStringLiteral("numbers"), "255\n");
    add("--entry version --fault wrong-ack@1");
    const GangResult result = run(words("--json --tries 3 --pause 0 --serial-at 0xE0 --serial-size "
                                        "1 --serial-file numbers") +
                                  m_ports + words("-- -B 0102 -w image.hex"));
    EXPECT_EQ(result.status, 1) << result;
    const QJsonObject end = result.last("end");
    EXPECT_EQ(text(end, "verdict"), "write") << "that of the try before";
    EXPECT_EQ(end.value(QStringLiteral("tries")).toInt(), 1);
    EXPECT_FALSE(end.contains(QStringLiteral("number")));
    ASSERT_EQ(end.value(QStringLiteral("void_numbers")).toArray().size(), 1);
    EXPECT_EQ(end.value(QStringLiteral("void_numbers")).toArray().at(0).toInt(), 255);
    EXPECT_TRUE(result.err.contains("the serial number 256 does not fit into 1 bytes")) << result;
}

/// 200 runs by two gangs, with random failures; one gang is killed halfway.
TEST_F(GangNumbers, AreNeverGivenTwice)
{
    constexpr int devices = 20;
    constexpr int rounds = 10;
    put_file(QStringLiteral("numbers"), "1\n");
    for (int i = 0; i < devices; ++i) {
        const QByteArray options =
            "--entry version --fault wrong-ack=0.05 --seed " + QByteArray::number(i + 1);
        add(options.constData());
    }
    for (int i = 0; i < rounds; ++i) {
        GangProcess one(folder(), round(0, devices / 2));
        GangProcess other(folder(), round(devices / 2, devices / 2));
        if (i == rounds / 2) {
            ASSERT_TRUE(one.has_printed(": started"));
            one.send(SIGKILL);
        }
        one.result();
        EXPECT_LE(other.result().status, 1);
        // The uploads of a killed gang continue; they must end before their ports are used again.
        ASSERT_TRUE(wait_until([this] { return are_free(); }));
    }
    std::set<int> given;
    for (const QByteArray& line : file(QStringLiteral("numbers")).split('\n').mid(1)) {
        if (!line.isEmpty()) {
            EXPECT_TRUE(given.insert(line.split(' ').first().toInt()).second) << line.constData();
        }
    }
    std::map<int, int> recorded;
    for (const QJsonObject& line : record()) {
        ++recorded[line.value(QStringLiteral("number")).toInt()];
    }
    EXPECT_GE(recorded.size(), 180U);
    for (const auto& [number, times] : recorded) {
        EXPECT_EQ(times, 1) << number;
        EXPECT_EQ(given.count(number), 1U) << number;
    }
    const GangResult report = run(words("report --json --serial-file numbers record.jsonl"));
    const QJsonObject json = report.events().front();
    EXPECT_EQ(json.value(QStringLiteral("numbers")).toInt(), static_cast<int>(given.size()));
    EXPECT_EQ(json.value(QStringLiteral("numbers")).toInt(),
              json.value(QStringLiteral("ok")).toInt() +
                  json.value(QStringLiteral("void_numbers")).toArray().size())
        << "every number is that of a good device or void";
}

} // namespace
