#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

#include <ostream>

using namespace test;

namespace
{

/// A run whose console or disk goes away writes its image and ends as it would have anyway.
class ToolConsole : public QuadTest
{
protected:
    ToolConsole() { put_image("image.hex", {{0x80, m_row}}); }

    /// Runs the tool in a shell script, which leaves the tool's exit status in a file.
    ToolResult run_in_shell(const char* script, const char* arguments)
    {
        return m_tool.run_in_shell(QLatin1String(script),
                                   QStringList{QStringLiteral("-s"), m_device.port_path()} +
                                       words(arguments));
    }

    const QByteArray m_row = counting(0x20, 0x30);
};

/// How a run is started without some of its standard streams.
struct Closed {
    const char* name;
    const char* script;
};

std::ostream& operator<<(std::ostream& stream, const Closed& closed)
{
    return stream << closed.script;
}

const Closed closed_streams[] = {
    {"input", "\"$@\" <&-; echo $? >status"},
    {"output", "\"$@\" >&-; echo $? >status"},
    {"error", "\"$@\" 2>&-; echo $? >status"},
    {"input_and_output", "\"$@\" <&- >&-; echo $? >status"},
    {"all", "\"$@\" <&- >&- 2>&-; echo $? >status"},
};

class ToolWithoutStreams : public ToolConsole, public testing::WithParamInterface<Closed>
{
};

} // namespace

TEST_F(ToolConsole, ThatNobodyReadsDoesNotStopAWrite)
{
    // A pipe that has lost its only reader before the first byte is written.
    const ToolResult result = run_in_shell("mkfifo pipe; exec 3<>pipe; exec 4>pipe; exec 3>&-; "
                                           "\"$@\" >&4; echo $? >status",
                                           "-B 0708 -e -w image.hex");
    EXPECT_EQ(result, exited(0, ""));
    EXPECT_EQ(file("status"), "0\n");
    EXPECT_EQ(small_digits(m_device.memory().read(0x80, 0x20)), small_digits(m_row));
}

TEST_F(ToolConsole, ThatNobodyReadsLeavesAFailureItsStatus)
{
    run_in_shell("mkfifo pipe; exec 3<>pipe; exec 4>pipe; exec 3>&-; "
                 "\"$@\" >&4 2>&4; echo $? >status",
                 "-B 0203 -e");
    EXPECT_EQ(file("status"), "1\n");
}

TEST_P(ToolWithoutStreams, WritesNothingElsewhere)
{
    operate("-x usual.log -w image.hex -l 0x80 0xA0 usual.hex");
    run_in_shell(GetParam().script, "-B 0708 -x frames.log -w image.hex -l 0x80 0xA0 out.hex");
    EXPECT_EQ(file("status"), "0\n");
    EXPECT_EQ(file("frames.log"), file("usual.log"));
    EXPECT_EQ(file("out.hex"), saved_file({{0x80, m_row}}));
    const Commands run{write_flash(0x80, m_row), read_flash(0x80)};
    EXPECT_EQ(commands_of(m_device), run + run);
}

INSTANTIATE_TEST_SUITE_P(Closed, ToolWithoutStreams, testing::ValuesIn(closed_streams), row_name);

TEST_F(ToolConsole, StaysWholeWhenTheLogMustNotGrow)
{
    // A limit of 512 bytes.
    m_tool.put_file(QStringLiteral("frames.log"), QByteArray(500, '-'));
    const ToolResult result = run_in_shell("ulimit -f 1; \"$@\"; echo $? >status",
                                           "-B 0708 -x frames.log -e -w image.hex");
    EXPECT_TRUE(result.out.endsWith(success)) << result;
    EXPECT_EQ(file("status"), "0\n");
    EXPECT_EQ(file("frames.log").size(), 512U);
    EXPECT_EQ(small_digits(m_device.memory().read(0x80, 0x20)), small_digits(m_row));
}

TEST_F(ToolConsole, StaysWholeWhenTheLogIsOnAFullDisk)
{
    EXPECT_EQ(operate("-x /dev/full -e"), succeeded("Erased all flash!\n"));
}

TEST_F(ToolConsole, ReportsAReadBackFileThatMustNotGrow)
{
    const ToolResult result =
        run_in_shell("ulimit -f 1; \"$@\"; echo $? >status", "-B 0708 -r out.hex");
    EXPECT_EQ(result, succeeded("Memory read!\n"));
    EXPECT_TRUE(result.err.contains("could not open file 'out.hex' for writing")) << result;
    EXPECT_EQ(file("status"), "0\n");
    EXPECT_EQ(file("out.hex").size(), 512U);
}

TEST_F(ToolConsole, ReportsAReadBackPipeThatNobodyReads)
{
    // Echoes until the reader has gone.
    run_in_shell("{ trap '' PIPE; while echo 2>/dev/null; do :; done; \"$@\"; echo $? >status; } "
                 "2>errors | true",
                 "-B 0708 -r /dev/stdout");
    EXPECT_EQ(file("status"), "0\n");
    const std::string errors = file("errors");
    EXPECT_NE(errors.find("could not open file '/dev/stdout' for writing"), std::string::npos)
        << errors;
}
