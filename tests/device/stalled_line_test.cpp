#include "device/ZarnSerialDevice.h"
#include "tests/device/StalledLine.h"
#include "tests/support/SignalRecorder.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace test;
using testing::StartsWith;

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
