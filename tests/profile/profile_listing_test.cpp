#include "profile/Profile.h"
#include "tests/profile/ProfileFields.h"

#include <gtest/gtest.h>

using namespace test;

namespace
{

QStringList lines(const char* text)
{
    return QString::fromUtf8(text).split(QLatin1Char('|'));
}

TEST(ProfileListing, ShowsEveryStoredValueThenTheDivisors)
{
    EXPECT_EQ(Profile(example_fields()).get_details(),
              lines("bootloader version = 0x102|"
                    "max baud = 0x1C200|"
                    "device name = DEV-A128|"
                    "flash end address words = 0x10000|"
                    "flash end address bytes = 0x20000|"
                    "bootloader start address = 0x0|"
                    "bootloader end address = 0x800|"
                    "flash page size = 0x400|"
                    "flash row size = 0x100|"
                    "flash word size = 0x2|"
                    "flash words per address = 0x1|"
                    "flash block size = 0x100|"
                    "flash filler word = 0xFFFF|"
                    "flash filler word size = 0x2|"
                    "eeprom start address = 0xF00000|"
                    "eeprom end address = 0xF00400|"
                    "eeprom word size = 0x1|"
                    "eeprom words per address = 0x1|"
                    "eeprom row size = 0x20|"
                    "eeprom block size = 0x20|"
                    "eeprom filler word = 0xFF|"
                    "eeprom filler word size = 0x1|"
                    "eeprom max size = 0x400|"
                    "flash unencrypted start address = 0x800|"
                    "flash unencrypted end address = 0x10000|"
                    "\n|"
                    "flash address divisor = 2|"
                    "eeprom address divisor = 1"));
}

TEST(ProfileListing, LeavesOutTheDivisorOfAMissingMemory)
{
    QStringList fields = fields_without_eeprom();
    EXPECT_EQ(Profile(fields).get_details().mid(25), lines("\n|flash address divisor = 2"));
    fields = with_field(fields, Profile::flash_word_size, "0");
    EXPECT_EQ(Profile(fields).get_details().mid(25), lines("\n"));
    fields = with_field(example_fields(), Profile::flash_word_size, "0");
    EXPECT_EQ(Profile(fields).get_details().mid(25), lines("\n|eeprom address divisor = 1"));
}

TEST(ProfileListing, ShowsDivisorsInDecimalAndNamesAsTheyStand)
{
    QStringList fields = with_field(example_fields(), Profile::flash_word_size, "12");
    fields = with_field(fields, Profile::device_name, "DEV_%1 x");
    const QStringList details = Profile(fields).get_details();
    EXPECT_EQ(details.at(2), QLatin1String("device name = DEV_%1 x"));
    EXPECT_EQ(details.at(26), QLatin1String("flash address divisor = 12"));
}

} // namespace
