#include "tests/app/LostDevice.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <ctime>
#include <memory>

using namespace test;

namespace
{

/// For a command that is not answered.
constexpr double seconds_of_waiting = 0.3 * static_cast<double>(attempts);

/// What a process has used so far; nothing once it has ended.
double processor_seconds(qint64 process)
{
    clockid_t clock{};
    timespec used{};
    if (::clock_getcpuclockid(static_cast<pid_t>(process), &clock) != 0 ||
        ::clock_gettime(clock, &used) != 0) {
        return 0;
    }
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

/// A read whose port vanishes at its second command.
class LostRead
{
public:
    LostRead(const Profile& quad, const char* name, Loss loss)
        : m_name(name),
          m_device(quad, sim::Entry::Version, loss)
    {
        m_tool.put_file(QStringLiteral("device.txt"), test_data("quad_device.txt"));
        m_run = m_tool.start(QStringList{QStringLiteral("-s"), m_device.port_path()} +
                             words("-B 0708 -r out.hex"));
    }

    const char* name() const { return m_name; }

    bool has_ended()
    {
        m_used = std::max(m_used, processor_seconds(m_run->process()));
        return m_run->has_ended();
    }

    double processor_time() const { return m_used; }

    ToolResult result() { return m_run->result(); }

private:
    const char* m_name;
    ToolRun m_tool;
    LostDevice m_device;
    std::unique_ptr<RunningTool> m_run;
    double m_used = 0;
};

class ToolVanishedPort : public testing::Test
{
protected:
    void add(const char* name, Loss loss)
    {
        m_reads.push_back(std::make_unique<LostRead>(m_table.choose(0x0708), name, loss));
    }

    /// Looks at them again and again as long as any of them runs.
    bool all_have_ended()
    {
        return std::count_if(m_reads.begin(), m_reads.end(),
                             [](auto& read) { return !read->has_ended(); }) == 0;
    }

    std::vector<std::unique_ptr<LostRead>> m_reads;

private:
    sim::DeviceTable m_table{QStringLiteral(APP_TEST_DATA "/quad_device.txt")};
};

} // namespace

// The system keeps reporting a port that is gone; a tool that listened to it would be busy all the
// time that it waits. These runs need a few hundredths of a second.
TEST_F(ToolVanishedPort, IsWaitedForWithoutLoad)
{
    using When = Loss::Moment;
    add("with a request on it", {Loss::Of::Line, When::Unheard, 2});
    add("before the answer", {Loss::Of::Line, When::Undone, 2});
    add("within the answer", {Loss::Of::Line, When::HalfAnswered, 2});
    add("after silence", {Loss::Of::Line, When::Repeated, 2});
    ASSERT_TRUE(wait_until([this] { return all_have_ended(); }));
    for (const auto& read : m_reads) {
        SCOPED_TRACE(read->name());
        EXPECT_EQ(read->result(),
                  exited(1, "Version set to 0x0708 successfully!" + given_up_on_silence() +
                                "read() at 00000060 could not be performed\n"
                                "Failed to read memory, aborting...\n"));
        EXPECT_GT(read->processor_time(), 0);
        EXPECT_LT(read->processor_time(), seconds_of_waiting / 8);
    }
}
