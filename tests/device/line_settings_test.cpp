#include "tests/device/EntryLine.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

using namespace test;

// A pseudo-terminal always has 8 data bits and no parity, whatever is requested. So this records
// what the serial port library requests from the system, which is the same for any adapter.

namespace
{

std::vector<termios>& requested_settings()
{
    static std::vector<termios> settings;
    return settings;
}

} // namespace

/// Replaces the system's function.
extern "C" int tcsetattr(int descriptor, int actions, const termios* settings) noexcept
{
    requested_settings().push_back(*settings);
    static const auto system =
        reinterpret_cast<decltype(&tcsetattr)>(::dlsym(RTLD_NEXT, "tcsetattr"));
    return system(descriptor, actions, settings);
}

namespace
{

void expect_8n1_without_flow_control(const termios& settings)
{
    EXPECT_EQ(settings.c_cflag & CSIZE, static_cast<tcflag_t>(CS8)) << "data bits";
    EXPECT_EQ(settings.c_cflag & PARENB, 0U) << "parity";
    EXPECT_EQ(settings.c_cflag & CSTOPB, 0U) << "a second stop bit";
    EXPECT_EQ(settings.c_cflag & CRTSCTS, 0U) << "flow control by wires";
    EXPECT_EQ(settings.c_iflag & (IXON | IXOFF | IXANY), 0U) << "flow control by characters";
    EXPECT_EQ(settings.c_iflag & (ICRNL | INLCR | IGNCR | ISTRIP), 0U) << "changes on the way in";
    EXPECT_EQ(settings.c_oflag & OPOST, 0U) << "changes on the way out";
    EXPECT_EQ(settings.c_lflag & (ICANON | ECHO | ISIG), 0U) << "a terminal for people";
}

/// In every request: a change of the rate starts from the settings that the pseudo-terminal
/// accepted.
void expect_8n1_without_flow_control(const std::vector<termios>& requests)
{
    EXPECT_FALSE(requests.empty());
    for (const termios& settings : requests) {
        expect_8n1_without_flow_control(settings);
    }
}

/// Leaves the port with settings that another program might have used.
void leave_other_settings(const sim::SimulatedDevice& device)
{
    const QByteArray path = device.port_path().toLocal8Bit();
    const int port = ::open(path.constData(), O_RDWR | O_NOCTTY);
    ASSERT_GE(port, 0);
    termios settings{};
    ASSERT_EQ(::tcgetattr(port, &settings), 0);
    settings.c_cflag &= ~static_cast<tcflag_t>(CSIZE);
    settings.c_cflag |= CS7 | PARENB | CSTOPB | CRTSCTS;
    settings.c_iflag |= IXON | IXOFF | ICRNL;
    settings.c_oflag |= OPOST;
    settings.c_lflag |= ICANON;
    ::tcsetattr(port, TCSANOW, &settings); // sets what a pseudo-terminal supports of it
    ::close(port);
    requested_settings().clear();
}

} // namespace

TEST(LineSettings, AreEightDataBitsNoParityOneStopBitAndNoFlowControl)
{
    DeviceOnLine line("sample");
    leave_other_settings(line.simulated);
    ASSERT_TRUE(line.device.open_port());
    expect_8n1_without_flow_control(requested_settings());
}

TEST(LineSettings, StayWhenTheRateChanges)
{
    EntryLine line("sample", sim::Entry::Version);
    leave_other_settings(line.simulated);
    EXPECT_TRUE(line.enter());
    expect_8n1_without_flow_control(requested_settings());
    EXPECT_EQ(line.simulated.host_baud(), 115200U);
}

TEST(LineSettings, AreTheSameWhenThePortIsOpenedAgain)
{
    EntryLine line("sample", sim::Entry::Probe);
    leave_other_settings(line.simulated);
    EXPECT_TRUE(line.enter());
    EXPECT_FALSE(line.port.is_open());
    requested_settings().clear();
    line.device.reset();
    expect_8n1_without_flow_control(requested_settings());
}
