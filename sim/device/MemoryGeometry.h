#pragma once

#include <cstdint>

class Profile;

namespace sim
{

struct Command;

/// A kind of memory from the device's side.
struct MemoryGeometry {
    std::uint64_t start = 0; ///< byte address that word address 0 stands for
    std::uint64_t word_size = 0;
    std::uint64_t bytes_per_address = 0; ///< 0 if the table's figures define none
    std::uint64_t row_size = 0;

    bool is_usable() const { return bytes_per_address != 0; }

    std::uint64_t byte_address(std::uint64_t word_address) const
    {
        return start + word_address * bytes_per_address;
    }
};

/// Calculated from the raw table values, so that the device shares no arithmetic with the host.
MemoryGeometry geometry_of(const Profile& profile, bool eeprom);

/// The byte address of a read, write or erase.
std::uint64_t byte_address_of(const Profile& profile, const Command& command);

/// The rows of a write, a partial one included.
unsigned int rows_of(const Profile& profile, const Command& command);

} // namespace sim
