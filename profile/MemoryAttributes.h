#pragma once

#include "profile/Profile.h"

#include <array>

/// Which attribute answers a question about a kind of memory: the entry at MEMORY_FLASH, then the
/// one at MEMORY_EEPROM. `_enum_size` stands for "no such attribute".
using MemoryAttributes = std::array<Profile::Attr, 2>;

inline constexpr MemoryAttributes ATTR_MEMORY_WORD_SIZE{Profile::flash_word_size,
                                                        Profile::eeprom_word_size};
inline constexpr MemoryAttributes ATTR_WORDS_PER_ADDRESS{Profile::flash_words_per_address,
                                                         Profile::eeprom_words_per_address};
inline constexpr MemoryAttributes ATTR_MEMORY_BLOCK_SIZE{Profile::flash_block_size,
                                                         Profile::eeprom_block_size};
inline constexpr MemoryAttributes ATTR_MEMORY_ROW_SIZE{Profile::flash_row_size,
                                                       Profile::eeprom_row_size};
/// EEPROM is written without erasing pages first and has none.
inline constexpr MemoryAttributes ATTR_MEMORY_PAGE_SIZE{Profile::flash_page_size,
                                                        Profile::_enum_size};
/// The bootloader sits at the bottom of flash; user flash begins where it ends.
inline constexpr MemoryAttributes ATTR_MEMORY_MIN_ADDR{Profile::bootloader_end_address,
                                                       Profile::eeprom_start_address};
inline constexpr MemoryAttributes ATTR_MEMORY_MAX_ADDR{Profile::flash_end_address_bytes,
                                                       Profile::eeprom_end_address};
inline constexpr MemoryAttributes ATTR_FILLER_WORD{Profile::flash_filler_word,
                                                   Profile::eeprom_filler_word};
inline constexpr MemoryAttributes ATTR_FILLER_WORD_SIZE{Profile::flash_filler_word_size,
                                                        Profile::eeprom_filler_word_size};
