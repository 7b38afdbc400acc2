#include "process/SignalEvents.h"
#include "tests/support/Waiting.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

#include <csignal>
#include <optional>

using namespace test;

namespace
{

using Platform::SignalEvents;

/// Puts the signal settings back whatever a test leaves.
class Signals : public testing::Test
{
protected:
    Signals() : m_hang_up(std::signal(SIGHUP, SIG_DFL)) // under nohup it is ignored
    {
        ::pthread_sigmask(SIG_SETMASK, nullptr, &m_mask);
    }

    ~Signals() override
    {
        ::pthread_sigmask(SIG_SETMASK, &m_mask, nullptr);
        (void)std::signal(SIGHUP, m_hang_up);
    }

    static bool is_blocked(int signal)
    {
        sigset_t signals;
        ::pthread_sigmask(SIG_SETMASK, nullptr, &signals);
        return sigismember(&signals, signal) == 1;
    }

private:
    void (*m_hang_up)(int);
    sigset_t m_mask{};
};

TEST_F(Signals, BecomeEvents)
{
    SignalEvents events;
    QSignalSpy stops(&events, &SignalEvents::stop_requested);
    QSignalSpy sizes(&events, &SignalEvents::terminal_resized);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        stops.clear();
        ASSERT_EQ(::raise(signal), 0);
        EXPECT_TRUE(wait_until([&] { return stops.count() == 1; })) << signal;
    }
    EXPECT_EQ(sizes.count(), 0);
    ASSERT_EQ(::raise(SIGWINCH), 0);
    EXPECT_TRUE(wait_until([&] { return sizes.count() == 1; }));
    EXPECT_EQ(stops.count(), 1);
}

TEST_F(Signals, ThatAreIgnoredStaySo)
{
    (void)std::signal(SIGHUP, SIG_IGN);
    const SignalEvents events;
    EXPECT_FALSE(is_blocked(SIGHUP));
    EXPECT_TRUE(is_blocked(SIGINT));
}

TEST_F(Signals, EndTheProcessAgainLaterButNotThoseThatHaveCome)
{
    std::optional<SignalEvents> events;
    events.emplace();
    EXPECT_TRUE(is_blocked(SIGTERM));
    ASSERT_EQ(::raise(SIGTERM), 0);
    events.reset();
    EXPECT_FALSE(is_blocked(SIGTERM));
}

} // namespace
