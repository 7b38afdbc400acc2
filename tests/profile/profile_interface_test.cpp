#include "profile/MemoryAttributes.h"
#include "profile/Profiles.h"
#include "tests/support/Interface.h"

#include <gtest/gtest.h>

#include <type_traits>

using namespace test;

// The public members that other programs are written against: names, parameters in their order,
// types and constness. What has changed here does not compile.

namespace
{

using U32 = unsigned int;
using ByMemory = U32 (Profile::*)(MemoryType) const;
using ByAddress = bool (Profile::*)(U32) const;

// Profile
static_assert(std::is_base_of_v<QObject, Profile>);
static_assert(std::is_constructible_v<Profile, QStringList>);
static_assert(is_exactly<QString Profile::*>(&Profile::name));
static_assert(is_exactly<std::array<U32, 25> Profile::*>(&Profile::attributes));
static_assert(is_exactly<QSet<U32> Profile::*>(&Profile::boundaries));
static_assert(is_exactly<Profile::Attr (*)(QString)>(&Profile::string_to_attr));
static_assert(is_exactly<QString (*)(Profile::Attr)>(&Profile::attr_to_string));
static_assert(is_exactly<QStringList (Profile::*)() const>(&Profile::get_details));
static_assert(is_exactly<const QMetaEnum*>(&meta_attr));

// Queries about a kind of memory.
static_assert(is_exactly<ByMemory>(&Profile::get_word_size));
static_assert(is_exactly<ByMemory>(&Profile::get_words_per_address));
static_assert(is_exactly<ByMemory>(&Profile::get_block_size));
static_assert(is_exactly<ByMemory>(&Profile::get_row_size));
static_assert(is_exactly<ByMemory>(&Profile::get_page_size));
static_assert(is_exactly<ByMemory>(&Profile::get_min_address));
static_assert(is_exactly<ByMemory>(&Profile::get_max_address));
static_assert(is_exactly<ByMemory>(&Profile::get_filler_word));
static_assert(is_exactly<ByMemory>(&Profile::get_filler_word_size));
static_assert(is_exactly<ByMemory>(&Profile::get_address_divisor));
static_assert(is_exactly<bool (Profile::*)(MemoryType) const>(&Profile::has_memory_type));
static_assert(is_exactly<U32 (Profile::*)() const>(&Profile::get_endianness));

// Queries about an address.
static_assert(is_exactly<ByAddress>(&Profile::is_flash));
static_assert(is_exactly<ByAddress>(&Profile::is_eeprom));
static_assert(is_exactly<ByAddress>(&Profile::is_bootloader));
static_assert(is_exactly<ByAddress>(&Profile::is_unencrypted_flash));
static_assert(is_exactly<ByAddress>(&Profile::is_encrypted_flash));
static_assert(is_exactly<MemoryType (Profile::*)(U32) const>(&Profile::get_memory_type));
static_assert(is_exactly<U32 (Profile::*)(U32) const>(&Profile::byte_to_word_address));

// The attributes of these queries.
static_assert(ATTR_MEMORY_WORD_SIZE[0] == 9 && ATTR_MEMORY_WORD_SIZE[1] == 16);
static_assert(ATTR_WORDS_PER_ADDRESS[0] == 10 && ATTR_WORDS_PER_ADDRESS[1] == 17);
static_assert(ATTR_MEMORY_BLOCK_SIZE[0] == 11 && ATTR_MEMORY_BLOCK_SIZE[1] == 19);
static_assert(ATTR_MEMORY_ROW_SIZE[0] == 8 && ATTR_MEMORY_ROW_SIZE[1] == 18);
static_assert(ATTR_MEMORY_PAGE_SIZE[0] == 7 && ATTR_MEMORY_PAGE_SIZE[1] == 25);
static_assert(ATTR_MEMORY_MIN_ADDR[0] == 6 && ATTR_MEMORY_MIN_ADDR[1] == 14);
static_assert(ATTR_MEMORY_MAX_ADDR[0] == 4 && ATTR_MEMORY_MAX_ADDR[1] == 15);
static_assert(ATTR_FILLER_WORD[0] == 12 && ATTR_FILLER_WORD[1] == 20);
static_assert(ATTR_FILLER_WORD_SIZE[0] == 13 && ATTR_FILLER_WORD_SIZE[1] == 21);

static_assert(MEMORY_FLASH == 0 && MEMORY_EEPROM == 1 && MEMORY_OTHER == 2);
static_assert(std::is_convertible_v<MemoryType, int>, "a plain enumeration");

// Profiles
static_assert(std::is_base_of_v<QObject, Profiles>);
static_assert(!std::is_default_constructible_v<Profiles>, "there is one only");
static_assert(is_exactly<Profiles& (*)()>(&Profiles::get_instance));
static_assert(is_exactly<QStringList (*)()>(&Profiles::dump));
static_assert(is_exactly<bool (*)(unsigned short)>(&Profiles::has_profile));
static_assert(is_exactly<Profile* (*)(unsigned short)>(&Profiles::get_profile));
static_assert(is_exactly<U32 (*)()>(&Profiles::get_lowest_baud));

} // namespace

TEST(ProfileInterface, HasNoSignalsAndSlots)
{
    for (const QMetaObject* meta : {&Profile::staticMetaObject, &Profiles::staticMetaObject}) {
        EXPECT_EQ(meta->methodCount(), meta->methodOffset()) << meta->className();
    }
}

TEST(ProfileInterface, NamesItsAttributesByTheEnumeration)
{
    EXPECT_STREQ(meta_attr.name(), "Attr");
    EXPECT_EQ(meta_attr.keyCount(), 26);
    EXPECT_EQ(meta_attr.value(25), Profile::_enum_size);
    EXPECT_STREQ(meta_attr.key(24), "flash_unencrypted_end_address");
}
