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

/// The cost of erasing, writing and reading all of a device once. The device's own time, retries,
/// the entry procedure and the closing second are extra.
struct OperationCosts {
    Cost erase; ///< all flash, -e
    Cost write; ///< every row of flash and EEPROM, -w of a full image
    Cost read;  ///< the same, -r
};

/// Nothing when a figure of the profile keeps an operation from running at all.
std::optional<OperationCosts> costs_of(const Profile& profile);

} // namespace inspect
