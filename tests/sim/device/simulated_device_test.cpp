#include "sim/device/FrameCodec.h"
#include "sim/device/SimulatedDevice.h"
#include "sim/line/Line.h"
#include "sim/line/Outbox.h"
#include "tests/sim/HostPort.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"

#include <QSignalSpy>
#include <gmock/gmock.h>

using namespace test;
using sim::Command;
using sim::Delivery;
using sim::Entry;
using sim::make_frame;
using sim::Options;
using sim::SimulatedDevice;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class SimSimulatedDevice : public testing::Test
{
protected:
    void start(Options options)
    {
        host.reset();
        device = std::make_unique<SimulatedDevice>(*profile, options);
        host = std::make_unique<HostPort>(device->port_path(), full_baud);
    }

    /// The bytes that the host receives for a request at the full rate, up to the expected answer.
    QByteArray ask(const QByteArray& payload, const QByteArray& expected_payload)
    {
        return host->ask(make_frame(payload), make_frame(expected_payload));
    }

    bool wait_for_heard(int count) const
    {
        return wait_until([this, count] { return device->heard().size() >= count; });
    }

    std::unique_ptr<const Profile> profile = sample_profile();
    std::unique_ptr<SimulatedDevice> device;
    std::unique_ptr<HostPort> host;
};

} // namespace

TEST_F(SimSimulatedDevice, AnswersTheProbeAt9600)
{
    start({});
    host->set_baud(9600);
    EXPECT_EQ(host->ask(probe_byte, probe_answer), probe_answer);
    EXPECT_EQ(device->host_baud(), 9600U);
}

TEST_F(SimSimulatedDevice, TakesAProbeAtAnotherRateForNoise)
{
    start({});
    host->set_baud(19200);
    host->send(probe_byte);
    ASSERT_TRUE(wait_for_heard(1));
    EXPECT_THAT(device->commands(), IsEmpty());
    // Had the first probe been answered, the device would run and not answer this one.
    host->set_baud(9600);
    host->send(probe_byte);
    EXPECT_EQ(host->receive(4), probe_answer);
    EXPECT_EQ(device->heard(), probe_byte + probe_byte);
}

TEST_F(SimSimulatedDevice, ReadsWritesAndErasesItsMemory)
{
    start({Entry::Version});
    const QByteArray row(0x40, '\x5A');
    EXPECT_EQ(ask(bytes("02 01 00 08 00") + row, bytes("02")), make_frame(bytes("02")));
    EXPECT_EQ(device->memory().read(0x1000, 0x40), row);
    const QByteArray read = bytes("01 20 00 08 00");
    EXPECT_EQ(ask(read, read + row), make_frame(read + row));
    EXPECT_EQ(ask(bytes("03 01 00 08 00"), bytes("03")), make_frame(bytes("03")));
    EXPECT_EQ(device->memory().read(0x1000, 0x40), QByteArray(0x40, '\xFF'));
}

TEST_F(SimSimulatedDevice, KeepsAListOfEverythingItRecognized)
{
    start({});
    QSignalSpy spy(device.get(), &SimulatedDevice::command_received);
    host->set_baud(9600);
    host->ask(probe_byte, probe_answer);
    host->set_baud(full_baud);
    host->ask(version_frame, version_answer);
    const std::vector<Command>& commands = device->commands();
    ASSERT_EQ(commands.size(), 2U);
    EXPECT_EQ(commands[0].kind, Command::Kind::Probe);
    EXPECT_EQ(commands[0].baud, 9600U);
    EXPECT_EQ(commands[0].sequence, 0U);
    EXPECT_EQ(commands[1].kind, Command::Kind::Version);
    EXPECT_EQ(commands[1].baud, 57600U);
    EXPECT_EQ(commands[1].sequence, 1U);
    EXPECT_THAT(device->payloads(), ElementsAre(bytes("00 02")));
    EXPECT_EQ(device->heard(), probe_byte + version_frame);
    ASSERT_EQ(spy.size(), 2);
    EXPECT_EQ(spy.at(1).at(0).value<Command>().payload, bytes("00 02"));
}

TEST_F(SimSimulatedDevice, CountsFromZeroAgainWhenItsListIsCleared)
{
    start({Entry::Version});
    host->ask(version_frame, version_answer);
    device->clear_commands();
    EXPECT_THAT(device->payloads(), IsEmpty());
    host->ask(version_frame, version_answer);
    ASSERT_EQ(device->commands().size(), 1U);
    EXPECT_EQ(device->commands().front().sequence, 0U);
}

