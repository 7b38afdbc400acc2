#include "profile/Profile.h"
#include "tests/profile/ProfileFields.h"

#include <gtest/gtest.h>

using namespace test;

namespace
{

TEST(ProfileScaling, BootloaderAreaIsGivenInWordsAndStoredInBytes)
{
    QStringList fields = with_field(example_fields(), Profile::bootloader_start_address, "0x400");
    fields = with_field(fields, Profile::bootloader_end_address, "0x600");
    const Profile profile(fields);
    EXPECT_EQ(profile.attributes[Profile::bootloader_start_address], 0x800U);
    EXPECT_EQ(profile.attributes[Profile::bootloader_end_address], 0xC00U);
}

TEST(ProfileScaling, FlashEndAndUnencryptedAreaAreStoredAsGiven)
{
    const Profile profile(example_fields());
    EXPECT_EQ(profile.attributes[Profile::flash_end_address_words], 0x10000U);
    EXPECT_EQ(profile.attributes[Profile::flash_end_address_bytes], 0x20000U);
    EXPECT_EQ(profile.attributes[Profile::flash_unencrypted_start_address], 0x800U);
    EXPECT_EQ(profile.attributes[Profile::flash_unencrypted_end_address], 0x10000U);
}

TEST(ProfileScaling, EepromEndIsScaledAndItsStartIsNot)
{
    QStringList fields = with_field(example_fields(), Profile::eeprom_start_address, "0x1000");
    fields = with_field(fields, Profile::eeprom_end_address, "0x900");
    fields = with_field(fields, Profile::eeprom_word_size, "4");
    fields = with_field(fields, Profile::eeprom_words_per_address, "2");
    const Profile profile(fields);
    EXPECT_EQ(profile.attributes[Profile::eeprom_start_address], 0x1000U);
    EXPECT_EQ(profile.attributes[Profile::eeprom_end_address], 0x1200U);
}

TEST(ProfileScaling, WithoutFlashTheBootloaderAreaStaysAsGiven)
{
    const Profile profile(with_field(example_fields(), Profile::flash_word_size, "0"));
    EXPECT_EQ(profile.attributes[Profile::bootloader_end_address], 0x400U);
}

TEST(ProfileScaling, WithoutEepromItsEndStaysAsGiven)
{
    QStringList fields = with_field(example_fields(), Profile::eeprom_word_size, "0");
    fields = with_field(fields, Profile::eeprom_words_per_address, "0");
    EXPECT_EQ(Profile(fields).attributes[Profile::eeprom_end_address], 0xF00400U);
}

TEST(ProfileScaling, DivisorDropsTheRemainder)
{
    QStringList fields = with_field(example_fields(), Profile::flash_word_size, "7");
    fields = with_field(fields, Profile::flash_words_per_address, "2");
    EXPECT_EQ(Profile(fields).attributes[Profile::bootloader_end_address], 0xC00U);
}

TEST(ProfileScaling, MoreWordsPerAddressThanBytesGivesZeroAddresses)
{
    const Profile profile(with_field(example_fields(), Profile::flash_words_per_address, "4"));
    EXPECT_EQ(profile.attributes[Profile::bootloader_end_address], 0U);
    EXPECT_EQ(profile.attributes[Profile::flash_end_address_bytes], 0x20000U);
}

TEST(ProfileScaling, ProductsWrapAt32Bits)
{
    const Profile profile(
        with_field(example_fields(), Profile::bootloader_end_address, "0x80000001"));
    EXPECT_EQ(profile.attributes[Profile::bootloader_end_address], 2U);
}

TEST(ProfileBoundaries, HoldTheSevenScaledRegionEnds)
{
    QStringList fields = with_field(example_fields(), Profile::bootloader_start_address, "0x100");
    fields = with_field(fields, Profile::flash_unencrypted_start_address, "0x900");
    fields = with_field(fields, Profile::eeprom_word_size, "2");
    EXPECT_EQ(Profile(fields).boundaries,
              (QSet<unsigned int>{0x20000, 0xF00000, 0x1E00800, 0x200, 0x800, 0x900, 0x10000}));
}

TEST(ProfileBoundaries, DuplicatesCollapse)
{
    EXPECT_EQ(Profile(fields_without_eeprom()).boundaries,
              (QSet<unsigned int>{0x10000, 0x0, 0x400}));
}

} // namespace
