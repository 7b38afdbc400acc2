#include "sim/device/FrameCodec.h"
#include "sim/device/SimulatedDevice.h"
#include "sim/line/Alarm.h"
#include "sim/line/Line.h"
#include "sim/line/LineTiming.h"
#include "tests/sim/HostPort.h"
#include "tests/sim/Milliseconds.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"

#include <gmock/gmock.h>

using namespace test;
using sim::Alarm;
using sim::Entry;
using sim::line_time_ns;
using sim::make_frame;
using sim::Options;
using sim::SimulatedDevice;
using testing::ElementsAre;

// Only lower limits of times are checked: a busy machine may be late, but nothing may be early.

namespace
{

constexpr unsigned int slow_baud = 9600;

const QByteArray read_request = make_frame(bytes("01 20 00 08 00"));
const QByteArray row_of_blanks = make_frame(bytes("01 20 00 08 00") + QByteArray(0x40, '\xFF'));
const QByteArray erase_of_two_pages = make_frame(bytes("03 02 00 08 00"));
const QByteArray erase_answer_of_two = make_frame(bytes("03"));

/// A running device whose full rate is 9600 baud.
class SimPacedDevice : public testing::Test
{
protected:
    void start(Options options)
    {
        options.entry = Entry::Version;
        device = std::make_unique<SimulatedDevice>(*profile, options);
        host = std::make_unique<HostPort>(device->port_path(), slow_baud);
    }

    /// How long it took from the request until the answer was there.
    qint64 time_of(const QByteArray& request, const QByteArray& answer)
    {
        const qint64 start_ns = Alarm::now_ns();
        EXPECT_EQ(host->ask(request, answer), answer);
        return Alarm::now_ns() - start_ns;
    }

    std::unique_ptr<const Profile> profile = sample_profile({{Profile::max_baud, "9600"}});
    std::unique_ptr<SimulatedDevice> device;
    std::unique_ptr<HostPort> host;
};

Options at_slow_rate(Options::Echo echo = Options::Echo::None)
{
    Options options;
    options.paced = true;
    options.echo = echo;
    return options;
}

} // namespace

TEST_F(SimPacedDevice, HearsACommandAndAnswersNoSoonerThanTheBytesPass)
{
    start(at_slow_rate());
    qint64 heard_ns = 0;
    QObject::connect(device.get(), &SimulatedDevice::command_received,
                     [&heard_ns] { heard_ns = Alarm::now_ns(); });
    const qint64 start_ns = Alarm::now_ns();
    host->ask(read_request, row_of_blanks);
    const qint64 end_ns = Alarm::now_ns();
    const qint64 request_ns = line_time_ns(read_request.size(), slow_baud);
    EXPECT_GE(heard_ns - start_ns, request_ns);
    EXPECT_GE(end_ns - start_ns, request_ns + line_time_ns(row_of_blanks.size(), slow_baud));
    EXPECT_EQ(host->received(), row_of_blanks);
}

TEST_F(SimPacedDevice, TakesBytesAtTheRateThatIsSet)
{
    start(at_slow_rate());
    host->send(QByteArray(10, 'x'));
    ASSERT_TRUE(wait_until([this] { return device->heard().size() == 10; }));
    host->set_baud(300);
    const qint64 start_ns = Alarm::now_ns();
    host->send("x");
    ASSERT_TRUE(wait_until([this] { return device->heard().size() == 11; }));
    EXPECT_GE(Alarm::now_ns() - start_ns, line_time_ns(1, 300));
}

TEST_F(SimPacedDevice, MeasuresItsOwnLatenessWithEachLastByte)
{
    start(at_slow_rate());
    EXPECT_EQ(device->line().lateness().count(), 0);
    host->ask(read_request, row_of_blanks);
    const sim::Lateness& lateness = device->line().lateness();
    EXPECT_EQ(lateness.count(), 2);
    EXPECT_GE(lateness.most_ns(), lateness.mean_ns());
    EXPECT_EQ(device->line().bytes_to_host(), row_of_blanks.size());
}

TEST_F(SimPacedDevice, KnowsHowLongItsLineWasInUse)
{
    start(at_slow_rate());
    host->ask(read_request, row_of_blanks);
    const sim::LineUse& use = device->line().use();
    EXPECT_EQ(use.busy_ns(), line_time_ns(read_request.size(), slow_baud) +
                                 line_time_ns(row_of_blanks.size(), slow_baud));
    EXPECT_GE(use.span_ns(), use.busy_ns());
}

TEST_F(SimPacedDevice, PassesEchoAndAnswerNoSoonerThanTheirBytes)
{
    start(at_slow_rate(Options::Echo::Apart));
    const qint64 bytes_ns = line_time_ns(read_request.size() + row_of_blanks.size(), slow_baud);
    EXPECT_GE(time_of(read_request, read_request + row_of_blanks), bytes_ns);
}

