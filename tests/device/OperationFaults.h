#pragma once

#include "tests/support/Replies.h"

#include <string>

// Ways in which a device spoils an operation, none of which takes the time of a wait.

/// A read is tried this often.
constexpr std::size_t read_attempts = 40;

/// From the command of this sequence number on every answer is one that reads don't accept.
inline sim::SimulatedDevice::ReplyFilter unreadable_from(unsigned int sequence)
{
    return [sequence](const sim::Command& command, const QByteArray& answer) {
        return command.sequence >= sequence ? frame_of("00") : Reply{{answer}};
    };
}

/// What is said when a read got such an answer every time.
inline std::string gave_up_reading()
{
    std::string faults;
    for (std::size_t i = 0; i < read_attempts; ++i) {
        faults += "response was not prefixed with the command but was supposed to be\n";
    }
    return "sig_error giving up after having made 40 attempts, with errors (" + faults + ')';
}

/// A command to write or erase is answered with the acknowledgement of none.
inline sim::SimulatedDevice::ReplyFilter wrong_acknowledgement_of(unsigned int sequence)
{
    return to_command(sequence, frame_of("01"));
}
