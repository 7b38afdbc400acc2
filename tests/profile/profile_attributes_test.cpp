#include "profile/MemoryAttributes.h"
#include "profile/Profile.h"
#include "tests/support/RowName.h"

#include <gtest/gtest.h>

using namespace test;

namespace
{

// Made before main(), in no order relative to the library's own sources.
const QString name_asked_before_main = Profile::attr_to_string(Profile::max_baud);

struct NamedAttr {
    int value;
    const char* key;
};

constexpr NamedAttr named_attrs[] = {
    {0, "bootloader_version"},
    {1, "max_baud"},
    {2, "device_name"},
    {3, "flash_end_address_words"},
    {4, "flash_end_address_bytes"},
    {5, "bootloader_start_address"},
    {6, "bootloader_end_address"},
    {7, "flash_page_size"},
    {8, "flash_row_size"},
    {9, "flash_word_size"},
    {10, "flash_words_per_address"},
    {11, "flash_block_size"},
    {12, "flash_filler_word"},
    {13, "flash_filler_word_size"},
    {14, "eeprom_start_address"},
    {15, "eeprom_end_address"},
    {16, "eeprom_word_size"},
    {17, "eeprom_words_per_address"},
    {18, "eeprom_row_size"},
    {19, "eeprom_block_size"},
    {20, "eeprom_filler_word"},
    {21, "eeprom_filler_word_size"},
    {22, "eeprom_max_size"},
    {23, "flash_unencrypted_start_address"},
    {24, "flash_unencrypted_end_address"},
    {25, "_enum_size"},
};

class AttrName : public testing::TestWithParam<NamedAttr>
{
};

TEST_P(AttrName, IsFoundByItsKey)
{
    EXPECT_EQ(Profile::string_to_attr(QLatin1String(GetParam().key)), GetParam().value);
}

TEST_P(AttrName, ReadsWithBlanksForUnderscores)
{
    QString expected = QLatin1String(GetParam().key);
    expected.replace(QLatin1Char('_'), QLatin1Char(' '));
    EXPECT_EQ(Profile::attr_to_string(static_cast<Profile::Attr>(GetParam().value)), expected);
}

INSTANTIATE_TEST_SUITE_P(Table, AttrName, testing::ValuesIn(named_attrs),
                         [](const auto& row) { return std::string(row.param.key); });

struct WrongKey {
    const char* name;
    QString key;
};

class AttrNameUnknown : public testing::TestWithParam<WrongKey>
{
};

TEST_P(AttrNameUnknown, IsMinusOne)
{
    EXPECT_EQ(Profile::string_to_attr(GetParam().key), -1);
}

INSTANTIATE_TEST_SUITE_P(, AttrNameUnknown,
                         testing::Values(WrongKey{"Blanks", QStringLiteral("max baud")},
                                         WrongKey{"UpperCase", QStringLiteral("MAX_BAUD")},
                                         WrongKey{"Scoped", QStringLiteral("Profile::max_baud")},
                                         WrongKey{"ScopedByEnum", QStringLiteral("Attr::max_baud")},
                                         WrongKey{"Empty", QString()},
                                         WrongKey{"BlankBefore", QStringLiteral(" max_baud")},
                                         WrongKey{"Prefix", QStringLiteral("max_bau")},
                                         WrongKey{"Longer", QStringLiteral("max_baudx")},
                                         WrongKey{"NulAfter", QString::fromUtf8("max_baud\0x", 10)},
                                         WrongKey{"NotLatin1", QStringLiteral("max_ba\u0433d")}),
                         row_name);

TEST(AttrNames, AreReadyBeforeMain)
{
    EXPECT_EQ(name_asked_before_main, QLatin1String("max baud"));
}

TEST(AttrNames, AreEmptyBeyondTheEnumeration)
{
    for (const int value : {-1, 26, 1000}) {
        EXPECT_EQ(Profile::attr_to_string(static_cast<Profile::Attr>(value)), QString()) << value;
    }
}

TEST(AttrNames, BelongToTheMetaEnumeration)
{
    EXPECT_STREQ(meta_attr.name(), "Attr");
    EXPECT_STREQ(meta_attr.scope(), "Profile");
    EXPECT_EQ(meta_attr.keyCount(), 26);
}

TEST(MemoryAttributeTables, NameFlashThenEeprom)
{
    EXPECT_EQ(ATTR_MEMORY_WORD_SIZE, (MemoryAttributes{Profile::Attr{9}, Profile::Attr{16}}));
    EXPECT_EQ(ATTR_WORDS_PER_ADDRESS, (MemoryAttributes{Profile::Attr{10}, Profile::Attr{17}}));
    EXPECT_EQ(ATTR_MEMORY_BLOCK_SIZE, (MemoryAttributes{Profile::Attr{11}, Profile::Attr{19}}));
    EXPECT_EQ(ATTR_MEMORY_ROW_SIZE, (MemoryAttributes{Profile::Attr{8}, Profile::Attr{18}}));
    EXPECT_EQ(ATTR_MEMORY_PAGE_SIZE, (MemoryAttributes{Profile::Attr{7}, Profile::Attr{25}}));
    EXPECT_EQ(ATTR_MEMORY_MIN_ADDR, (MemoryAttributes{Profile::Attr{6}, Profile::Attr{14}}));
    EXPECT_EQ(ATTR_MEMORY_MAX_ADDR, (MemoryAttributes{Profile::Attr{4}, Profile::Attr{15}}));
    EXPECT_EQ(ATTR_FILLER_WORD, (MemoryAttributes{Profile::Attr{12}, Profile::Attr{20}}));
    EXPECT_EQ(ATTR_FILLER_WORD_SIZE, (MemoryAttributes{Profile::Attr{13}, Profile::Attr{21}}));
}

} // namespace