TEST_F(SimPacedDevice, EchoesWhileTheBytesPass)
{
    start(at_slow_rate(Options::Echo::Apart));
    host->set_baud(50);
    // Waiting for the last of these would take longer than any test here.
    host->send(QByteArray(3000, 'x'));
    EXPECT_FALSE(host->receive(1).isEmpty());
    EXPECT_LT(device->heard().size(), 3000);
}

TEST_F(SimPacedDevice, EchoesBeforeTheAnswerIsDue)
{
    Options options = at_slow_rate(Options::Echo::Apart);
    options.erase_page_ms = 600000;
    start(options);
    EXPECT_EQ(host->ask(erase_of_two_pages, erase_of_two_pages), erase_of_two_pages);
}

TEST_F(SimPacedDevice, BringsEchoAndAnswerInOnePacketWhenBothFitIntoTheLatency)
{
    Options options;
    options.latency_ms = 30;
    options.echo = Options::Echo::Apart;
    start(options);
    EXPECT_GE(time_of(erase_of_two_pages, erase_of_two_pages + erase_answer_of_two), 30 * ms);
    EXPECT_THAT(host->pieces(), ElementsAre(erase_of_two_pages + erase_answer_of_two));
}

TEST_F(SimPacedDevice, BringsEchoAndAnswerTogetherWhenBothHavePassed)
{
    start(at_slow_rate(Options::Echo::Together));
    const qint64 bytes_ns = line_time_ns(read_request.size() + row_of_blanks.size(), slow_baud);
    EXPECT_GE(time_of(read_request, read_request + row_of_blanks), bytes_ns);
    EXPECT_THAT(host->pieces(), ElementsAre(read_request + row_of_blanks));
}

TEST_F(SimPacedDevice, HandsShortPacketsOverAfterTheLatency)
{
    Options options;
    options.latency_ms = 30;
    start(options);
    EXPECT_GE(time_of(erase_of_two_pages, erase_answer_of_two), 30 * ms);
    EXPECT_THAT(host->pieces(), ElementsAre(erase_answer_of_two));
}

TEST_F(SimPacedDevice, HandsFullPacketsOverAtOnce)
{
    Options options;
    options.latency_ms = 30;
    start(options);
    EXPECT_GE(time_of(read_request, row_of_blanks), 30 * ms);
    EXPECT_THAT(host->pieces(), ElementsAre(row_of_blanks.left(62), row_of_blanks.mid(62)));
}

TEST_F(SimPacedDevice, HasALatencyOnTopOfThePace)
{
    Options options = at_slow_rate();
    options.latency_ms = 30;
    start(options);
    const qint64 bytes_ns = line_time_ns(erase_of_two_pages.size() + 1, slow_baud);
    EXPECT_GE(time_of(erase_of_two_pages, erase_answer_of_two), bytes_ns + 30 * ms);
    EXPECT_EQ(device->line().bytes_to_host(), erase_answer_of_two.size());
}

TEST_F(SimPacedDevice, AcknowledgesAnEraseAfterTheTimeOfItsPages)
{
    Options options;
    options.erase_page_ms = 15;
    start(options);
    EXPECT_GE(time_of(erase_of_two_pages, erase_answer_of_two), 2 * 15 * ms);
}

TEST_F(SimPacedDevice, AcknowledgesAWriteAfterTheTimeOfItsRows)
{
    Options options;
    options.write_row_ms = 15;
    start(options);
    const QByteArray flash_row = make_frame(bytes("02 01 00 08 00") + QByteArray(0x40, '\x11'));
    EXPECT_GE(time_of(flash_row, make_frame(bytes("02"))), 15 * ms);
    const QByteArray two_rows = make_frame(bytes("05 10 00 00 00") + QByteArray(0x20, '\x22'));
    EXPECT_GE(time_of(two_rows, make_frame(bytes("05"))), 2 * 15 * ms);
}

TEST_F(SimPacedDevice, DoesOneThingAfterTheOther)
{
    Options options;
    options.erase_page_ms = 15;
    start(options);
    const qint64 start_ns = Alarm::now_ns();
    host->send(erase_of_two_pages + read_request);
    EXPECT_EQ(host->receive(erase_answer_of_two.size() + row_of_blanks.size()),
              erase_answer_of_two + row_of_blanks);
    EXPECT_GE(Alarm::now_ns() - start_ns, 2 * 15 * ms);
}

TEST_F(SimPacedDevice, TakesNoTimeForWhatItRefuses)
{
    Options options;
    options.erase_page_ms = 600000;
    start(options);
    host->send(make_frame(bytes("03 01 00 00 00"))); // the bootloader's own page
    EXPECT_EQ(host->ask(read_request, row_of_blanks), row_of_blanks);
}
