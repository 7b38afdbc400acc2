#pragma once

#include "sim/device/FrameCodec.h"
#include "sim/device/SimulatedDevice.h"
#include "tests/support/Bytes.h"

#include <utility>
#include <vector>

namespace test
{

// What a simulated device puts on the line instead of its answers.

using Reply = std::vector<sim::Delivery>;

inline Reply no_reply()
{
    return {};
}

/// A valid frame with this payload.
inline Reply frame_of(const QByteArray& payload)
{
    return {{sim::make_frame(payload)}};
}

inline Reply frame_of(const char* digits)
{
    return frame_of(bytes(digits));
}

/// These bytes, without a frame.
inline Reply raw(const char* digits)
{
    return {{bytes(digits)}};
}

/// The same reply to every command.
inline sim::SimulatedDevice::ReplyFilter always(Reply reply)
{
    return [reply = std::move(reply)](const sim::Command&, const QByteArray&) {
        return reply;
    };
}

/// To each command the next of `replies`, and from then on the device's own answers.
inline sim::SimulatedDevice::ReplyFilter first(std::vector<Reply> replies)
{
    return [replies = std::move(replies)](const sim::Command& command, const QByteArray& answer) {
        return command.sequence < replies.size() ? replies[command.sequence] : Reply{{answer}};
    };
}

/// `reply` to the command of this sequence number, its own answers to all others.
inline sim::SimulatedDevice::ReplyFilter to_command(unsigned int sequence, Reply reply)
{
    return [sequence, reply = std::move(reply)](const sim::Command& command,
                                                const QByteArray& answer) {
        return command.sequence == sequence ? reply : Reply{{answer}};
    };
}

/// Acknowledges every write and erase, even where the device has no such memory.
inline sim::SimulatedDevice::ReplyFilter acknowledge_everything()
{
    return [](const sim::Command& command, const QByteArray&) {
        return frame_of(command.payload.left(1));
    };
}

} // namespace test
