#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/ProfileTable.h"

#include <QCoreApplication>
#include <QSocketNotifier>
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

using namespace test;

// A port may report an error and be none the worse for it.

namespace
{

/// Holds a port besides its user and, once, takes what has come in from under the user's nose:
/// after the user has been notified and before it reads.
class Thief : public QObject
{
public:
    explicit Thief(const QString& port)
        : m_name(port),
          m_port(::open(port.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK))
    {
        QCoreApplication::instance()->installEventFilter(this);
    }

    ~Thief() override { ::close(m_port); }

    Thief(const Thief&) = delete;
    Thief& operator=(const Thief&) = delete;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        std::array<char, 4096> loot{};
        if (event->type() == QEvent::SockAct && m_stolen == 0 && is_user_of_port(watched)) {
            m_stolen = qMax<ssize_t>(0, ::read(m_port, loot.data(), loot.size()));
        }
        return false;
    }

    ssize_t stolen() const { return m_stolen; }

private:
    bool is_user_of_port(QObject* watched) const
    {
        std::array<char, 64> name{};
        const auto* notifier = qobject_cast<QSocketNotifier*>(watched);
        return notifier != nullptr && notifier->type() == QSocketNotifier::Read &&
               ::ttyname_r(static_cast<int>(notifier->socket()), name.data(), name.size()) == 0 &&
               m_name == QString::fromLocal8Bit(name.data());
    }

    QString m_name;
    int m_port;
    ssize_t m_stolen = 0;
};

/// A pseudo-terminal whose port exists and cannot be opened until it is unlocked.
class LockedPort
{
public:
    LockedPort() : m_master(::posix_openpt(O_RDWR | O_NOCTTY)) {}

    ~LockedPort() { ::close(m_master); }

    LockedPort(const LockedPort&) = delete;
    LockedPort& operator=(const LockedPort&) = delete;

    QString path() const
    {
        std::array<char, 64> name{};
        EXPECT_EQ(::ptsname_r(m_master, name.data(), name.size()), 0);
        return QString::fromLocal8Bit(name.data());
    }

    void unlock() const { EXPECT_EQ(::unlockpt(m_master), 0); }

private:
    int m_master;
};

} // namespace

TEST(LineWithStolenBytes, CostsNoMoreThanTheAttempt)
{
    sim::SimulatedDevice simulated(profile_named("sample"), {sim::Entry::Version});
    const Thief thief(simulated.port_path());
    ZarnSerialDevice device(simulated.port_path(), nullptr, 9600, false, version_named("sample"));
    ASSERT_TRUE(device.open_port());
    for (int i = 0; i < 3; ++i) {
        QByteArray response;
        EXPECT_TRUE(device.send_and_receive(bytes("00 02"), response, 2, 3, 300));
    }

    EXPECT_GT(thief.stolen(), 0);
}

TEST(PortOpeningError, DoesNotCloseThePortThatWasOpenedAfterIt)
{
    const LockedPort locked;
    ZarnSerialDevice device(locked.path(), nullptr, 9600, false, 0);
    const PortWatch port(locked.path());
    ASSERT_FALSE(device.open_port());
    locked.unlock();
    ASSERT_TRUE(device.open_port());
    EXPECT_FALSE(device.read_until_terminated_or_timed_out(1));
    EXPECT_TRUE(port.is_open());
}
