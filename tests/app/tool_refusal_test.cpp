#include "tests/app/Refusals.h"
#include "tests/app/ToolTest.h"
#include "tests/support/RowName.h"

using namespace test;

namespace
{

/// A port that the tool would report as missing if it got that far.
constexpr const char* no_port = "Port  cannot be opened. Aborting...\n";

class ToolRefusedLine : public testing::TestWithParam<RefusedLine>
{
protected:
    ToolRun m_tool;
};

class ToolThatRefuses : public ToolTest
{
};

} // namespace

TEST_P(ToolRefusedLine, PrintsTheMessageAlone)
{
    EXPECT_EQ(m_tool.run(GetParam().arguments), exited(1, GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(, ToolRefusedLine, testing::ValuesIn(refused_lines()), row_name);

TEST_F(ToolThatRefuses, ExplainsItselfWithoutArguments)
{
    EXPECT_EQ(m_tool.run({}), exited(1, "Please specify an argument" + test_data("usage.txt")));
}

TEST_F(ToolThatRefuses, SendsNothingAndTouchesNothingWhenAnArgumentIsWrong)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -e -x frames.log -R -w"),
              exited(1, "Filename string must follow -w write option, aborting...\n"));
    EXPECT_EQ(heard_by(device), "");
    EXPECT_EQ(m_tool.files(), words("device.txt"));
}

TEST_F(ToolThatRefuses, HasNoHelpOption)
{
    EXPECT_EQ(m_tool.run(words("--help")), exited(1, no_port));
}

TEST_F(ToolThatRefuses, CreatesMissingFilesOfEveryOperation)
{
    EXPECT_EQ(m_tool.run(words("-wv a.hex -v b.hex -r c.hex -w missing.hex")), exited(1, no_port));
    EXPECT_EQ(m_tool.files(), words("a.hex b.hex c.hex device.txt missing.hex"));
    EXPECT_EQ(m_tool.file(QStringLiteral("missing.hex")), "");
}

TEST_F(ToolThatRefuses, LeavesExistingFilesAsTheyAre)
{
    give_file("solo_two_rows.hex");
    EXPECT_EQ(m_tool.run(words("-w solo_two_rows.hex -v solo_two_rows.hex -r solo_two_rows.hex")),
              exited(1, no_port));
    EXPECT_EQ(m_tool.file(QStringLiteral("solo_two_rows.hex")), test_data("solo_two_rows.hex"));
}

TEST_F(ToolThatRefuses, WantsOneReadOnly)
{
    EXPECT_EQ(m_tool.run(words("-r a.hex -l 0 1 b.hex -x frames.log")),
              exited(1, "Please specify only one of read (-r) or limited read (-l) operations. "
                        "Aborting...\n"));
    EXPECT_EQ(m_tool.files(), words("a.hex b.hex device.txt")) << "the log comes later";
}

TEST_F(ToolThatRefuses, WantsOneWriteOnly)
{
    EXPECT_EQ(m_tool.run(words("-w a.hex -W 0 1 b.hex -x frames.log")),
              exited(1, "Please specify only one of write (-w) or limited write (-W) or "
                        "write-and-verify (-wv) operations. Aborting...\n"));
    EXPECT_EQ(m_tool.files(), words("a.hex b.hex device.txt"));
}

TEST_F(ToolThatRefuses, WantsOneEraseOnly)
{
    EXPECT_EQ(m_tool.run(words("-e -E 0 1 -x frames.log")),
              exited(1, "Please specify only one of erase all (-e) or limited erase (-E) "
                        "operations. Aborting...\n"));
    EXPECT_EQ(m_tool.files(), words("device.txt"));
}

TEST_F(ToolThatRefuses, ReportsALogThatCannotBeOpened)
{
    EXPECT_EQ(m_tool.run(words("-V -b -x nowhere/%1.log")),
              exited(1, "Could not open nowhere/%1.log for writing!\n"))
        << "reported before the two ways to the version are";
}

TEST_F(ToolThatRefuses, WantsOneWayToTheVersionOnly)
{
    m_tool.put_file(QStringLiteral("frames.log"), "earlier");
    EXPECT_EQ(m_tool.run(words("-V -b -x frames.log")),
              exited(1, "Please use QV entry procedure (-b) OR version request (-V) but not both. "
                        "Aborting..." +
                            test_data("usage.txt")));
    EXPECT_EQ(m_tool.file(QStringLiteral("frames.log")), "earlier");
}

TEST_F(ToolThatRefuses, WantsOneWayToTheVersionOnlyEvenWhenItIsGiven)
{
    EXPECT_EQ(m_tool.run(words("-V -b -B 0102 -x new.log")),
              exited(1, "Please use QV entry procedure (-b) OR version request (-V) but not both. "
                        "Aborting..." +
                            test_data("usage.txt")));
    EXPECT_EQ(m_tool.file(QStringLiteral("new.log")), "") << "opened before that check";
}

TEST_F(ToolThatRefuses, IgnoresALogWithoutAName)
{
    EXPECT_EQ(m_tool.run(words("-e -x")), exited(1, no_port));
    EXPECT_EQ(m_tool.files(), words("device.txt"));
}