TEST_F(SimSimulatedDevice, OnlyCountsWhenItKeepsNoRecord)
{
    Options options{Entry::Version};
    options.keeps_record = false;
    start(options);
    QSignalSpy spy(device.get(), &SimulatedDevice::command_received);
    host->ask(version_frame, version_answer);
    host->ask(version_frame, version_answer);
    EXPECT_THAT(device->commands(), IsEmpty());
    EXPECT_EQ(device->heard(), QByteArray());
    EXPECT_EQ(device->bytes_from_host(), 2 * version_frame.size());
    ASSERT_EQ(spy.size(), 2);
    EXPECT_EQ(spy.at(1).at(0).value<Command>().sequence, 1U);
}

TEST_F(SimSimulatedDevice, LosesWhatAHostLeavesUnread)
{
    start({Entry::Version});
    constexpr int plenty = 2 * static_cast<int>(sim::Outbox::room);
    device->set_reply_filter([](const Command& command, const QByteArray&) {
        const int size = command.sequence == 0 ? plenty : 5;
        return std::vector<Delivery>{{QByteArray(size, 'a')}};
    });
    host->port().setReadBufferSize(1); // reads next to nothing
    host->send(version_frame);
    ASSERT_TRUE(wait_until([this] { return device->payloads().size() == 1; }));
    EXPECT_EQ(device->lost_bytes(), 0); // a single answer always has room
    host->send(version_frame);
    ASSERT_TRUE(wait_until([this] { return device->payloads().size() == 2; }));
    EXPECT_EQ(device->lost_bytes(), 5);
}

TEST_F(SimSimulatedDevice, HoldsALimitedNumberOfDelayedAnswersOnly)
{
    start({Entry::Version});
    const QByteArray much(static_cast<int>(sim::Outbox::room), 'a');
    device->set_reply_filter([&much](const Command&, const QByteArray&) {
        return std::vector<Delivery>{{much, 600000}};
    });
    host->send(version_frame + version_frame);
    ASSERT_TRUE(wait_until([this] { return device->payloads().size() == 2; }));
    EXPECT_EQ(device->lost_bytes(), much.size());
}

TEST_F(SimSimulatedDevice, IsSilentWhenAskedToBe)
{
    start({Entry::Silent});
    host->send(version_frame + make_frame(bytes("03 01 00 08 00")));
    ASSERT_TRUE(wait_until([this] { return device->payloads().size() == 2; }));
    // Any answer of its own would have arrived before this.
    device->set_reply_filter([](const Command&, const QByteArray& answer) {
        EXPECT_EQ(answer, QByteArray());
        return std::vector<Delivery>{{"end"}};
    });
    host->send(version_frame);
    EXPECT_EQ(host->receive(3), "end");
}

TEST_F(SimSimulatedDevice, EchoesApartFromItsAnswer)
{
    start({Entry::Version, Options::Echo::Apart});
    for (int round = 0; round < 20; ++round) {
        SCOPED_TRACE(round);
        host->ask(version_frame, version_frame + version_answer);
        EXPECT_THAT(host->pieces(), ElementsAre(version_frame, version_answer));
    }
}

TEST_F(SimSimulatedDevice, EchoesTogetherWithItsAnswer)
{
    start({Entry::Version, Options::Echo::Together});
    for (int round = 0; round < 20; ++round) {
        SCOPED_TRACE(round);
        host->ask(version_frame, version_frame + version_answer);
        EXPECT_THAT(host->pieces(), ElementsAre(version_frame + version_answer));
    }
}

TEST_F(SimSimulatedDevice, EchoesWhatItDoesNotUnderstand)
{
    for (const Options::Echo echo : {Options::Echo::Apart, Options::Echo::Together}) {
        start({Entry::Version, echo});
        host->set_baud(19200);
        EXPECT_EQ(host->ask("noise", "noise"), "noise");
    }
}

TEST_F(SimSimulatedDevice, EchoesAtOnceWhenTheAnswerIsLate)
{
    start({Entry::Version, Options::Echo::Together});
    device->set_reply_filter([](const Command&, const QByteArray& answer) {
        return std::vector<Delivery>{{answer, 20}};
    });
    host->ask(version_frame, version_frame + version_answer);
    EXPECT_THAT(host->pieces(), ElementsAre(version_frame, version_answer));
}

TEST_F(SimSimulatedDevice, HandsTheFilterEachCommandWithItsWholeAnswer)
{
    start({});
    std::vector<std::pair<Command::Kind, QByteArray>> asked;
    device->set_reply_filter([&asked](const Command& command, const QByteArray& answer) {
        asked.emplace_back(command.kind, answer);
        return std::vector<Delivery>{{answer}};
    });
    host->set_baud(9600);
    host->ask(probe_byte, probe_answer);
    host->set_baud(full_baud);
    host->send(make_frame(bytes("06")));
    host->ask(version_frame, version_answer);
    host->send(make_frame(bytes("00 00")));
    ASSERT_TRUE(wait_until([this] { return device->commands().size() == 4; }));
    using Kind = Command::Kind;
    EXPECT_THAT(asked, ElementsAre(std::pair(Kind::Probe, probe_answer),
                                   std::pair(Kind::Unknown, QByteArray()),
                                   std::pair(Kind::Version, version_answer),
                                   std::pair(Kind::Reset, QByteArray())));
}

