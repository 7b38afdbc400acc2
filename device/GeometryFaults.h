#pragma once

#include "profile/Profile.h"

#include <QString>

#include <optional>

/// Figures of a profile that commands cannot be built from: an operation that would divide by zero
/// or never end is refused with a message that names the attribute and its value. A table row with
/// such figures stays usable for everything that does not need them.
namespace geometry
{

/// The message, or nothing when the figures work.
using Fault = std::optional<QString>;

/// Byte addresses cannot be turned into word addresses.
Fault address_fault(const Profile& profile, MemoryType type);
/// As above, or a row holds no whole word or is absurdly long.
Fault row_fault(const Profile& profile, MemoryType type);
/// As above, or a block holds no whole word or more than the whole memory.
Fault block_fault(const Profile& profile, MemoryType type);
/// The block that holds `address` begins before EEPROM does and so has no word address.
Fault block_start_fault(const Profile& profile, MemoryType type, unsigned int address);
/// Flash addresses do not work, or a page has no size or one larger than flash.
Fault page_fault(const Profile& profile);

} // namespace geometry
