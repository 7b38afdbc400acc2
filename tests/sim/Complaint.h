#pragma once

#include "sim/device/Error.h"

#include <string>

namespace test
{

/// The message of the error that `action` throws.
template <typename Action>
std::string complaint_of(Action action)
{
    try {
        action();
    } catch (const sim::Error& error) {
        return error.what();
    }
    return "nothing thrown";
}

} // namespace test
