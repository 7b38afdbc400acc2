#include "tests/app/Refusals.h"
#include "tests/app/ToolTest.h"

namespace
{

/// A port that the tool would complain about if it got that far.
constexpr const char* no_port = "Port  cannot be opened. Aborting...\n";

class RefusedLineTool : public testing::TestWithParam<RefusedLine>
{
protected:
    ToolRun m_tool;
};

std::string name_of(const testing::TestParamInfo<RefusedLine>& info)
{
    return info.param.name;
}

class RefusingTool : public ToolTest
{
};

} // namespace

TEST_P(RefusedLineTool, PrintsTheMessageAlone)
{
    EXPECT_EQ(m_tool.run(GetParam().arguments), exited(1, GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(Scan, RefusedLineTool, testing::ValuesIn(refused_lines()), name_of);

TEST_F(RefusingTool, ExplainsItselfWithoutArguments)
{
    EXPECT_EQ(m_tool.run({}), exited(1, "Please specify an argument" + test_data("usage.txt")));
}

TEST_F(RefusingTool, SendsNothingAndTouchesNothingWhenAnArgumentIsWrong)
{
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -e -x frames.log -R -w"),
              exited(1, "Filename string must follow -w write option, aborting...\n"));
    EXPECT_EQ(heard_by(device), "");
    EXPECT_EQ(m_tool.files(), words("device.txt"));
}

TEST_F(RefusingTool, HasNoHelpOption)
{
    EXPECT_EQ(m_tool.run(words("--help")), exited(1, no_port));
}

TEST_F(RefusingTool, CreatesMissingFilesOfEveryOperation)
{
    EXPECT_EQ(m_tool.run(words("-wv a.hex -v b.hex -r c.hex -w missing.hex")), exited(1, no_port));
    EXPECT_EQ(m_tool.files(), words("a.hex b.hex c.hex device.txt missing.hex"));
    EXPECT_EQ(m_tool.file(QStringLiteral("missing.hex")), "");
}

TEST_F(RefusingTool, LeavesExistingFilesAsTheyAre)
{
    give_file("solo_two_rows.hex");
    EXPECT_EQ(m_tool.run(words("-w solo_two_rows.hex -v solo_two_rows.hex -r solo_two_rows.hex")),
              exited(1, no_port));
    EXPECT_EQ(m_tool.file(QStringLiteral("solo_two_rows.hex")), test_data("solo_two_rows.hex"));
}

TEST_F(RefusingTool, WantsOneReadOnly)
{
    EXPECT_EQ(m_tool.run(words("-r a.hex -l 0 1 b.hex -x frames.log")),
              exited(1, "Please specify only one of read (-r) or limited read (-l) operations. "
                        "Aborting...\n"));
    EXPECT_EQ(m_tool.files(), words("a.hex b.hex device.txt")) << "the log comes later";
}

TEST_F(RefusingTool, WantsOneWriteOnly)
{
    EXPECT_EQ(m_tool.run(words("-w a.hex -W 0 1 b.hex -x frames.log")),
              exited(1, "Please specify only one of write (-w) or limited write (-W) or "
                        "write-and-verify (-wv) operations. Aborting...\n"));
    EXPECT_EQ(m_tool.files(), words("a.hex b.hex device.txt"));
}

TEST_F(RefusingTool, WantsOneEraseOnly)
{
    EXPECT_EQ(m_tool.run(words("-e -E 0 1 -x frames.log")),
              exited(1, "Please specify only one of erase all (-e) or limited erase (-E) "
                        "operations. Aborting...\n"));
    EXPECT_EQ(m_tool.files(), words("device.txt"));
}

TEST_F(RefusingTool, TellsALogThatCannotBeOpened)
{
    EXPECT_EQ(m_tool.run(words("-V -b -x nowhere/%1.log")),
              exited(1, "Could not open nowhere/%1.log for writing!\n"))
        << "told before the two ways to the version are";
}

TEST_F(RefusingTool, WantsOneWayToTheVersionOnly)
{
    m_tool.put_file(QStringLiteral("frames.log"), "earlier");
    EXPECT_EQ(m_tool.run(words("-V -b -x frames.log")),
              exited(1, "Please use QV entry procedure (-b) OR version request (-V) but not both. "
                        "Aborting..." +
                            test_data("usage.txt")));
    EXPECT_EQ(m_tool.file(QStringLiteral("frames.log")), "earlier");
}

TEST_F(RefusingTool, WantsOneWayToTheVersionOnlyEvenWhenItIsGiven)
{
    EXPECT_EQ(m_tool.run(words("-V -b -B 0102 -x new.log")),
              exited(1, "Please use QV entry procedure (-b) OR version request (-V) but not both. "
                        "Aborting..." +
                            test_data("usage.txt")));
    EXPECT_EQ(m_tool.file(QStringLiteral("new.log")), "") << "opened before that check";
}

TEST_F(RefusingTool, IgnoresALogWithoutAName)
{
    EXPECT_EQ(m_tool.run(words("-e -x")), exited(1, no_port));
    EXPECT_EQ(m_tool.files(), words("device.txt"));
}
