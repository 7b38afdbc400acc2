// The questions that memory operations ask a profile. Every table that reaches us may have been
// edited by hand, so none of the answers divides by zero or looks outside a table.

#include "profile/MemoryAttributes.h"
#include "profile/Profile.h"

namespace
{

unsigned int attribute_of(const Profile& profile, const MemoryAttributes& table, MemoryType t)
{
    const auto kind = static_cast<std::size_t>(t);
    if (kind >= table.size() || table.at(kind) == Profile::_enum_size) {
        return 0;
    }
    return profile.attributes.at(static_cast<std::size_t>(table.at(kind)));
}

unsigned int quotient_or_zero(unsigned int dividend, unsigned int divisor)
{
    return divisor == 0 ? 0 : dividend / divisor;
}

bool is_within(unsigned int a, unsigned int first, unsigned int end)
{
    return first <= a && a < end;
}

} // namespace

unsigned int Profile::get_word_size(MemoryType t) const
{
    return attribute_of(*this, ATTR_MEMORY_WORD_SIZE, t);
}

unsigned int Profile::get_words_per_address(MemoryType t) const
{
    return attribute_of(*this, ATTR_WORDS_PER_ADDRESS, t);
}

unsigned int Profile::get_block_size(MemoryType t) const
{
    return attribute_of(*this, ATTR_MEMORY_BLOCK_SIZE, t);
}

unsigned int Profile::get_row_size(MemoryType t) const
{
    return attribute_of(*this, ATTR_MEMORY_ROW_SIZE, t);
}

unsigned int Profile::get_page_size(MemoryType t) const
{
    return attribute_of(*this, ATTR_MEMORY_PAGE_SIZE, t);
}

unsigned int Profile::get_min_address(MemoryType t) const
{
    return attribute_of(*this, ATTR_MEMORY_MIN_ADDR, t);
}

unsigned int Profile::get_max_address(MemoryType t) const
{
    return attribute_of(*this, ATTR_MEMORY_MAX_ADDR, t);
}

unsigned int Profile::get_filler_word(MemoryType t) const
{
    return attribute_of(*this, ATTR_FILLER_WORD, t);
}

unsigned int Profile::get_filler_word_size(MemoryType t) const
{
    return attribute_of(*this, ATTR_FILLER_WORD_SIZE, t);
}

bool Profile::has_memory_type(MemoryType t) const
{
    return get_word_size(t) != 0;
}

unsigned int Profile::get_address_divisor(MemoryType t) const
{
    return quotient_or_zero(get_word_size(t), get_words_per_address(t));
}

unsigned int Profile::get_endianness() const
{
    return 1; // the whole family takes the most significant byte first
}

bool Profile::is_flash(unsigned int a) const
{
    return is_within(a, get_min_address(MEMORY_FLASH), get_max_address(MEMORY_FLASH));
}

bool Profile::is_eeprom(unsigned int a) const
{
    return is_within(a, get_min_address(MEMORY_EEPROM), get_max_address(MEMORY_EEPROM));
}

MemoryType Profile::get_memory_type(unsigned int a) const
{
    if (is_flash(a)) {
        return MEMORY_FLASH;
    }
    return is_eeprom(a) ? MEMORY_EEPROM : MEMORY_OTHER;
}

bool Profile::is_bootloader(unsigned int a) const
{
    return !is_flash(a) && !is_eeprom(a);
}

bool Profile::is_unencrypted_flash(unsigned int a) const
{
    return is_flash(a) && is_within(a, attributes[flash_unencrypted_start_address],
                                    attributes[flash_unencrypted_end_address]);
}

bool Profile::is_encrypted_flash(unsigned int a) const
{
    return is_flash(a) && !is_unencrypted_flash(a);
}

unsigned int Profile::byte_to_word_address(unsigned int a) const
{
    const MemoryType t = get_memory_type(a);
    const unsigned int offset = t == MEMORY_EEPROM ? a - get_min_address(MEMORY_EEPROM) : a;
    return quotient_or_zero(offset, get_address_divisor(t));
}
