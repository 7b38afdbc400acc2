#include "profile/Profile.h"
#include "tests/profile/ProfileFields.h"
#include "tests/support/RowName.h"

#include <gtest/gtest.h>

#include <vector>

using namespace test;

namespace
{

struct KindQuery {
    const char* name;
    unsigned int (Profile::*query)(MemoryType) const;
    unsigned int flash;
    unsigned int eeprom;
};

class ProfileKindQuery : public testing::TestWithParam<KindQuery>
{
};

TEST_P(ProfileKindQuery, AnswersForFlashAndEepromAndIsZeroForTheRest)
{
    const Profile profile(example_fields());
    const auto query = GetParam().query;
    EXPECT_EQ((profile.*query)(MEMORY_FLASH), GetParam().flash);
    EXPECT_EQ((profile.*query)(MEMORY_EEPROM), GetParam().eeprom);
    EXPECT_EQ((profile.*query)(MEMORY_OTHER), 0U);
    EXPECT_EQ((profile.*query)(static_cast<MemoryType>(3)), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    , ProfileKindQuery,
    testing::Values(KindQuery{"WordSize", &Profile::get_word_size, 2, 1},
                    KindQuery{"WordsPerAddress", &Profile::get_words_per_address, 1, 1},
                    KindQuery{"BlockSize", &Profile::get_block_size, 0x100, 0x20},
                    KindQuery{"RowSize", &Profile::get_row_size, 0x100, 0x20},
                    KindQuery{"PageSize", &Profile::get_page_size, 0x400, 0},
                    KindQuery{"MinAddress", &Profile::get_min_address, 0x800, 0xF00000},
                    KindQuery{"MaxAddress", &Profile::get_max_address, 0x20000, 0xF00400},
                    KindQuery{"FillerWord", &Profile::get_filler_word, 0xFFFF, 0xFF},
                    KindQuery{"FillerWordSize", &Profile::get_filler_word_size, 2, 1},
                    KindQuery{"AddressDivisor", &Profile::get_address_divisor, 2, 1}),
    row_name);

struct AddressCase {
    const char* name;
    unsigned int address;
    MemoryType kind;
    bool unencrypted;
    unsigned int word_address;
};

class ProfileAddressQuery : public testing::TestWithParam<AddressCase>
{
};

TEST_P(ProfileAddressQuery, PlacesTheAddress)
{
    const Profile profile(example_fields());
    const AddressCase& c = GetParam();
    EXPECT_EQ(profile.get_memory_type(c.address), c.kind);
    EXPECT_EQ(profile.is_flash(c.address), c.kind == MEMORY_FLASH);
    EXPECT_EQ(profile.is_eeprom(c.address), c.kind == MEMORY_EEPROM);
    EXPECT_EQ(profile.is_bootloader(c.address), c.kind == MEMORY_OTHER);
    EXPECT_EQ(profile.is_unencrypted_flash(c.address), c.unencrypted);
    EXPECT_EQ(profile.is_encrypted_flash(c.address), c.kind == MEMORY_FLASH && !c.unencrypted);
    EXPECT_EQ(profile.byte_to_word_address(c.address), c.word_address);
}

INSTANTIATE_TEST_SUITE_P(
    , ProfileAddressQuery,
    testing::Values(AddressCase{"Zero", 0, MEMORY_OTHER, false, 0},
                    AddressCase{"LastOfBootloader", 0x7FF, MEMORY_OTHER, false, 0},
                    AddressCase{"FirstOfFlash", 0x800, MEMORY_FLASH, true, 0x400},
                    AddressCase{"OddByte", 0x1001, MEMORY_FLASH, true, 0x800},
                    AddressCase{"LastUnencrypted", 0xFFFF, MEMORY_FLASH, true, 0x7FFF},
                    AddressCase{"FirstEncrypted", 0x10000, MEMORY_FLASH, false, 0x8000},
                    AddressCase{"LastOfFlash", 0x1FFFF, MEMORY_FLASH, false, 0xFFFF},
                    AddressCase{"FlashEnd", 0x20000, MEMORY_OTHER, false, 0},
                    AddressCase{"BelowEeprom", 0xEFFFFF, MEMORY_OTHER, false, 0},
                    AddressCase{"FirstOfEeprom", 0xF00000, MEMORY_EEPROM, false, 0},
                    AddressCase{"WithinEeprom", 0xF00010, MEMORY_EEPROM, false, 0x10},
                    AddressCase{"LastOfEeprom", 0xF003FF, MEMORY_EEPROM, false, 0x3FF},
                    AddressCase{"EepromEnd", 0xF00400, MEMORY_OTHER, false, 0},
                    AddressCase{"Highest", 0xFFFFFFFF, MEMORY_OTHER, false, 0}),
    row_name);

/// Addresses at which a wrong comparison shows.
std::vector<unsigned int> telling_addresses()
{
    return {0,       1,        0x3FF,      0x400,      0x800,     0x1FFFF,
            0x20000, 0xF00000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
}

TEST(ProfileGeometry, FlashIsTestedBeforeEeprom)
{
    const Profile profile(with_field(example_fields(), Profile::eeprom_start_address, "0x1F000"));
    EXPECT_TRUE(profile.is_eeprom(0x1F000));
    EXPECT_EQ(profile.get_memory_type(0x1F000), MEMORY_FLASH);
    EXPECT_EQ(profile.byte_to_word_address(0x1F000), 0xF800U);
    EXPECT_EQ(profile.get_memory_type(0x20000), MEMORY_EEPROM);
    EXPECT_EQ(profile.byte_to_word_address(0x20000), 0x1000U);
}

TEST(ProfileGeometry, WithoutEepromNoAddressIsEeprom)
{
    const Profile profile(fields_without_eeprom());
    EXPECT_FALSE(profile.has_memory_type(MEMORY_EEPROM));
    EXPECT_TRUE(profile.has_memory_type(MEMORY_FLASH));
    EXPECT_EQ(profile.get_address_divisor(MEMORY_EEPROM), 0U);
    for (const unsigned int a : telling_addresses()) {
        EXPECT_FALSE(profile.is_eeprom(a)) << a;
    }
}

TEST(ProfileGeometry, EmptyFlashHoldsNoAddress)
{
    const QStringList end_at_zero =
        with_field(fields_without_eeprom(), Profile::flash_end_address_bytes, "0");
    const QStringList bootloader_beyond_flash =
        with_field(fields_without_eeprom(), Profile::bootloader_end_address, "0x10001");
    for (const QStringList& fields : {end_at_zero, bootloader_beyond_flash}) {
        const Profile profile(fields);
        for (const unsigned int a : telling_addresses()) {
            EXPECT_EQ(profile.get_memory_type(a), MEMORY_OTHER) << a;
            EXPECT_FALSE(profile.is_encrypted_flash(a)) << a;
            EXPECT_FALSE(profile.is_unencrypted_flash(a)) << a;
        }
    }
}

TEST(ProfileGeometry, UnencryptedAreaEndsAtTheEndsOfFlash)
{
    QStringList fields =
        with_field(example_fields(), Profile::flash_unencrypted_start_address, "0");
    fields = with_field(fields, Profile::flash_unencrypted_end_address, "0xFFFFFFFF");
    const Profile profile(fields);
    EXPECT_FALSE(profile.is_unencrypted_flash(0x7FF));
    EXPECT_TRUE(profile.is_unencrypted_flash(0x800));
    EXPECT_TRUE(profile.is_unencrypted_flash(0x1FFFF));
    EXPECT_FALSE(profile.is_unencrypted_flash(0x20000));
    EXPECT_FALSE(profile.is_unencrypted_flash(0xF00000));
}

TEST(ProfileGeometry, HasNoMemoryOfOtherKind)
{
    const Profile profile(example_fields());
    EXPECT_TRUE(profile.has_memory_type(MEMORY_FLASH));
    EXPECT_TRUE(profile.has_memory_type(MEMORY_EEPROM));
    EXPECT_FALSE(profile.has_memory_type(MEMORY_OTHER));
}

TEST(ProfileGeometry, WordsGoMostSignificantByteFirst)
{
    EXPECT_EQ(Profile(example_fields()).get_endianness(), 1U);
    EXPECT_EQ(Profile(fields_without_eeprom()).get_endianness(), 1U);
}

TEST(ProfileGeometry, ZeroDivisorGivesWordAddressZero)
{
    QStringList fields = with_field(example_fields(), Profile::flash_words_per_address, "3");
    fields = with_field(fields, Profile::eeprom_words_per_address, "2");
    const Profile profile(fields);
    EXPECT_EQ(profile.get_address_divisor(MEMORY_FLASH), 0U);
    EXPECT_EQ(profile.byte_to_word_address(0x1000), 0U);
    EXPECT_EQ(profile.get_address_divisor(MEMORY_EEPROM), 0U);
}

TEST(ProfileGeometry, MemoryWithoutWordsButWithARangeHasWordAddressZero)
{
    const Profile profile(with_field(example_fields(), Profile::eeprom_word_size, "0"));
    EXPECT_EQ(profile.get_memory_type(0xF00010), MEMORY_EEPROM);
    EXPECT_EQ(profile.byte_to_word_address(0xF00010), 0U);
}

TEST(ProfileGeometry, EepromWordAddressesAreDividedAfterTheOffset)
{
    QStringList fields = with_field(example_fields(), Profile::eeprom_start_address, "0x40001");
    fields = with_field(fields, Profile::eeprom_end_address, "0x20800");
    const Profile profile(with_field(fields, Profile::eeprom_word_size, "2"));
    EXPECT_EQ(profile.byte_to_word_address(0x40006), 2U);
}

} // namespace
