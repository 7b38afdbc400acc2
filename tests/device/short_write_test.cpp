#include "tests/support/Bytes.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Replies.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

using namespace test;
using testing::Contains;
using testing::ElementsAre;

// An open port takes whatever it is given. But the number of bytes that it took is counted in 16
// bits, so a frame that is longer looks like one that was cut short.

namespace
{

/// A command whose frame is `length` bytes long: its bytes and their checksum need no escape.
QByteArray command_for_frame_of(int length)
{
    QByteArray command(length - 4, '\0');
    command[0] = '\x06';
    return command;
}

} // namespace

TEST(ShortWrite, OnAnOpenPortIsNoFailure)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    const DebugMessages messages;
    const QByteArray command = command_for_frame_of(0x10004);
    QByteArray response;
    EXPECT_TRUE(line.device.send_and_receive(command, response, 0, 1, 0));
    EXPECT_THAT(messages.texts(), ElementsAre(QStringLiteral("TX error, only wrote  4  bytes!")));
    EXPECT_EQ(line.recorder.lines().size(), 1U) << "the frame was not written whole";
    EXPECT_TRUE(wait_until([&] { return line.simulated.bytes_from_host() == 0x10004; }));
}

TEST(ShortWrite, IsFollowedByTheWaitForAnAnswer)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    line.simulated.set_reply_filter(always(frame_of(bytes("06 00") + QByteArray(1, '\x07'))));
    const DebugMessages messages;
    QByteArray response;
    // Cut short or not, what the device answers counts; here it never repeats so long a command.
    EXPECT_FALSE(line.device.send_and_receive(command_for_frame_of(0x10004), response, 1, 2, 2000));
    EXPECT_THAT(line.recorder.lines(), Contains("sig_encoded_response 55 55 06 00 07 F3 04"));
}

TEST(ShortWrite, IsNotSeenInALongestFrame)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    const DebugMessages messages;
    QByteArray response;
    EXPECT_TRUE(line.device.send_and_receive(command_for_frame_of(0xFFFF), response, 0, 1, 0));
    EXPECT_THAT(messages.texts(), testing::IsEmpty());
    EXPECT_EQ(line.recorder.lines().size(), 2U);
}
