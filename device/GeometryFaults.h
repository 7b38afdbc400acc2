#pragma once

#include "device/AreaFilter.h"
#include "device/Span.h"
#include "profile/MemoryAttributes.h"
#include "profile/Profile.h"

#include <QString>

#include <optional>

/// Figures of a profile that no command can be built from: an operation that would divide by zero,
/// never end, hold more bytes than fit in memory or count beyond the 32 bits of an address is
/// refused before it sends anything, with a message that names the attribute and its value. A table
/// row with such figures stays usable for everything that does not need them.
///
/// Addresses and sizes are in bytes.
namespace geometry
{

/// The message, or nothing when the figures work.
using Fault = std::optional<QString>;

/// The longest row, word or request that is held in memory.
constexpr unsigned int longest_buffer = 0x3FFFFF00;

/// Byte addresses cannot be turned into word addresses.
Fault address_fault(const Profile& profile, MemoryType type);
/// The row size is 0, or a row or word cannot be held.
Fault row_fault(const Profile& profile, MemoryType type);
/// The block size is 0.
Fault block_fault(const Profile& profile, MemoryType type);
/// The page size of flash is 0.
Fault page_fault(const Profile& profile);
/// The page size of flash comes to 0 when it is counted in address units.
Fault page_step_fault(const Profile& profile);
/// `last`, the highest number that an operation counts to on this memory in steps of the attribute
/// in `unit`, is no 32-bit number.
Fault wrap_fault(const Profile& profile, MemoryType type, const MemoryAttributes& unit,
                 quint64 last);

/// Words that cannot be addressed, a row that cannot be held or a block without a size.
Fault read_fault(const Profile& profile, MemoryType type);
/// So many bytes, all of them in this memory, cannot be held.
Fault length_fault(const Profile& profile, MemoryType type, unsigned int num_bytes);
/// A request that cannot be held, one whose last block would end beyond all
/// addresses, and one in EEPROM whose first block begins before EEPROM does and so has no word
/// address. The request itself lies in the memory, and read_fault() finds nothing.
Fault request_fault(const Profile& profile, MemoryType type, unsigned int address,
                    unsigned int num_bytes);

/// How far apart a whole-flash erase takes its pages to be: the table's figure is in address units
/// there, and in bytes everywhere else. 0 where the table's figures give none.
unsigned int page_step(const Profile& profile);

/// Reading `length` bytes from each address of `rows`, `step` bytes apart, that `areas` lets
/// through.
Fault rows_read_fault(const AreaFilter& areas, MemoryType type, Span rows, unsigned int step,
                      unsigned int length);
/// Writing the rows of `rows` that `areas` lets through.
Fault rows_write_fault(const AreaFilter& areas, MemoryType type, Span rows);
/// Erasing the pages of `pages`, `step` bytes apart and not 0, that `areas` lets through.
Fault pages_erase_fault(const AreaFilter& areas, Span pages, unsigned int step);

} // namespace geometry
