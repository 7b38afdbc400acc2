#include "sim/line/Alarm.h"
#include "tests/sim/Milliseconds.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

using namespace test;
using sim::Alarm;

namespace
{

class SimAlarm : public testing::Test
{
protected:
    SimAlarm()
    {
        QObject::connect(&alarm, &Alarm::went_off, [this] {
            ++times;
            last_ns = Alarm::now_ns();
        });
    }

    Alarm alarm;
    int times = 0;
    qint64 last_ns = 0;
};

} // namespace

TEST_F(SimAlarm, GoesOffOnceAndNeverEarly)
{
    const qint64 time = Alarm::now_ns() + 3 * ms;
    alarm.set(time);
    ASSERT_TRUE(wait_until([this] { return times > 0; }));
    EXPECT_GE(last_ns, time);
    Alarm other;
    bool passed = false;
    QObject::connect(&other, &Alarm::went_off, [&passed] { passed = true; });
    other.set(Alarm::now_ns() + ms);
    ASSERT_TRUE(wait_until([&passed] { return passed; }));
    EXPECT_EQ(times, 1);
}

TEST_F(SimAlarm, GoesOffOnceAndNeverEarlyWhenItIsToBeExact)
{
    for (const qint64 wait : {20 * ms, ms / 10, qint64{0}, -ms}) {
        times = 0;
        const qint64 time = Alarm::now_ns() + wait;
        alarm.set_exactly(time);
        ASSERT_TRUE(wait_until([this] { return times > 0; })) << wait;
        EXPECT_GE(last_ns, time) << wait;
        EXPECT_EQ(times, 1) << wait;
    }
}

TEST_F(SimAlarm, GoesOffAtOnceForATimeThatIsPast)
{
    for (const qint64 time : {qint64{0}, qint64{-5}, Alarm::now_ns()}) {
        times = 0;
        alarm.set(time);
        EXPECT_TRUE(wait_until([this] { return times == 1; })) << time;
    }
}

TEST_F(SimAlarm, GoesOffAtTheTimeSetLast)
{
    alarm.set(Alarm::now_ns() + ms);
    const qint64 later = Alarm::now_ns() + 20 * ms;
    alarm.set(later);
    ASSERT_TRUE(wait_until([this] { return times > 0; }));
    EXPECT_GE(last_ns, later);
}

TEST_F(SimAlarm, StaysQuietWhenStopped)
{
    alarm.set(Alarm::now_ns() + 2 * ms);
    alarm.stop();
    Alarm other;
    bool passed = false;
    QObject::connect(&other, &Alarm::went_off, [&passed] { passed = true; });
    other.set(Alarm::now_ns() + 10 * ms);
    ASSERT_TRUE(wait_until([&passed] { return passed; }));
    EXPECT_EQ(times, 0);
}
