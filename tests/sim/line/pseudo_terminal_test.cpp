#include "sim/line/PortLock.h"
#include "sim/line/PseudoTerminal.h"
#include "tests/sim/HostPort.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <fcntl.h>
#include <memory>
#include <sys/ioctl.h>

using namespace test;
using sim::Descriptor;
using sim::has_port_lock;
using sim::port_lock_folders;
using sim::port_lock_name;
using sim::PseudoTerminal;

namespace
{

/// Bytes of every value, so that no terminal setting could leave them as they are by chance.
QByteArray pattern(int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i * 7 + i / 256);
    }
    return bytes;
}

class SimPseudoTerminal : public testing::Test
{
protected:
    SimPseudoTerminal()
    {
        QObject::connect(&terminal, &PseudoTerminal::received, &terminal,
                         [this](const QByteArray& bytes, unsigned int baud) {
                             heard.append(bytes);
                             last_baud = baud;
                         });
    }

    bool wait_for_heard(int count)
    {
        return wait_until([this, count] { return heard.size() >= count; });
    }

    PseudoTerminal terminal;
    QByteArray heard;
    unsigned int last_baud = 0;
};

} // namespace

TEST_F(SimPseudoTerminal, CarriesEveryByteValueBothWays)
{
    HostPort host(terminal.path());
    host.send(pattern(256));
    ASSERT_TRUE(wait_for_heard(256));
    EXPECT_EQ(heard, pattern(256));
    terminal.write(pattern(256));
    EXPECT_EQ(host.receive(256), pattern(256));
}

TEST_F(SimPseudoTerminal, SeesTheRateThatTheHostSets)
{
    HostPort host(terminal.path());
    // The last two are outside the list of standard rates.
    for (const int baud : {9600, 19200, 57600, 115200, 460800, 250000, 12345}) {
        host.set_baud(baud);
        EXPECT_EQ(terminal.host_baud(), static_cast<unsigned int>(baud));
    }
}

TEST_F(SimPseudoTerminal, ReportsTheRateWithTheBytes)
{
    HostPort host(terminal.path(), 115200);
    host.send("x");
    ASSERT_TRUE(wait_for_heard(1));
    EXPECT_EQ(last_baud, 115200U);
}

TEST_F(SimPseudoTerminal, IsRawForAHostThatSetsNothing)
{
    const Descriptor plain(::open(terminal.path().toLocal8Bit().constData(), O_RDWR | O_NOCTTY));
    ASSERT_TRUE(plain.is_open());
    ASSERT_EQ(::write(plain.get(), "\r\x03\x04\n", 4), 4);
    ASSERT_TRUE(wait_for_heard(4));
    EXPECT_EQ(heard, QByteArray("\r\x03\x04\n"));
}

TEST_F(SimPseudoTerminal, OutlivesAHostThatClosesAndReopens)
{
    HostPort host(terminal.path());
    for (int round = 1; round <= 3; ++round) {
        host.close();
        host.open(9600);
        host.send("x");
        ASSERT_TRUE(wait_for_heard(round));
    }
    EXPECT_TRUE(terminal.is_plugged_in());
    terminal.write("y");
    EXPECT_EQ(host.receive(1), "y");
}

TEST_F(SimPseudoTerminal, LiftsTheClaimOfAHostThatMightBeKilled)
{
    const Descriptor host(::open(terminal.path().toLocal8Bit().constData(), O_RDWR | O_NOCTTY));
    ASSERT_EQ(::ioctl(host.get(), TIOCEXCL), 0);
    ASSERT_EQ(::write(host.get(), "x", 1), 1);
    ASSERT_TRUE(wait_for_heard(1));
    int claimed = -1;
    ASSERT_EQ(::ioctl(host.get(), TIOCGEXCL, &claimed), 0);
    EXPECT_EQ(claimed, 0);
}

TEST_F(SimPseudoTerminal, LiftsTheClaimOfAHostThatDiedWithoutAWord)
{
    const QByteArray path = terminal.path().toLocal8Bit();
    const Descriptor observer(::open(path.constData(), O_RDWR | O_NOCTTY));
    Descriptor host(::open(path.constData(), O_RDWR | O_NOCTTY));
    ASSERT_EQ(::ioctl(host.get(), TIOCEXCL), 0);
    host.close();
    EXPECT_TRUE(wait_until([&observer] {
        int claimed = -1;
        return ::ioctl(observer.get(), TIOCGEXCL, &claimed) == 0 && claimed == 0;
    }));
}

