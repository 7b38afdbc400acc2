#include "sim/line/Alarm.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <sys/timerfd.h>
#include <system_error>
#include <unistd.h>

namespace sim
{

namespace
{

constexpr qint64 ns_per_second = 1000000000;
/// Longer than a system that is not busy takes to wake a sleeper.
constexpr qint64 awake_ns = 150000;

int open_timer()
{
    const int descriptor = ::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    if (descriptor < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot create a timer");
    }
    return descriptor;
}

} // namespace

Alarm::Alarm() : m_descriptor(open_timer()), m_notifier(m_descriptor.get(), QSocketNotifier::Read)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &Alarm::take);
}

qint64 Alarm::now_ns()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * ns_per_second + now.tv_nsec;
}

void Alarm::set(qint64 time_ns)
{
    m_awake_until_ns = 0;
    arm(time_ns);
}

void Alarm::set_exactly(qint64 time_ns)
{
    m_awake_until_ns = time_ns;
    arm(time_ns - awake_ns);
}

void Alarm::arm(qint64 time_ns)
{
    // All zeros would disarm the timer instead of firing it at once.
    const qint64 time = std::max<qint64>(time_ns, 1);
    itimerspec setting{};
    setting.it_value.tv_sec = time / ns_per_second;
    setting.it_value.tv_nsec = time % ns_per_second;
    ::timerfd_settime(m_descriptor.get(), TFD_TIMER_ABSTIME, &setting, nullptr);
}

void Alarm::stop()
{
    const itimerspec never{};
    ::timerfd_settime(m_descriptor.get(), 0, &never, nullptr);
}

void Alarm::take()
{
    quint64 times = 0;
    if (::read(m_descriptor.get(), &times, sizeof times) == sizeof times) {
        while (now_ns() < m_awake_until_ns) {
        }
        Q_EMIT went_off();
    }
}

} // namespace sim
