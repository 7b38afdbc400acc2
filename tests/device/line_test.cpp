#include "tests/support/Bytes.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/Replies.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

#include <memory>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

int callbacks = 0;

void count_call()
{
    ++callbacks;
}

/// The serial port library's message about a port that does not exist.
std::string system_text(const QString& port)
{
    QSerialPort serial_port(port);
    EXPECT_FALSE(serial_port.open(QIODevice::ReadWrite));
    return serial_port.errorString().toStdString();
}

} // namespace

TEST(Line, IsNotOpenedByTheConstructor)
{
    const DeviceOnLine line("sample");
    EXPECT_FALSE(line.port.is_open());
    EXPECT_THAT(line.recorder.lines(), IsEmpty());
}

TEST(Line, IsOpenedOnce)
{
    DeviceOnLine line("sample");
    EXPECT_TRUE(line.device.open_port());
    EXPECT_TRUE(line.port.is_open());
    EXPECT_TRUE(line.device.open_port());
    EXPECT_THAT(line.recorder.lines(), IsEmpty());
}

TEST(Line, IsClosedByTheDestructorWithoutAnyCommand)
{
    sim::SimulatedDevice simulated(profile_named("sample"), {sim::Entry::Version});
    const PortWatch port(simulated.port_path());
    auto device = std::make_unique<ZarnSerialDevice>(simulated.port_path(), nullptr, 115200, false,
                                                     version_named("sample"));
    ASSERT_TRUE(device->open_port());
    ASSERT_TRUE(port.is_open());
    device.reset();
    EXPECT_FALSE(port.is_open());
    // Anything that the destructor might have sent would arrive before this.
    ZarnSerialDevice other(simulated.port_path(), nullptr, 115200, false, version_named("sample"));
    other.reset();
    ASSERT_TRUE(wait_until([&] { return !simulated.payloads().empty(); }));
    EXPECT_EQ(hex(simulated.heard()), "55 55 00 00 00 04");
}

TEST(Line, RunsAtTheGivenRateUntilAProfileIsKnown)
{
    Host host;
    host.baud = 19200;
    host.knows_device = false;
    DeviceOnLine line("sample", host);
    ASSERT_TRUE(line.device.open_port());
    EXPECT_EQ(line.simulated.host_baud(), 19200U);
}

TEST(Line, RunsAtTheRateOfTheProfileThatTheConstructorSelects)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    EXPECT_EQ(line.simulated.host_baud(), 115200U);
}

TEST(Line, ThatIsNotThereIsReportedUnderTheNameThatThePortGoesBy)
{
    const QString name = QStringLiteral("/dev/no-such-port");
    ZarnSerialDevice device(name, nullptr, 9600, false, 0);
    const SignalRecorder recorder(device);
    EXPECT_FALSE(device.open_port());
    EXPECT_THAT(recorder.lines(),
                ElementsAre("sig_error cannot open port no-such-port (" + system_text(name) + ")"));
}

TEST(Line, MessagesGoToTheDebugChannelAndToTheSignal)
{
    DeviceOnLine line("sample");
    const DebugMessages messages;
    EXPECT_FALSE(line.device.error(QStringLiteral("what %1 happened")));
    EXPECT_THAT(messages.texts(), ElementsAre(QStringLiteral("\"what %1 happened\"")));
    EXPECT_THAT(line.recorder.lines(), ElementsAre("sig_error what %1 happened"));
}

TEST(Line, EventsAreProcessedByTheOwnerOfTheDeviceObject)
{
    Host host;
    host.events = count_call;
    DeviceOnLine line("sample", host);
    EXPECT_EQ(callbacks, 0);
    line.device.process_events();
    EXPECT_EQ(callbacks, 1);
    DeviceOnLine without_callback("sample");
    without_callback.device.process_events();
    EXPECT_EQ(callbacks, 1);
}

TEST(Line, NoTimeToWaitIsATrueAnswerAtOnce)
{
    DeviceOnLine line("sample");
    EXPECT_TRUE(line.device.read_until_terminated_or_timed_out(0));
}

TEST(Line, AWaitEndsWithoutData)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    EXPECT_FALSE(line.device.read_until_terminated_or_timed_out(1));
}

TEST(Line, AWaitDoesNotLookAtWhatIsThereUntilItsEnd)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(always(frame_of("00 00")));
    line.device.reset();
    ASSERT_TRUE(line.device.read_until_terminated_or_timed_out(patience_ms));
    bool time_passed = false;
    QTimer::singleShot(50, &line.device, [&] { time_passed = true; });
    EXPECT_TRUE(line.device.read_until_terminated_or_timed_out(100));
    EXPECT_TRUE(time_passed);
}
