#include "tests/app/ToolTest.h"
#include "tests/support/Bytes.h"

using namespace test;

namespace
{

using sim::Command;
using sim::Delivery;

const QByteArray acknowledgement = QByteArray::fromHex("555502FE04");

/// A write over a line that loses, delays or echoes bytes.
class ToolLink : public ToolTest
{
protected:
    ToolLink() { give_file("solo_two_rows.hex"); }

    void expect_written(const sim::SimulatedDevice& device) const
    {
        EXPECT_EQ(device.memory().read(0x60, 32), counting(32));
        EXPECT_EQ(device.memory().read(0x80, 32), counting(32, 0x40));
    }

    const QByteArray m_first = frame("0201600000", counting(32));
    const QByteArray m_second = frame("0201800000", counting(32, 0x40));
    const ToolResult m_clean = exited(0, QByteArray("Version set to 0x0203 successfully!"
                                                    "\rProgress 0%\rProgress 50%\rProgress 100%"
                                                    "Now writingMemory written!\n") +
                                             success);
};

} // namespace

TEST_F(ToolLink, RetriesLostAnswersInSilence)
{
    sim::SimulatedDevice device(solo());
    script_replies(device, {{}, {}, {{acknowledgement}}, {}});
    EXPECT_EQ(run(device, "-B 0203 -w solo_two_rows.hex"), m_clean);
    EXPECT_EQ(heard_by(device), small_digits(m_first.repeated(3) + m_second.repeated(2)));
    expect_written(device);
}

TEST_F(ToolLink, RetriesDamagedAnswersAndReportsEachAtOnce)
{
    sim::SimulatedDevice device(solo());
    script_replies(device, {{{QByteArray::fromHex("555502FD04")}},
                            {{QByteArray::fromHex("005502FE04")}},
                            {{acknowledgement}},
                            {{QByteArray::fromHex("55550512E904")}}});
    EXPECT_EQ(run(device, "-B 0203 -w solo_two_rows.hex"),
              exited(0, QByteArray("Version set to 0x0203 successfully!"
                                   "\rProgress 0%"
                                   "response checksum mismatch (expected FE, got FD)\n"
                                   "response is missing first sync symbol\n"
                                   "\rProgress 50%"
                                   "response byte at position 3 (12) was needlessly escaped\n"
                                   "\rProgress 100%"
                                   "Now writingMemory written!\n") +
                            success));
    EXPECT_EQ(heard_by(device), small_digits(m_first.repeated(3) + m_second.repeated(2)));
    expect_written(device);
}

TEST_F(ToolLink, RetriesAnswersCutShort)
{
    sim::SimulatedDevice device(solo());
    script_replies(device, {{{QByteArray::fromHex("555502FE")}}});
    EXPECT_EQ(run(device, "-B 0203 -w solo_two_rows.hex"), m_clean);
    EXPECT_EQ(heard_by(device), small_digits(m_first.repeated(2) + m_second));
    expect_written(device);
}

TEST_F(ToolLink, PutsAnswersInPiecesTogether)
{
    sim::SimulatedDevice device(solo());
    device.set_reply_filter([](const Command&, const QByteArray& answer) {
        return std::vector<Delivery>{
            {answer.left(1), 0}, {answer.mid(1, 2), 5}, {answer.mid(3), 10}};
    });
    EXPECT_EQ(run(device, "-B 0203 -w solo_two_rows.hex"), m_clean);
    EXPECT_EQ(heard_by(device), small_digits(m_first + m_second));
}

TEST_F(ToolLink, StripsAnEchoThatComesApart)
{
    sim::SimulatedDevice device(solo(), {sim::Entry::Probe, sim::Options::Echo::Apart});
    EXPECT_EQ(run(device, "-h -B 0203 -w solo_two_rows.hex"), m_clean);
    EXPECT_EQ(heard_by(device), small_digits(m_first + m_second));
    expect_written(device);
}

TEST_F(ToolLink, StripsAnEchoThatComesWithTheAnswer)
{
    sim::SimulatedDevice device(solo(), {sim::Entry::Probe, sim::Options::Echo::Together});
    EXPECT_EQ(run(device, "-h -B 0203 -w solo_two_rows.hex"), m_clean);
    EXPECT_EQ(heard_by(device), small_digits(m_first + m_second));
    expect_written(device);
}

TEST_F(ToolLink, FindsTheEntryReplyAfterTheEchoOfTheProbe)
{
    sim::SimulatedDevice device(solo(), {sim::Entry::Probe, sim::Options::Echo::Apart});
    EXPECT_EQ(run(device, "-h -e"),
              exited(0, QByteArray("Retrieved version number during QV entry procedure: 0x0203\n"
                                   "Erased all flash!\n") +
                            success));
    EXPECT_EQ(commands_of(device), std::vector<std::string>{"0307400000"});
}

TEST_F(ToolLink, WithoutTheEchoOfAHalfDuplexLineFails)
{
    sim::SimulatedDevice device(solo());
    EXPECT_EQ(run(device, "-h -B 0203 -e"),
              exited(1, "Version set to 0x0203 successfully!"
                        "giving up after having made 40 attempts, with errors (" +
                            QByteArray("Half duplex response wait timed out\n").repeated(40) +
                            ")\n"
                            "unable to erase 7 flash pages at address 0x00000040\n"
                            "Erase all flash failed? Aborting...\n"));
}
