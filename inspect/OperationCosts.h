#pragma once

#include "profile/Profile.h"

#include <QtGlobal>

#include <optional>

namespace inspect
{

/// What an operation costs on the line.
struct Cost {
    quint64 commands = 0;
    quint64 bytes = 0; ///< both ways, frames included
};

/// What it costs to go through all of a device once. Times of the device itself, retries, the entry
/// procedure and the closing second come on top.
struct OperationCosts {
    Cost erase; ///< all flash, -e
    Cost write; ///< every row of flash and EEPROM, -w of a full image
    Cost read;  ///< the same, -r
};

/// Nothing when a figure of the profile keeps an operation from running at all.
std::optional<OperationCosts> costs_of(const Profile& profile);

} // namespace inspect
