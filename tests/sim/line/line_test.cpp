#include "sim/line/Line.h"
#include "tests/sim/HostPort.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

using namespace test;
using sim::Descriptor;
using sim::Line;
using testing::ElementsAre;

namespace
{

/// So slow that nothing passes while a test runs.
constexpr unsigned int crawling_baud = 1;

sim::LineOptions paced()
{
    sim::LineOptions options;
    options.paced = true;
    return options;
}

} // namespace

TEST(SimLine, BringsBytesToAPacedDeviceOneAfterTheOther)
{
    Line line(paced());
    std::vector<std::pair<QByteArray, bool>> heard;
    QObject::connect(&line, &Line::received, [&](const QByteArray& bytes, unsigned int baud) {
        EXPECT_EQ(baud, 9600U);
        heard.emplace_back(bytes, line.device_has_unread());
    });
    HostPort host(line.path(), 9600);
    host.send("abc");
    ASSERT_TRUE(wait_until([&heard] { return heard.size() == 3; }));
    EXPECT_THAT(heard,
                ElementsAre(std::pair(QByteArray("a"), true), std::pair(QByteArray("b"), true),
                            std::pair(QByteArray("c"), false)));
}

TEST(SimLine, BringsWhatWasWrittenInOneGoWhenAskedTo)
{
    sim::LineOptions options = paced();
    options.keeps_writes_whole = true;
    Line line(options);
    std::vector<QByteArray> heard;
    QObject::connect(&line, &Line::received,
                     [&heard](const QByteArray& bytes) { heard.push_back(bytes); });
    HostPort host(line.path(), 9600);
    host.send("abc");
    ASSERT_TRUE(wait_until([&heard] { return !heard.empty(); }));
    EXPECT_THAT(heard, ElementsAre("abc"));
}

TEST(SimLine, KeepsWhatIsOnItsWayUntilItHasPassed)
{
    Line line(paced());
    HostPort host(line.path(), 9600);
    EXPECT_FALSE(line.host_has_unread());
    line.send({"abc", crawling_baud});
    EXPECT_TRUE(line.host_has_unread());
    EXPECT_EQ(line.bytes_to_host(), 0);
}

TEST(SimLine, KeepsAShortPacketInTheAdapter)
{
    sim::LineOptions options;
    options.latency_ms = 600000;
    Line line(options);
    HostPort host(line.path(), 9600);
    line.send({QByteArray(63, 'x'), 9600});
    EXPECT_EQ(host.receive(62), QByteArray(62, 'x'));
    EXPECT_TRUE(line.host_has_unread());
    EXPECT_EQ(line.bytes_to_host(), 62);
}

TEST(SimLine, DropsWhatIsOnItsWayWhenItIsUnplugged)
{
    sim::LineOptions options = paced();
    options.latency_ms = 600000;
    Line line(options);
    HostPort host(line.path(), 9600);
    line.send({"abc", 0});
    line.send({"def", crawling_baud});
    line.unplug();
    EXPECT_FALSE(line.host_has_unread());
    EXPECT_EQ(line.host_baud(), 0U);
    EXPECT_TRUE(wait_until([&host] { return host.port().error() != QSerialPort::NoError; }));
    EXPECT_EQ(host.received(), "");
}

TEST(SimLine, SendsEverythingInTheEndAndInOrder)
{
    sim::LineOptions options = paced();
    options.latency_ms = 1;
    Line line(options);
    HostPort host(line.path(), 460800);
    QByteArray all;
    for (int i = 0; i < 50; ++i) {
        const QByteArray bytes(i, static_cast<char>('a' + i % 26));
        line.send({bytes, 460800});
        all.append(bytes);
    }
    EXPECT_EQ(host.receive(all.size()), all);
    EXPECT_EQ(line.lateness().count(), 49); // the first was empty
}

TEST(SimLine, LetsTheHostWaitThatIsFarAheadOfThePace)
{
    Line line(paced());
    const Descriptor host(
        ::open(line.path().toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    termios settings{};
    ASSERT_EQ(::tcgetattr(host.get(), &settings), 0);
    ASSERT_EQ(::cfsetspeed(&settings, B50), 0);
    ASSERT_EQ(::tcsetattr(host.get(), TCSANOW, &settings), 0);
    const std::array<char, 4096> block{};
    qint64 taken = 0;
    // The system's own buffers take a little more than what the line takes.
    EXPECT_TRUE(wait_until([&] {
        ssize_t count = 0;
        while ((count = ::write(host.get(), block.data(), block.size())) > 0) {
            taken += count;
        }
        return taken > 64 * 1024;
    }));
    for (int round = 0; round < 100; ++round) {
        QCoreApplication::processEvents();
        const ssize_t count = ::write(host.get(), block.data(), block.size());
        taken += std::max<ssize_t>(count, 0);
    }
    EXPECT_LT(taken, 256 * 1024);
}
