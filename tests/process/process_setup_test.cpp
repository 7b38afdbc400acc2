#include "process/ProcessSetup.h"

#include <gtest/gtest.h>

#include <csignal>

namespace
{

using Handler = void (*)(int);

/// Signal settings as somebody's parent may leave them.
class ProcessSetup : public testing::Test
{
protected:
    ProcessSetup() { ::pthread_sigmask(SIG_SETMASK, nullptr, &m_mask); }

    ~ProcessSetup() override
    {
        ::pthread_sigmask(SIG_SETMASK, &m_mask, nullptr);
        for (const int signal : {SIGCHLD, SIGPIPE, SIGXFSZ}) {
            (void)std::signal(signal, SIG_DFL);
        }
    }

    static void block(int signal)
    {
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, signal);
        ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &signals, nullptr), 0);
    }

    static bool is_blocked(int signal)
    {
        sigset_t signals;
        ::pthread_sigmask(SIG_SETMASK, nullptr, &signals);
        return sigismember(&signals, signal) == 1;
    }

    static Handler handler_of(int signal)
    {
        const Handler handler = std::signal(signal, SIG_DFL);
        (void)std::signal(signal, handler);
        return handler;
    }

private:
    sigset_t m_mask{};
};

TEST_F(ProcessSetup, LetsTheEndOfChildrenBeNoticed)
{
    ASSERT_NE(std::signal(SIGCHLD, SIG_IGN), SIG_ERR);
    block(SIGCHLD);
    Platform::set_up_signals();
    EXPECT_EQ(handler_of(SIGCHLD), SIG_DFL);
    EXPECT_FALSE(is_blocked(SIGCHLD));
}

TEST_F(ProcessSetup, LetsNoImpossibleWriteEndTheProcess)
{
    Platform::set_up_signals();
    EXPECT_EQ(handler_of(SIGPIPE), SIG_IGN);
    EXPECT_EQ(handler_of(SIGXFSZ), SIG_IGN);
}

TEST_F(ProcessSetup, IsUndoneForAChild)
{
    Platform::set_up_signals();
    block(SIGINT);
    Platform::restore_signals();
    EXPECT_EQ(handler_of(SIGPIPE), SIG_DFL);
    EXPECT_EQ(handler_of(SIGXFSZ), SIG_DFL);
    EXPECT_FALSE(is_blocked(SIGINT));
}

} // namespace
