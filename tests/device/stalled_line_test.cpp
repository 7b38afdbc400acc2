#include "device/ZarnSerialDevice.h"
#include "sim/PortLock.h"
#include "tests/support/SignalRecorder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <pty.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

using testing::StartsWith;

namespace
{

/// A line whose far end takes nothing: what is sent stays in its buffer until that is full.
class StalledLine
{
public:
    /// A number that is free again may still be locked by the host that had it before; such lines
    /// are held until the end.
    StalledLine()
    {
        do {
            open_another();
        } while (sim::has_port_lock(port_path()));
    }

    ~StalledLine()
    {
        for (const int descriptor : m_descriptors) {
            ::close(descriptor);
        }
    }

    StalledLine(const StalledLine&) = delete;
    StalledLine& operator=(const StalledLine&) = delete;

    QString port_path() const
    {
        std::array<char, 64> name{};
        EXPECT_EQ(::ttyname_r(m_descriptors.back(), name.data(), name.size()), 0);
        return QString::fromLocal8Bit(name.data());
    }

private:
    void open_another()
    {
        termios raw{};
        ::cfmakeraw(&raw);
        int master = -1;
        int slave = -1;
        ASSERT_EQ(::openpty(&master, &slave, nullptr, &raw, nullptr), 0);
        m_descriptors.insert(m_descriptors.end(), {master, slave});
    }

    std::vector<int> m_descriptors;
};

} // namespace

// A device that is busy for a while and takes no bytes is not an adapter that was pulled out: the
// port stays open, and each attempt is only one that went without an answer.
TEST(StalledLine, StaysOpenWhenItsBufferIsFull)
{
    const StalledLine line;
    ZarnSerialDevice device(line.port_path(), nullptr, 115200, false, 0);
    const SignalRecorder recorder(device);
    const QByteArray command(30000, '\x02'); // a few of these are more than any line holds
    QByteArray response;
    ASSERT_TRUE(device.open_port());
    EXPECT_FALSE(device.send_and_receive(command, response, 1, 6, 20));
    EXPECT_EQ(std::count_if(recorder.lines().begin(), recorder.lines().end(),
                            [](const std::string& text) {
                                return text.rfind("sig_encoded_command", 0) == 0;
                            }),
              6);
    EXPECT_THAT(recorder.lines().back(),
                StartsWith("sig_error giving up after having made 6 attempts"));
}
