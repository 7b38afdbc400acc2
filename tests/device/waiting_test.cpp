#include "tests/device/DeviceOperations.h"
#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"

#include <QTimer>
#include <gtest/gtest.h>

using namespace test;

namespace
{

/// Fires when its time has passed and the event loop runs.
class Alarm
{
public:
    explicit Alarm(int after_ms)
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setSingleShot(true);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { m_gone_off = true; });
        m_timer.start(after_ms);
    }

    bool gone_off() const { return m_gone_off; }

private:
    QTimer m_timer;
    bool m_gone_off = false;
};

class LostAnswers : public testing::TestWithParam<NamedOperation>
{
};

} // namespace

TEST_P(LostAnswers, CostThreeTenthsOfASecond)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(first({no_reply()}));
    const Alarm just_before(290);
    const Alarm long_after(5000);
    EXPECT_TRUE(GetParam().run(line.device));
    EXPECT_TRUE(just_before.gone_off());
    EXPECT_FALSE(long_after.gone_off());
    EXPECT_EQ(line.sent().size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(, LostAnswers, testing::ValuesIn(single_commands), row_name);