TEST_F(SimSimulatedDevice, LetsTheFilterReplaceAndDropAnswers)
{
    start({Entry::Version});
    device->set_reply_filter([](const Command& command, const QByteArray&) {
        return command.sequence == 0 ? std::vector<Delivery>{}
                                     : std::vector<Delivery>{{"replaced"}};
    });
    host->send(version_frame);
    host->send(version_frame);
    EXPECT_EQ(host->receive(8), "replaced");
    device->set_reply_filter({});
    EXPECT_EQ(host->ask(version_frame, version_answer), version_answer);
}

TEST_F(SimSimulatedDevice, BringsTheFiltersPiecesOneByOne)
{
    start({Entry::Version});
    device->set_reply_filter([](const Command&, const QByteArray& answer) {
        return std::vector<Delivery>{{answer.left(3)}, {answer.mid(3, 2), 10}, {answer.mid(5), 10}};
    });
    host->ask(version_frame, version_answer);
    EXPECT_THAT(host->pieces(), ElementsAre(version_answer.left(3), version_answer.mid(3, 2),
                                            version_answer.mid(5)));
}

TEST_F(SimSimulatedDevice, BringsDeliveriesInTheOrderOfTheirTimes)
{
    start({Entry::Version});
    device->set_reply_filter([](const Command&, const QByteArray&) {
        return std::vector<Delivery>{{"third", 40}, {"first", -5}, {"second", 20}};
    });
    host->ask(version_frame, "firstsecondthird");
    EXPECT_THAT(host->pieces(), ElementsAre("first", "second", "third"));
}

TEST_F(SimSimulatedDevice, AnswersTheNextCommandWhileAnAnswerIsLate)
{
    start({Entry::Version});
    device->set_reply_filter([](const Command& command, const QByteArray&) {
        return command.sequence == 0 ? std::vector<Delivery>{{"late", 50}}
                                     : std::vector<Delivery>{{"prompt"}};
    });
    host->send(version_frame);
    host->send(version_frame);
    EXPECT_EQ(host->receive(10), "promptlate");
}

TEST_F(SimSimulatedDevice, StopsInTheMiddleWhenItIsUnplugged)
{
    start({Entry::Version});
    device->set_reply_filter([](const Command&, const QByteArray& answer) {
        return std::vector<Delivery>{{answer, 5}};
    });
    QObject::connect(device.get(), &SimulatedDevice::command_received,
                     [this] { device->unplug(); });
    host->send(version_frame);
    EXPECT_TRUE(wait_until([this] { return host->port().error() != QSerialPort::NoError; }));
    EXPECT_THAT(host->pieces(), IsEmpty());
    EXPECT_EQ(device->host_baud(), 0U);
    EXPECT_EQ(device->payloads().size(), 1U);
}

TEST_F(SimSimulatedDevice, HearsWhatItsRequestFilterLetsThrough)
{
    start({Entry::Version, Options::Echo::Apart});
    device->set_request_filter([](const QByteArray& bytes) {
        QByteArray damaged = bytes;
        damaged[4] = '\x01';
        return damaged;
    });
    EXPECT_EQ(host->ask(version_frame, version_frame), version_frame);
    EXPECT_THAT(device->commands(), IsEmpty());
    EXPECT_EQ(device->dropped_frames(), 1U);
    device->set_request_filter({});
    EXPECT_EQ(host->ask(version_frame, version_frame + version_answer),
              version_frame + version_answer);
}

TEST_F(SimSimulatedDevice, TakesCommandsAsTheyGetThroughItsGate)
{
    start({Entry::Version});
    device->set_gate([](const Command& command) {
        return command.kind == Command::Kind::Erase ? std::nullopt : std::optional(command.payload);
    });
    host->send(make_frame(bytes("03 01 00 08 00")));
    EXPECT_EQ(host->ask(version_frame, version_answer), version_answer);
    ASSERT_EQ(device->commands().size(), 2U);
    EXPECT_TRUE(device->commands().front().ignored);
}

TEST_F(SimSimulatedDevice, CountsWhatItHandsToTheHost)
{
    start({Entry::Version, Options::Echo::Together});
    host->ask(version_frame, version_frame + version_answer);
    EXPECT_EQ(device->line().bytes_to_host(), version_frame.size() + version_answer.size());
}
