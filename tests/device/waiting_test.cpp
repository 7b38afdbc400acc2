#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"

#include <QTimer>
#include <gtest/gtest.h>

#include <functional>

using namespace test;

namespace
{

/// Goes off when the time has come and the event loop runs.
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

struct Command {
    const char* name;
    std::function<bool(ZarnSerialDevice&)> send;
};

const Command commands[] = {
    {"Version",
     [](ZarnSerialDevice& device) {
         unsigned short version = 0;
         return device.request_bootloader_version(&version);
     }},
    {"Read",
     [](ZarnSerialDevice& device) {
         QByteArray data;
         return device.read_memory(0x1000, 1, data);
     }},
    {"Write",
     [](ZarnSerialDevice& device) {
         return device.write_memory(0x1000, counting(64));
     }},
    {"Erase",
     [](ZarnSerialDevice& device) {
         return device.erase_flash(0x1000, 1);
     }},
};

class LostAnswers : public testing::TestWithParam<Command>
{
};

} // namespace

TEST_P(LostAnswers, CostThreeTenthsOfASecond)
{
    DeviceOnLine line("sample");
    line.simulated.set_reply_filter(first({no_reply()}));
    const Alarm just_before(290);
    const Alarm long_after(5000);
    EXPECT_TRUE(GetParam().send(line.device));
    EXPECT_TRUE(just_before.gone_off());
    EXPECT_FALSE(long_after.gone_off());
    EXPECT_EQ(line.sent().size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(, LostAnswers, testing::ValuesIn(commands), row_name);
