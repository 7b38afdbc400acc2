#include "tests/device/EntryLine.h"
#include "tests/support/Bytes.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = sim::Command::Kind;

namespace
{

const QByteArray version_frame = bytes("55 55 00 02 FE 04");
const QByteArray five_probes(5, '\x55');

/// A running device was found by the version command that follows one pass of probes. A machine
/// that is busy may have needed another of the three attempts.
void expect_one_pass(const EntryLine& line)
{
    const auto attempts = static_cast<int>(line.simulated.commands().size());
    EXPECT_EQ(hex(line.simulated.heard()), hex(five_probes + version_frame.repeated(attempts)));
}

} // namespace

TEST(Entry, ProbesAt9600BaudAndLeavesThePortClosed)
{
    EntryLine line("sample", sim::Entry::Probe);
    const DebugMessages messages;
    EXPECT_TRUE(line.enter());
    EXPECT_EQ(line.version, 0x0102);
    EXPECT_FALSE(line.port.is_open());
    ASSERT_EQ(line.simulated.commands().size(), 1U);
    EXPECT_EQ(line.simulated.commands().front().kind, Kind::Probe);
    EXPECT_EQ(line.simulated.commands().front().baud, 9600U);
    EXPECT_THAT(line.recorder.lines(), IsEmpty());
    EXPECT_THAT(messages.texts(), ElementsAre(QStringLiteral("Trying 0x55 9600 baud\n")));
}

TEST(Entry, IsFollowedByCommandsAtTheRateOfTheProfile)
{
    EntryLine line("swapped-divisors", sim::Entry::Probe);
    ASSERT_TRUE(line.enter());
    line.simulated.clear_commands();
    QByteArray data;
    EXPECT_TRUE(line.device.read_memory(0x8000, 2, data));
    ASSERT_EQ(line.simulated.commands().size(), 1U);
    EXPECT_EQ(line.simulated.commands().front().baud, 57600U);
}

TEST(Entry, WidensTheSignOfTheLowVersionByte)
{
    ProbeReplies line({raw("51 56 01 80")});
    EXPECT_TRUE(line.enter());
    EXPECT_EQ(line.version, 0xFF80);
    EXPECT_EQ(line.device.get_name(), QStringLiteral("sign-widened"));
}

TEST(Entry, TakesTheFirstMarkerItFinds)
{
    ProbeReplies line({raw("51 56 51 56 01 23")});
    EXPECT_FALSE(line.enter());
    EXPECT_EQ(line.version, 0x5156);
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error no profile for device (bootloader version = 5156)"));
}

TEST(Entry, OfAnUnlistedVersionFailsAndReportsTheVersion)
{
    ProbeReplies line({raw("51 56 12 34")});
    EXPECT_FALSE(line.enter());
    EXPECT_EQ(line.version, 0x1234);
    EXPECT_EQ(line.device.profile(), nullptr);
    EXPECT_FALSE(line.port.is_open());
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error no profile for device (bootloader version = 1234)"));
}

TEST(Entry, NeedsNoReceiverForTheVersion)
{
    EntryLine line("sample", sim::Entry::Probe);
    EXPECT_TRUE(line.device.QV_entry_procedure(nullptr));
    EXPECT_EQ(line.device.get_bootloader_version(), 0x0102);
}

TEST(Entry, LetsTheBootloaderSettleForASecond)
{
    EntryLine line("sample", sim::Entry::Probe);
    bool time_passed = false;
    QObject::connect(&line.simulated, &sim::SimulatedDevice::command_received, &line.device,
                     [&] { QTimer::singleShot(700, &line.device, [&] { time_passed = true; }); });
    EXPECT_TRUE(line.enter());
    EXPECT_TRUE(time_passed);
}

TEST(Entry, FindsARunningDeviceAfterFiveProbes)
{
    EntryLine line("sample", sim::Entry::Version);
    const DebugMessages messages;
    EXPECT_TRUE(line.enter());
    EXPECT_EQ(line.version, 0x0102);
    EXPECT_EQ(line.device.profile(), &profile_named("sample"));
    expect_one_pass(line);
    EXPECT_EQ(line.simulated.commands().front().baud, 460800U);
    EXPECT_TRUE(line.port.is_open());
    EXPECT_EQ(line.simulated.host_baud(), 115200U);
    EXPECT_THAT(messages.texts(),
                ElementsAre(QStringLiteral("Trying 0x55 9600 baud\n"),
                            QStringLiteral("Trying version command 460800 baud\n")));
}

