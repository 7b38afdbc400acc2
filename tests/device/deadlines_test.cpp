#include "tests/device/DeviceOperations.h"
#include "tests/device/EntryLine.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

#include <QElapsedTimer>
#include <gtest/gtest.h>

#include <algorithm>

using namespace test;

// How long the tool waits for a device, by the clock of the device. A busy machine makes a wait
// longer and never shorter, so the shortest of several counts. It must be close to the deadline:
// half or twice as long is wrong.

namespace
{

constexpr qint64 ns_per_ms = 1000000;

/// What a device receives, and when.
class HeardTimes
{
public:
    explicit HeardTimes(sim::SimulatedDevice& device)
    {
        m_clock.start();
        device.set_request_filter([this](const QByteArray& bytes) {
            m_heard.push_back({bytes, m_clock.nsecsElapsed()});
            return bytes;
        });
    }

    /// The shortest time, in milliseconds, from the arrival of `bytes` to that of `next`, when
    /// nothing arrived between them; that of a day if they never arrived in this order.
    double shortest_gap(const char* bytes, const char* next) const
    {
        return shortest_gap_where([&](const Arrival& one, const Arrival& other) {
            return hex(one.bytes) == bytes && hex(other.bytes) == next;
        });
    }

    /// The shortest time, in milliseconds, between two arrivals of anything.
    double shortest_gap() const
    {
        return shortest_gap_where([](const Arrival&, const Arrival&) { return true; });
    }

private:
    struct Arrival {
        QByteArray bytes;
        qint64 ns;
    };

    template <typename Counts>
    double shortest_gap_where(Counts counts) const
    {
        qint64 shortest = 86400000 * ns_per_ms;
        for (std::size_t i = 1; i < m_heard.size(); ++i) {
            if (counts(m_heard[i - 1], m_heard[i])) {
                shortest = std::min(shortest, m_heard[i].ns - m_heard[i - 1].ns);
            }
        }
        return static_cast<double>(shortest) / ns_per_ms;
    }

    QElapsedTimer m_clock;
    std::vector<Arrival> m_heard;
};

/// Timers of the event loop may be 5 % early.
void expect_near(double measured_ms, double due_ms)
{
    EXPECT_GT(measured_ms, 0.9 * due_ms);
    EXPECT_LT(measured_ms, 1.5 * due_ms);
}

class SilenceBeforeARetry : public testing::TestWithParam<NamedOperation>
{
};

const char* const probe = "55";
const char* const version_request = "55 55 00 02 FE 04";

} // namespace

TEST_P(SilenceBeforeARetry, LastsThreeTenthsOfASecond)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(first(std::vector<Reply>(4, no_reply())));
    const HeardTimes heard(line.simulated);
    EXPECT_TRUE(GetParam().run(line.device));
    EXPECT_EQ(line.sent().size(), 5U);
    expect_near(heard.shortest_gap(), 300);
}

INSTANTIATE_TEST_SUITE_P(Deadline, SilenceBeforeARetry, testing::ValuesIn(single_commands),
                         row_name);

TEST(EntryDeadline, IsATenthOfASecondForAVersionRequestAndAFifthForAProbe)
{
    EntryLine line("sample", sim::Entry::Version);
    line.simulated.set_reply_filter(first(std::vector<Reply>(5, no_reply())));
    const HeardTimes heard(line.simulated);
    EXPECT_TRUE(line.enter());
    expect_near(heard.shortest_gap(probe, probe), 200);
    expect_near(heard.shortest_gap(probe, version_request), 200);
    expect_near(heard.shortest_gap(version_request, version_request), 100);
    expect_near(heard.shortest_gap(version_request, probe), 100);
}

TEST(EntryDeadline, IsASecondForTheBootloaderToSettle)
{
    double shortest_ms = 86400000;
    for (int i = 0; i < 3; ++i) {
        EntryLine line("sample", sim::Entry::Probe);
        QElapsedTimer since_probe;
        QObject::connect(&line.simulated, &sim::SimulatedDevice::command_received, &line.device,
                         [&] { since_probe.start(); });
        ASSERT_TRUE(line.enter());
        shortest_ms = std::min(shortest_ms, static_cast<double>(since_probe.elapsed()));
    }
    expect_near(shortest_ms, 1000);
}
