#include "tests/app/ToolTest.h"
#include "tests/support/Bytes.h"

using namespace test;

namespace
{

using sim::Command;
using sim::Delivery;

const QByteArray version_frame = QByteArray::fromHex("55550002FE04");

class ToolEntry : public ToolTest
{
protected:
    /// Answers each probe with these bytes at these times.
    static void answer_probes(sim::SimulatedDevice& device, const std::vector<Delivery>& reply)
    {
        device.set_reply_filter([reply](const Command& command, const QByteArray& answer) {
            return command.kind == Command::Kind::Probe ? reply : std::vector<Delivery>{{answer}};
        });
    }
};

QByteArray gave_up(int attempts)
{
    return "giving up after having made " + QByteArray::number(attempts) +
           " attempts, with errors (" + QByteArray("Response wait timed out\n").repeated(attempts) +
           ")\n";
}

QByteArray retrieved(const char* version)
{
    return QByteArray("Retrieved version number during QV entry procedure: 0x") + version + "\n";
}

} // namespace

TEST_F(ToolEntry, CatchesAStartingDeviceAndDoesNothingElse)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, ""), exited(0, retrieved("0102") + success));
    ASSERT_EQ(device.commands().size(), 1U);
    EXPECT_EQ(device.commands().front().kind, Command::Kind::Probe);
    EXPECT_EQ(device.commands().front().baud, 9600U);
}

TEST_F(ToolEntry, GoesOnAtTheProfilesRate)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-b -M 19200 -R"),
              exited(0, retrieved("0102") + "Resetting device\n" + success));
    EXPECT_EQ(commands_of(device), std::vector<std::string>{"0000"});
    EXPECT_EQ(device.commands().back().baud, 115200U);
}

TEST_F(ToolEntry, FindsARunningDevice)
{
    sim::SimulatedDevice device(twin(), {sim::Entry::Version});
    EXPECT_EQ(run(device, "-R"), exited(0, retrieved("0102") + "Resetting device\n" + success));
    EXPECT_EQ(heard_by(device), small_digits("UUUUU" + version_frame + frame("0000")));
    EXPECT_EQ(commands_of(device), (std::vector<std::string>{"0002", "0000"}));
    EXPECT_EQ(device.commands().front().baud, 460800U);
    EXPECT_EQ(device.commands().back().baud, 115200U);
}

TEST_F(ToolEntry, GivesUpOnADeviceThatNeverAnswers)
{
    sim::SimulatedDevice device(twin(), {sim::Entry::Silent});
    EXPECT_EQ(run(device, "-e -R"),
              exited(1, gave_up(3).repeated(5) + "Did not succeed in QV entry procedure, "
                                                 "aborting..."));
    EXPECT_EQ(heard_by(device), small_digits(("UUUUU" + version_frame.repeated(3)).repeated(5)));
}

TEST_F(ToolEntry, TakesAReplyInPiecesAfterOtherBytes)
{
    sim::SimulatedDevice device(twin());
    answer_probes(device,
                  {{QByteArray::fromHex("00FF51"), 0}, {"Q", 5}, {"V\x01", 10}, {"\x02", 15}});
    EXPECT_EQ(run(device, ""), exited(0, retrieved("0102") + success));
}

TEST_F(ToolEntry, TakesTheVersionAfterTheMarkerOnly)
{
    sim::SimulatedDevice device(twin());
    answer_probes(device, {{QByteArray("\x02\x03QV\x01\x02\x03\x04"), 0}});
    EXPECT_EQ(run(device, ""), exited(0, retrieved("0102") + success));
}

TEST_F(ToolEntry, WidensALowByteWithItsTopBitSet)
{
    sim::SimulatedDevice device(twin());
    answer_probes(device, {{QByteArray("QV\x01\x80"), 0}});
    EXPECT_EQ(run(device, ""), exited(0, retrieved("ff80") + success));
}

TEST_F(ToolEntry, RefusesAVersionThatTheTableLacks)
{
    sim::SimulatedDevice device(twin());
    answer_probes(device, {{QByteArray("QV\x0A\x6C"), 0}});
    EXPECT_EQ(run(device, "-e"),
              exited(1, "no profile for device (bootloader version = 0A6C)\n"
                        "Found version 0x0a6c but could not load profile for this version. "
                        "Aborting..."));
    EXPECT_EQ(commands_of(device), std::vector<std::string>());
}

TEST_F(ToolEntry, TakesVersionZeroForNoAnswer)
{
    sim::SimulatedDevice device(twin());
    answer_probes(device, {{QByteArray("QV\0\0", 4), 0}});
    EXPECT_EQ(run(device, ""), exited(1, "no profile for device (bootloader version = 0000)\n"
                                         "Did not succeed in QV entry procedure, aborting..."));
}

TEST_F(ToolEntry, RefusesARunningDeviceThatTheTableLacks)
{
    sim::SimulatedDevice device(twin(), {sim::Entry::Version});
    script_replies(device, {{{frame("00020A6C")}}});
    EXPECT_EQ(run(device, "-e"),
              exited(1, "no profile for device (bootloader version = 0A6C)\n"
                        "Found version 0x0a6c but could not load profile for this version. "
                        "Aborting..."));
    EXPECT_EQ(commands_of(device), std::vector<std::string>{"0002"});
}

TEST_F(ToolEntry, ShowsErrorsOfEarlierPassesAheadOfTheVersion)
{
    sim::SimulatedDevice device(twin(), {sim::Entry::Version});
    script_replies(device, {{}, {}, {}});
    EXPECT_EQ(run(device, ""), exited(0, gave_up(3) + retrieved("0102") + success));
    EXPECT_EQ(heard_by(device),
              small_digits("UUUUU" + version_frame.repeated(3) + "UUUUU" + version_frame));
}