TEST_F(SimPseudoTerminal, LetsTheHostWaitWhileItDoesNotListen)
{
    HostPort host(terminal.path());
    terminal.set_listening(false);
    host.send("x");
    terminal.write("y");
    host.receive(1);
    EXPECT_EQ(heard, "");
    terminal.set_listening(true);
    EXPECT_TRUE(wait_for_heard(1));
}

TEST_F(SimPseudoTerminal, KeepsWhatTheTerminalHasNoRoomFor)
{
    const QByteArray plenty = pattern(1 << 20);
    HostPort host(terminal.path());
    terminal.write(plenty.left(1 << 19));
    terminal.write(plenty.mid(1 << 19));
    EXPECT_TRUE(terminal.host_has_unread());
    EXPECT_EQ(host.receive(plenty.size()), plenty);
    EXPECT_FALSE(terminal.host_has_unread());
}

TEST_F(SimPseudoTerminal, KnowsWhetherTheHostHasReadEverything)
{
    HostPort host(terminal.path());
    EXPECT_FALSE(terminal.host_has_unread());
    terminal.write("x");
    host.receive(1);
    EXPECT_FALSE(terminal.host_has_unread());
}

TEST_F(SimPseudoTerminal, TakesThePortAwayWhenItIsUnplugged)
{
    HostPort host(terminal.path());
    EXPECT_TRUE(QFile::exists(terminal.path()));
    terminal.unplug();
    EXPECT_FALSE(terminal.is_plugged_in());
    EXPECT_EQ(terminal.host_baud(), 0U);
    EXPECT_FALSE(terminal.host_has_unread());
    EXPECT_FALSE(QFile::exists(terminal.path()));
    EXPECT_TRUE(wait_until([&host] { return host.port().error() != QSerialPort::NoError; }));
}

TEST_F(SimPseudoTerminal, DropsWhatIsWrittenAfterItIsUnplugged)
{
    terminal.unplug();
    terminal.write("x");
    terminal.unplug();
    EXPECT_FALSE(terminal.host_has_unread());
}

TEST(SimPseudoTerminals, AreAsManyAsOneWants)
{
    const PseudoTerminal one;
    const PseudoTerminal other;
    EXPECT_NE(one.path(), other.path());
}

TEST_F(SimPseudoTerminal, KnowsTheLockThatAHostPutsOnItsPort)
{
    EXPECT_FALSE(has_port_lock(terminal.path()));
    HostPort host(terminal.path());
    EXPECT_TRUE(has_port_lock(terminal.path()));
    host.close();
    EXPECT_FALSE(has_port_lock(terminal.path()));
}

namespace
{

/// A lock file with these contents for a port that no process has open.
class LockFile
{
public:
    explicit LockFile(const QString& port_path)
    {
        const QStringList folders = port_lock_folders();
        const auto writable =
            std::find_if(folders.begin(), folders.end(),
                         [](const QString& folder) { return QFileInfo(folder).isWritable(); });
        EXPECT_NE(writable, folders.end());
        m_file.setFileName(*writable + QLatin1Char('/') + port_lock_name(port_path));
    }

    ~LockFile() { EXPECT_TRUE(m_file.remove()); }

    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;
    LockFile(LockFile&&) = delete;
    LockFile& operator=(LockFile&&) = delete;

    void write(const QByteArray& content)
    {
        EXPECT_TRUE(m_file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        m_file.write(content);
        m_file.close();
    }

private:
    QFile m_file;
};

} // namespace

TEST(SimPseudoTerminals, PassOverAPortThatIsStillLocked)
{
    auto terminal = std::make_unique<PseudoTerminal>();
    const QString path = terminal->path();
    LockFile lock(path);
    lock.write(QByteArray::number(QCoreApplication::applicationPid()) + '\n');
    terminal.reset();
    // The system gives the lowest number that is free, which is the one just given back.
    terminal = std::make_unique<PseudoTerminal>();
    EXPECT_NE(terminal->path(), path);
}

TEST_F(SimPseudoTerminal, DoesNotMindTheLockOfADeadProgram)
{
    LockFile lock(terminal.path());
    lock.write("2147483647\ntool\nhost\n"); // not a possible process number
    EXPECT_FALSE(has_port_lock(terminal.path()));
    lock.write(QByteArray::number(QCoreApplication::applicationPid()) + "\ntool\nhost\n");
    EXPECT_TRUE(has_port_lock(terminal.path()));
    for (const char* unreadable : {"", "tool\n", "0\n", "-1\n"}) {
        lock.write(unreadable);
        EXPECT_TRUE(has_port_lock(terminal.path())) << unreadable;
    }
}
