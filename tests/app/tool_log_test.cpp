#include "tests/app/ToolTest.h"

using namespace test;

namespace
{

class ToolLog : public ToolTest
{
protected:
    std::string log() const { return m_tool.file(QStringLiteral("frames.log")).toStdString(); }
};

const char* const erase_entries = "\nTX:55550307400000b604"
                                  "\nRX:555503fd04";

} // namespace

TEST_F(ToolLog, HoldsEveryFrameAsItWasOnTheLine)
{
    give_file("solo_two_rows.hex");
    sim::SimulatedDevice device(solo());
    run(device, "-x frames.log -B 0203 -e -w solo_two_rows.hex -R");
    EXPECT_EQ(log(), "\nTX:55550307400000b604"
                     "\nRX:555503fd04"
                     "\nTX:55550201600000000102030504050506070809"
                     "0a0b0c0d0e0f101112131415161718191a1b1c1d1e1fad04"
                     "\nRX:555502fe04"
                     "\nTX:55550201800000404142434445464748494a4b4c4d4e4f"
                     "50515253540555565758595a5b5c5d5e5f8d04"
                     "\nRX:555502fe04"
                     "\nTX:555500000004");
}

TEST_F(ToolLog, ShowsEscapedBytes)
{
    sim::SimulatedDevice device(twin());
    run(device, "-x frames.log -B 0102 -e -xe");
    EXPECT_EQ(log(), "\nTX:55550305048000007904\nRX:555503fd04");
}

TEST_F(ToolLog, IsAppendedToByTheNextRun)
{
    sim::SimulatedDevice device(solo());
    m_tool.put_file(QStringLiteral("frames.log"), "kept");
    run(device, "-x frames.log -B 0203 -e");
    run(device, "-x frames.log -B 0203 -R");
    EXPECT_EQ(log(), std::string("kept") + erase_entries + "\nTX:555500000004");
}

TEST_F(ToolLog, HoldsTheVersionCommandButNoProbes)
{
    sim::SimulatedDevice device(twin(), {sim::Entry::Version});
    run(device, "-x frames.log");
    EXPECT_EQ(log(), "\nTX:55550002fe04\nRX:555500020102fb04");
}

TEST_F(ToolLog, IsEmptyWhenADeviceIsCaughtAndNothingElseWanted)
{
    sim::SimulatedDevice device(twin());
    run(device, "-x frames.log");
    EXPECT_EQ(log(), "");
}

TEST_F(ToolLog, HoldsRepeatedAndDamagedFrames)
{
    sim::SimulatedDevice device(solo());
    script_replies(device, {{}, {{QByteArray::fromHex("555503FC04")}}});
    run(device, "-x frames.log -B 0203 -e");
    EXPECT_EQ(log(), std::string("\nTX:55550307400000b604"
                                 "\nTX:55550307400000b604"
                                 "\nRX:555503fc04") +
                         erase_entries);
}

TEST_F(ToolLog, HoldsTheAnswerWithoutTheEchoOfAHalfDuplexLine)
{
    sim::SimulatedDevice device(solo(), {sim::Entry::Probe, sim::Options::Echo::Apart});
    run(device, "-x frames.log -h -B 0203 -e");
    EXPECT_EQ(log(), erase_entries);
}

TEST_F(ToolLog, IsCompleteWhenTheRunFails)
{
    sim::SimulatedDevice device(solo());
    script_replies(device, {{{frame("02")}}});
    run(device, "-x frames.log -B 0203 -e");
    EXPECT_EQ(log(), "\nTX:55550307400000b604\nRX:555502fe04");
}

TEST_F(ToolLog, IsNotMadeWithoutItsOption)
{
    sim::SimulatedDevice device(solo());
    run(device, "-B 0203 -e");
    EXPECT_EQ(m_tool.files(), words("device.txt"));
}

TEST_F(ToolLog, IsNotMadeWithoutAName)
{
    sim::SimulatedDevice device(solo());
    run(device, "-B 0203 -e -x");
    EXPECT_EQ(m_tool.files(), words("device.txt"));
    EXPECT_EQ(commands_of(device), std::vector<std::string>{"0307400000"});
}

TEST_F(ToolLog, IsNotMadeWhenItsOptionIsTheArgumentOfAnother)
{
    sim::SimulatedDevice device(solo());
    EXPECT_EQ(run(device, "-B 0203 -w -x frames.log"),
              exited(0, QByteArray("Version set to 0x0203 successfully!"
                                   "\rProgress 0%"
                                   "Now writingMemory written!\n") +
                            success));
    EXPECT_EQ(m_tool.files(), words("-x device.txt"));
}

TEST_F(ToolLog, MayHaveTheNameOfAnOption)
{
    sim::SimulatedDevice device(solo());
    EXPECT_EQ(
        run(device, "-B 0203 -x -e -R"),
        exited(0, QByteArray("Version set to 0x0203 successfully!Resetting device\n") + success));
    EXPECT_EQ(m_tool.file(QStringLiteral("-e")), "\nTX:555500000004");
    EXPECT_EQ(m_tool.files(), words("-e device.txt"));
}