TEST(Entry, ProbesForASecondInAll)
{
    EntryLine line("sample", sim::Entry::Version);
    bool time_passed = false;
    bool time_passed_before_the_command = false;
    QObject::connect(&line.simulated, &sim::SimulatedDevice::command_received, &line.device,
                     [&] { time_passed_before_the_command = time_passed; });
    QTimer::singleShot(900, &line.device, [&] { time_passed = true; });
    EXPECT_TRUE(line.enter());
    EXPECT_TRUE(time_passed_before_the_command);
}

TEST(Entry, FindsARunningDeviceWithoutACallbackToo)
{
    Host host;
    host.knows_device = false;
    DeviceOnLine line("sample", host, {sim::Entry::Version});
    EXPECT_TRUE(line.device.QV_entry_procedure(nullptr));
    EXPECT_EQ(line.device.get_bootloader_version(), 0x0102);
}

TEST(Entry, FailsWithTheVersionOfARunningDeviceThatIsNotListed)
{
    EntryLine line("sample", sim::Entry::Version);
    line.simulated.set_reply_filter(always(frame_of("00 02 12 34")));
    EXPECT_FALSE(line.enter());
    EXPECT_EQ(line.version, 0x1234);
    expect_one_pass(line);
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_error no profile for device (bootloader version = 1234)"));
}

TEST(Entry, IgnoresWhatCameBeforeIt)
{
    EntryLine line("sample", sim::Entry::Version);
    // The reply of a starting device, with an end on which a wait for it can stop.
    line.simulated.set_reply_filter(to_command(0, raw("51 56 01 23 04")));
    ASSERT_TRUE(line.device.set_bootloader_version(0x0102));
    line.device.reset();
    ASSERT_TRUE(line.device.read_until_terminated_or_timed_out(patience_ms));
    EXPECT_TRUE(line.enter());
    EXPECT_EQ(line.version, 0x0102);
}

TEST(Entry, StopsAtOnceWhenThePortCannotBeOpened)
{
    ZarnSerialDevice device(QStringLiteral("/dev/no-such-port"), process_events, 9600, false, 0);
    const SignalRecorder recorder(device);
    const DebugMessages messages;
    unsigned short version = 0x5A5A;
    EXPECT_FALSE(device.QV_entry_procedure(&version));
    EXPECT_EQ(version, 0x5A5A);
    ASSERT_EQ(recorder.lines().size(), 1U);
    EXPECT_EQ(recorder.lines().front().find("sig_error cannot open port no-such-port ("), 0U);
    EXPECT_EQ(messages.texts().front(), QStringLiteral("Trying 0x55 9600 baud\n"));
    EXPECT_EQ(messages.texts().size(), 2);
}

// Takes all of its six and a half seconds.
TEST(Entry, ThatNobodyAnswersTakesFivePasses)
{
    EntryLine line("sample", sim::Entry::Silent);
    const DebugMessages messages;
    EXPECT_FALSE(line.enter());
    EXPECT_EQ(line.version, 0x5A5A);
    const QByteArray pass = five_probes + version_frame + version_frame + version_frame;
    EXPECT_TRUE(wait_until([&] { return line.simulated.heard().size() >= 5 * pass.size(); }));
    EXPECT_EQ(hex(line.simulated.heard()), hex(pass.repeated(5)));
    EXPECT_EQ(line.recorder.operation(),
              SignalRecorder::Lines(
                  5, "sig_error giving up after having made 3 attempts, with errors (Response wait "
                     "timed out\nResponse wait timed out\nResponse wait timed out\n)"));
    EXPECT_EQ(messages.texts().count(QStringLiteral("Trying 0x55 9600 baud\n")), 5);
    EXPECT_EQ(messages.texts().count(QStringLiteral("Trying version command 460800 baud\n")), 5);
}

TEST(Entry, CatchesADeviceThatStartsInALaterPass)
{
    EntryLine line("sample", sim::Entry::Silent);
    unsigned int frames = 0;
    line.simulated.set_reply_filter([&](const sim::Command& command, const QByteArray&) {
        frames += command.kind == Kind::Version ? 1 : 0;
        return command.kind == Kind::Probe && frames == 3 ? raw("51 56 01 02") : no_reply();
    });
    EXPECT_TRUE(line.enter());
    EXPECT_EQ(line.version, 0x0102);
    EXPECT_THAT(line.sent(), ElementsAre("00 02", "00 02", "00 02"));
}
