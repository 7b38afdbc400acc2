#pragma once

#include "tests/support/Replies.h"

#include <set>
#include <string>

namespace test
{

// Wrong answers that make an operation fail, none of which costs a timeout.

/// Attempts at a read.
constexpr std::size_t read_attempts = 40;

/// From the command with this sequence number on, every answer is one that reads do not accept.
inline sim::SimulatedDevice::ReplyFilter unreadable_from(unsigned int sequence)
{
    return [sequence](const sim::Command& command, const QByteArray& answer) {
        return command.sequence >= sequence ? frame_of("00") : Reply{{answer}};
    };
}

/// The message when every attempt at a read got such an answer.
inline std::string gave_up_reading()
{
    std::string faults;
    for (std::size_t i = 0; i < read_attempts; ++i) {
        faults += "response was not prefixed with the command but was supposed to be\n";
    }
    return "sig_error giving up after having made 40 attempts, with errors (" + faults + ')';
}

/// A valid frame with the device's answer, whose last data byte is changed.
inline Reply damaged(const QByteArray& answer)
{
    QByteArray payload = sim::FrameReceiver().receive(answer).at(0);
    payload[payload.size() - 1] = static_cast<char>(~payload.at(payload.size() - 1));
    return frame_of(payload);
}

/// The answers to the commands of these sequence numbers are damaged.
inline sim::SimulatedDevice::ReplyFilter damaging(std::set<unsigned int> sequences)
{
    return
        [sequences = std::move(sequences)](const sim::Command& command, const QByteArray& answer) {
            return sequences.count(command.sequence) > 0 ? damaged(answer) : Reply{{answer}};
        };
}

/// A command to write or erase is answered with the acknowledgement of no command at all.
inline sim::SimulatedDevice::ReplyFilter wrong_acknowledgement_of(unsigned int sequence)
{
    return to_command(sequence, frame_of("06"));
}

} // namespace test
