#pragma once

#include "device/AddressRange.h"
#include "device/AreaFilter.h"
#include "device/Reason.h"
#include "profile/MemoryAttributes.h"
#include "profile/Profile.h"

/// Figures of a profile that no command can be built from: an operation that would divide by zero,
/// never end, hold more bytes than fit in memory or count beyond the 32 bits of an address is
/// refused before it sends anything, with a message that names the attribute and its value. A table
/// row with such figures stays usable for everything that does not need them.
///
/// Addresses and sizes are in bytes.
namespace geometry
{

/// The longest row, word or request that is held in memory.
constexpr unsigned int longest_buffer = 0x3FFFFF00;

/// Byte addresses cannot be turned into word addresses.
Reason check_words(const Profile& profile, MemoryType type);
/// The row size is 0, or a row or word cannot be held.
Reason check_row(const Profile& profile, MemoryType type);
/// The block size is 0.
Reason check_block(const Profile& profile, MemoryType type);
/// The page size of flash is 0.
Reason check_page(const Profile& profile);
/// The page size of flash is 0 when it is counted in address units.
Reason check_page_step(const Profile& profile);
/// `last`, the highest number that an operation counts to on this memory in steps of the attribute
/// in `unit`, is not a 32-bit number.
Reason check_no_wrap(const Profile& profile, MemoryType type, const MemoryAttributes& unit,
                     quint64 last);

/// Words that cannot be addressed, a row that cannot be held or a block without a size.
Reason check_read(const Profile& profile, MemoryType type);
/// So many bytes, all of them in this memory, cannot be held.
Reason check_length(const Profile& profile, MemoryType type, unsigned int num_bytes);
/// The block of EEPROM that holds `address` begins before EEPROM does and so has no word address.
Reason check_block_start(const Profile& profile, MemoryType type, unsigned int address);
/// A request that cannot be held, whose last block would end beyond all addresses, or whose first
/// block fails the check above. The request itself lies in the memory and passes check_read().
Reason check_request(const Profile& profile, MemoryType type, unsigned int address,
                     unsigned int num_bytes);

/// The distance between pages that a whole-flash erase assumes: the table's figure counts address
/// units there, and bytes everywhere else. 0 if the table's figures define none.
unsigned int page_step(const Profile& profile);

/// Reading `length` bytes from each address of `rows`, `step` bytes apart, that `areas` lets
/// through.
Reason check_rows_read(const AreaFilter& areas, MemoryType type, AddressRange rows,
                       unsigned int step, unsigned int length);
/// Writing the rows of `rows` that `areas` lets through.
Reason check_rows_written(const AreaFilter& areas, MemoryType type, AddressRange rows);
/// Erasing the pages of `pages`, `step` bytes apart and not 0, that `areas` lets through.
Reason check_pages_erased(const AreaFilter& areas, AddressRange pages, unsigned int step);

} // namespace geometry
