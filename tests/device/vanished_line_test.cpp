#include "tests/device/EntryLine.h"
#include "tests/device/StalledLine.h"
#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/Replies.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <gmock/gmock.h>

#include <ctime>

using namespace test;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

namespace
{

const char* const sent_version_command = "sig_encoded_command 55 55 00 02 FE 04";

/// Compares the processor time of this process with the time that goes by.
class Load
{
public:
    Load() { m_elapsed.start(); }

    /// Waiting took nearly no processor time; a notifier that fires endlessly would keep a core
    /// busy.
    bool is_low() const
    {
        return seconds_of_processor() - m_before <
               static_cast<double>(m_elapsed.elapsed()) / 1000 / 2;
    }

private:
    static double seconds_of_processor()
    {
        return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
    }

    QElapsedTimer m_elapsed;
    double m_before = seconds_of_processor();
};

std::string given_up(int attempts)
{
    std::string errors;
    for (int i = 0; i < attempts; ++i) {
        errors += "Response wait timed out\n";
    }
    return "sig_error giving up after having made " + std::to_string(attempts) +
           " attempts, with errors (" + errors + ")";
}

/// Calls it when events are handled next: a line must not be removed from within its own signal.
template <typename Action>
void soon(Action action)
{
    QTimer::singleShot(0, action);
}

/// A name that can be given to one port after another.
class Link
{
public:
    void lead_to(const QString& port) const
    {
        remove();
        EXPECT_TRUE(QFile::link(port, path()));
    }

    void remove() const { QFile::remove(path()); }

    QString path() const { return m_folder.filePath(QStringLiteral("port")); }

private:
    QTemporaryDir m_folder;
};

/// Asks for the version, as often as that, of a line that does not answer.
void expect_no_answer_and_no_load(ZarnSerialDevice& device, unsigned char attempts)
{
    const Load load;
    QByteArray response;
    EXPECT_FALSE(device.send_and_receive(bytes("00 02"), response, 2, attempts, 300));
    EXPECT_TRUE(load.is_low());
}

} // namespace

TEST(VanishedLine, IsLikeASilentDeviceAndCostsNoProcessorTime)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    line.simulated.set_reply_filter([&](const sim::Command&, const QByteArray&) {
        line.simulated.unplug();
        return no_reply();
    });
    expect_no_answer_and_no_load(line.device, 5);
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", sent_version_command, given_up(5)));
    EXPECT_FALSE(line.port.is_open());
}

TEST(VanishedLine, BetweenTwoCommandsIsLikeASilentDeviceToo)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    line.simulated.unplug();
    expect_no_answer_and_no_load(line.device, 5);
    EXPECT_EQ(line.recorder.lines().back(), given_up(5));
}

TEST(VanishedLine, WithUnreadBytesOnItIsLikeASilentDeviceToo)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    line.simulated.set_reply_filter([&](const sim::Command&, const QByteArray&) {
        soon([&] { line.simulated.unplug(); });
        return Reply{{QByteArray(3000, '\x55')}};
    });
    expect_no_answer_and_no_load(line.device, 5);
    EXPECT_EQ(line.recorder.lines().back(), given_up(5));
    EXPECT_FALSE(line.port.is_open());
}

TEST(VanishedLine, OfADeviceThatWasSilentBeforeChangesNothing)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    line.simulated.set_reply_filter([&](const sim::Command& command, const QByteArray&) {
        if (command.sequence == 2) {
            line.simulated.unplug();
        }
        return no_reply();
    });
    expect_no_answer_and_no_load(line.device, 7);
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", sent_version_command,
                            sent_version_command, sent_version_command, given_up(7)));
    EXPECT_FALSE(line.port.is_open());
}

TEST(VanishedLine, ThatTookNoMoreBytesIsLikeASilentDeviceToo)
{
    StalledLine line;
    ZarnSerialDevice device(line.port_path(), nullptr, 115200, false, 0);
    const PortWatch port(line.port_path());
    const SignalRecorder recorder(device);
    int commands_sent = 0;
    QObject::connect(&device, &ZarnSerialDevice::sig_encoded_command, [&] {
        if (++commands_sent == 6) {
            soon([&] { line.unplug(); });
        }
    });
    ASSERT_TRUE(device.open_port());
    const Load load;
    QByteArray response;
    EXPECT_FALSE(device.send_and_receive(QByteArray(30000, '\x02'), response, 1, 10, 300));
    EXPECT_TRUE(load.is_low());
    EXPECT_EQ(commands_sent, 6);
    EXPECT_EQ(recorder.lines().back(), given_up(10));
    EXPECT_FALSE(port.is_open());
}

// What has the name of the port by then may be another device, which must not be erased or written
// as if it were the first.
TEST(VanishedLine, IsNotOpenedAgainUnderItsName)
{
    sim::SimulatedDevice first(profile_named("sample"), {sim::Entry::Version});
    sim::SimulatedDevice second(profile_named("sample"), {sim::Entry::Version});
    const Link link;
    link.lead_to(first.port_path());
    ZarnSerialDevice device(link.path(), nullptr, 9600, false, version_named("sample"));
    const SignalRecorder recorder(device);
    ASSERT_TRUE(device.open_port());
    first.unplug();
    QByteArray response;
    EXPECT_FALSE(device.send_and_receive(bytes("00 02"), response, 2, 2, 300));

    link.lead_to(second.port_path());
    EXPECT_TRUE(device.open_port());
    EXPECT_FALSE(device.send_and_receive(bytes("03 01 00 08 00"), response, 1, 2, 300));
    device.reset();
    EXPECT_EQ(hex(second.heard()), "");
    EXPECT_THAT(recorder.lines(), Not(Contains(StartsWith("sig_error cannot open port"))));
}

TEST(VanishedLine, IsOpenedAgainByTheEntryProcedure)
{
    sim::SimulatedDevice first(profile_named("sample"));
    sim::SimulatedDevice second(profile_named("sample"), {sim::Entry::Version});
    const Link link;
    link.lead_to(first.port_path());
    ZarnSerialDevice device(link.path(), process_events, 9600, false, 0);
    first.set_reply_filter([&](const sim::Command&, const QByteArray&) {
        first.unplug();
        link.lead_to(second.port_path());
        return no_reply();
    });
    unsigned short version = 0;
    EXPECT_TRUE(device.QV_entry_procedure(&version));
    EXPECT_EQ(version, version_named("sample"));
}

TEST(VanishedLine, EndsTheEntryProcedureAtItsNextOpening)
{
    sim::SimulatedDevice simulated(profile_named("sample"));
    const Link link;
    link.lead_to(simulated.port_path());
    ZarnSerialDevice device(link.path(), process_events, 9600, false, 0);
    const SignalRecorder recorder(device);
    simulated.set_reply_filter([&](const sim::Command&, const QByteArray&) {
        simulated.unplug();
        link.remove();
        return no_reply();
    });
    EXPECT_FALSE(device.QV_entry_procedure(nullptr));
    EXPECT_THAT(recorder.lines(), ElementsAre(StartsWith("sig_error cannot open port ")));
}
