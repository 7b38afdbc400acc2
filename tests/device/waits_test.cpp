#include "tests/device/EntryLine.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

#include <QElapsedTimer>
#include <QTimer>
#include <gmock/gmock.h>

#include <functional>

using namespace test;
using testing::ElementsAre;

// What may happen while a command waits for its answer.

namespace
{

const char* const refusal = "sig_error cannot begin a command while another waits for its answer";
const char* const ended = "sig_error the wait for the device was ended from outside";

struct Intruder {
    const char* name;
    std::function<bool(ZarnSerialDevice&)> begin;
    const char* message;
};

bool send(ZarnSerialDevice& device, unsigned char attempts)
{
    QByteArray response;
    return device.send_and_receive(bytes("01 01 00 08 00"), response, 2, attempts, 300);
}

const Intruder intruders[] = {
    {"Command", [](ZarnSerialDevice& device) { return send(device, 2); }, refusal},
    {"CommandWithBadArguments", [](ZarnSerialDevice& device) { return send(device, 0); },
     "sig_error max_attempts == 0 (nonsensical)"},
    {"Entry", [](ZarnSerialDevice& device) { return device.QV_entry_procedure(nullptr); }, refusal},
    {"Wait", [](ZarnSerialDevice& device) { return device.read_until_terminated_or_timed_out(1); },
     refusal},
};

class CommandBegunInsideAWait : public testing::TestWithParam<Intruder>
{
};

/// Lets the application's own event loop run, after which quit() is forgotten.
void run_application()
{
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
}

int rounds = 0;

void count_and_process_events()
{
    ++rounds;
    process_events();
}

} // namespace

TEST_P(CommandBegunInsideAWait, IsRefusedAndLeavesTheCommandThatWaitsAlone)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    bool began = true;
    QTimer::singleShot(0, [&] { began = GetParam().begin(line.device); });
    QByteArray response;
    EXPECT_TRUE(line.device.send_and_receive(bytes("00 02"), response, 2, 1, 300));
    EXPECT_FALSE(began);
    EXPECT_EQ(hex(response), "01 02");
    EXPECT_THAT(line.sent(), ElementsAre("00 02"));
    EXPECT_THAT(line.recorder.operation(), ElementsAre(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(, CommandBegunInsideAWait, testing::ValuesIn(intruders), row_name);

TEST(CommandBegunInsideAnEntry, IsRefusedAndLeavesTheEntryAlone)
{
    EntryLine line("sample", sim::Entry::Probe);
    bool began = true;
    QTimer::singleShot(0, [&] { began = send(line.device, 1); });
    EXPECT_TRUE(line.enter());
    EXPECT_FALSE(began);
    EXPECT_THAT(line.recorder.lines(), ElementsAre(refusal));
}

// An open port could receive bytes that cut the second short.
TEST(CommandBegunWhileTheBootloaderSettles, LeavesThePortClosed)
{
    EntryLine line("sample", sim::Entry::Probe);
    bool was_open = false;
    int resets = 0;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (resets == 0 && !line.simulated.commands().empty() && !line.port.is_open()) {
            ++resets;
            line.device.reset();
            was_open = line.port.is_open();
        }
    });
    timer.start(10);
    EXPECT_TRUE(line.enter());
    EXPECT_EQ(resets, 1);
    EXPECT_FALSE(was_open);
    EXPECT_FALSE(line.port.is_open());
    EXPECT_THAT(line.recorder.lines(), ElementsAre(refusal));
}

TEST(EventLoopEnd, EndsTheCommandThatWaits)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    line.simulated.set_reply_filter(always(no_reply()));
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    QByteArray response;
    EXPECT_FALSE(line.device.send_and_receive(bytes("00 02"), response, 2, 40, 300));
    EXPECT_THAT(line.recorder.lines(), ElementsAre("sig_unencoded_command 00 02",
                                                   "sig_encoded_command 55 55 00 02 FE 04", ended));
    run_application();
}

TEST(EventLoopEnd, IsForgottenWhenTheApplicationRunsAgain)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    QByteArray response;
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    line.device.send_and_receive(bytes("00 02"), response, 2, 1, 300);
    run_application();
    EXPECT_TRUE(line.device.send_and_receive(bytes("00 02"), response, 2, 40, 300));
}

TEST(EventLoopEnd, KeepsCommandsThatWouldWaitFromBeingSent)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    line.simulated.set_reply_filter(always(no_reply()));
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    QByteArray response;
    line.device.send_and_receive(bytes("00 02"), response, 2, 40, 300);
    line.recorder.clear();
    EXPECT_FALSE(line.device.send_and_receive(bytes("03 01 00 08 00"), response, 1, 40, 300));
    EXPECT_THAT(line.recorder.lines(), ElementsAre(ended));
    run_application();
}

TEST(EventLoopEnd, EndsTheEntryThatAsksForTheVersion)
{
    EntryLine line("sample", sim::Entry::Version);
    line.simulated.set_reply_filter([](const sim::Command& command, const QByteArray&) {
        if (command.kind == sim::Command::Kind::Version) {
            QCoreApplication::quit();
        }
        return no_reply();
    });
    EXPECT_FALSE(line.enter());
    EXPECT_THAT(line.recorder.operation(), ElementsAre(ended));
    const auto frames = static_cast<int>(line.sent().size()); // more than one on a busy machine
    EXPECT_EQ(hex(line.simulated.heard()),
              hex(QByteArray(5, '\x55') + bytes("55 55 00 02 FE 04").repeated(frames)));
    run_application();
}

TEST(EventLoopEnd, EndsTheEntryWhileTheBootloaderSettles)
{
    EntryLine line("sample", sim::Entry::Probe);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (!line.simulated.commands().empty() && !line.port.is_open()) {
            QCoreApplication::quit();
        }
    });
    timer.start(10);
    EXPECT_FALSE(line.enter());
    EXPECT_THAT(line.recorder.lines(), ElementsAre(ended));
    run_application();
}

TEST(Entry, HasStoredTheVersionWhileTheBootloaderSettles)
{
    EntryLine line("sample", sim::Entry::Probe);
    std::vector<unsigned short> while_settling;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        if (!line.simulated.commands().empty() && !line.port.is_open()) {
            while_settling.push_back(line.version);
        }
    });
    timer.start(10);
    EXPECT_TRUE(line.enter());
    ASSERT_FALSE(while_settling.empty());
    EXPECT_EQ(while_settling.front(), 0x0102);
}

TEST(Entry, PausesBetweenItsLooksAtTheLine)
{
    Host host = newcomer();
    host.events = count_and_process_events;
    DeviceOnLine line("sample", host, {sim::Entry::Version});
    rounds = 0;
    QElapsedTimer elapsed;
    elapsed.start();
    EXPECT_TRUE(line.device.QV_entry_procedure(nullptr));
    EXPECT_GT(rounds, 5);
    EXPECT_LE(rounds, elapsed.elapsed() + 5);
}
