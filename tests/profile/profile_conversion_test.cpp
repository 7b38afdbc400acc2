#include "profile/Profile.h"
#include "tests/profile/ProfileFields.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/RowName.h"

#include <QException>
#include <gtest/gtest.h>

#include <array>

using namespace test;

namespace
{

/// That a row of these fields is refused, and which message says so.
void expect_unparsable(const QStringList& fields, Profile::Attr attribute, const QString& value,
                       const QString& device)
{
    const DebugMessages messages;
    EXPECT_THROW(Profile{fields}, QException);
    EXPECT_EQ(
        messages.texts(),
        QStringList{
            QStringLiteral("\"could not parse attr '%1' (value = '%2') for device profile '%3'\"")
                .arg(Profile::attr_to_string(attribute), value, device)});
}

const QString example_name = QStringLiteral("DEV-A128");

struct GoodNumber {
    const char* name;
    const char* field;
    unsigned int value;
};

class ProfileNumber : public testing::TestWithParam<GoodNumber>
{
};

TEST_P(ProfileNumber, Converts)
{
    const DebugMessages messages;
    const Profile profile(with_field(example_fields(), Profile::max_baud, GetParam().field));
    EXPECT_EQ(profile.attributes[Profile::max_baud], GetParam().value);
    EXPECT_EQ(messages.texts(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(
    , ProfileNumber,
    testing::Values(GoodNumber{"Hexadecimal", "0x1C200", 115200},
                    GoodNumber{"HexadecimalOtherCase", "0X1c200", 115200},
                    GoodNumber{"Decimal", "115200", 115200}, GoodNumber{"Binary", "0b101", 5},
                    GoodNumber{"BinaryCapital", "0B101", 5}, GoodNumber{"Octal", "0o17", 15},
                    GoodNumber{"OctalCapital", "0O17", 15},
                    GoodNumber{"LeadingZeroIsDecimal", "017", 17},
                    GoodNumber{"LeadingZeroTenIsTen", "010", 10}, GoodNumber{"Zero", "0", 0},
                    GoodNumber{"ZeroTwice", "00", 0}, GoodNumber{"OneDigit", "7", 7},
                    GoodNumber{"HexadecimalZero", "0x0", 0},
                    GoodNumber{"LongZeros", "0x00000000000000000000001", 1},
                    GoodNumber{"BlanksAround", " 115200 ", 115200},
                    GoodNumber{"Plus", "+115200", 115200},
                    GoodNumber{"BlanksAndPlusAfterAPrefix", "0x +1C200 ", 115200},
                    GoodNumber{"TwoHexadecimalPrefixes", "0x0x12", 0x12},
                    GoodNumber{"LargestDecimal", "4294967295", 4294967295U},
                    GoodNumber{"LargestHexadecimal", "0xFFFFFFFF", 4294967295U}),
    row_name);

struct BadNumber {
    const char* name;
    const char* field;
};

class ProfileFieldError : public testing::TestWithParam<BadNumber>
{
};

TEST_P(ProfileFieldError, IsReportedAndThrown)
{
    expect_unparsable(with_field(example_fields(), Profile::flash_row_size, GetParam().field),
                      Profile::flash_row_size, QString::fromUtf8(GetParam().field), example_name);
}

INSTANTIATE_TEST_SUITE_P(
    , ProfileFieldError,
    testing::Values(BadNumber{"HexadecimalPrefixOnly", "0x"}, BadNumber{"BinaryPrefixOnly", "0b"},
                    BadNumber{"OctalPrefixOnly", "0o"}, BadNumber{"Empty", ""},
                    BadNumber{"OneBeyond32Bits", "4294967296"},
                    BadNumber{"HexadecimalBeyond32Bits", "0x100000000"},
                    BadNumber{"Beyond64Bits", "18446744073709551616"},
                    BadNumber{"WrapsTo1In64Bits", "0x10000000000000001"},
                    BadNumber{"NotADigit", "0x12G4"}, BadNumber{"NotABinaryDigit", "0b102"},
                    BadNumber{"NotAnOctalDigit", "0o18"}, BadNumber{"UnknownPrefix", "0d12"},
                    BadNumber{"HexadecimalWithoutPrefix", "FF"}, BadNumber{"Negative", "-1"},
                    BadNumber{"Fraction", "1.5"}, BadNumber{"Grouped", "115,200"},
                    BadNumber{"BlankWithin", "1 2"}, BadNumber{"BlankBeforeAPrefix", " 0x12"},
                    BadNumber{"PlusBeforeAPrefix", "+0x12"}, BadNumber{"Word", "fast"},
                    BadNumber{"PlaceMarker", "%1%2%3"}),
    row_name);

TEST(ProfileFields, NulInAFieldIsNoDigit)
{
    QStringList fields = example_fields();
    fields[Profile::flash_row_size] = QString::fromUtf8("12\0", 3);
    const DebugMessages messages;
    EXPECT_THROW(Profile{fields}, QException);
    EXPECT_EQ(messages.texts().size(), 1);
}

TEST(ProfileFields, FailureBeforeTheNameShowsNoName)
{
    for (const Profile::Attr a : {Profile::bootloader_version, Profile::max_baud}) {
        expect_unparsable(with_field(example_fields(), a, "x"), a, QStringLiteral("x"), QString());
    }
}

TEST(ProfileFields, FirstOfTwoBadFieldsIsReported)
{
    QStringList fields = with_field(example_fields(), Profile::eeprom_max_size, "late");
    fields = with_field(fields, Profile::flash_page_size, "early");
    expect_unparsable(fields, Profile::flash_page_size, QStringLiteral("early"), example_name);
}

TEST(ProfileFields, NameIsTakenAsItStands)
{
    const Profile profile(with_field(example_fields(), Profile::device_name, "  DEV %1 \xC2\xB5 "));
    EXPECT_EQ(profile.name, QString::fromUtf8("  DEV %1 \xC2\xB5 "));
    EXPECT_EQ(profile.attributes[Profile::device_name], 0U);
}

TEST(ProfileFields, NameWithPlaceMarkersIsReportedAsItStands)
{
    QStringList fields = with_field(example_fields(), Profile::device_name, "%1 %2");
    fields = with_field(fields, Profile::eeprom_row_size, "%3");
    expect_unparsable(fields, Profile::eeprom_row_size, QStringLiteral("%3"),
                      QStringLiteral("%1 %2"));
}

TEST(ProfileFields, FurtherFieldsAreIgnored)
{
    const DebugMessages messages;
    const Profile profile(example_fields() << QStringLiteral("not a number"));
    EXPECT_EQ(profile.attributes, Profile(example_fields()).attributes);
    EXPECT_EQ(messages.texts(), QStringList());
}

TEST(ProfileFields, MissingFieldIsAFieldThatDoesNotConvert)
{
    expect_unparsable(example_fields().mid(0, 24), Profile::flash_unencrypted_end_address,
                      QString(), example_name);
}

TEST(ProfileFields, FieldNGivesAttributeN)
{
    // Word sizes of 0 leave every address unscaled.
    QStringList fields;
    std::array<unsigned int, Profile::_enum_size> expected{};
    for (unsigned int i = 0; i < Profile::_enum_size; ++i) {
        const bool unset = i == Profile::flash_word_size || i == Profile::eeprom_word_size ||
                           i == Profile::device_name;
        expected.at(i) = unset ? 0 : 100 + i;
        fields << QString::number(expected.at(i));
    }
    EXPECT_EQ(Profile(fields).attributes, expected);
}

struct BadDivisor {
    const char* name;
    Profile::Attr attribute;
    const char* field;
};

class ZeroWordsPerAddress : public testing::TestWithParam<BadDivisor>
{
};

TEST_P(ZeroWordsPerAddress, IsRejectedLikeAFieldThatDoesNotConvert)
{
    expect_unparsable(with_field(example_fields(), GetParam().attribute, GetParam().field),
                      GetParam().attribute, QString::fromLatin1(GetParam().field), example_name);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ZeroWordsPerAddress,
    testing::Values(BadDivisor{"Flash", Profile::flash_words_per_address, "0"},
                    BadDivisor{"FlashInOtherWriting", Profile::flash_words_per_address, "0x00"},
                    BadDivisor{"Eeprom", Profile::eeprom_words_per_address, "0"}),
    row_name);

TEST(ProfileFields, AreRejectedInTheirOrderWhicheverWayTheyAreBad)
{
    const DebugMessages messages;
    const QStringList fields = with_field(example_fields(), Profile::flash_words_per_address, "0");
    EXPECT_THROW(Profile(with_field(fields, Profile::flash_block_size, "many")), QException);
    ASSERT_EQ(messages.texts().size(), 1);
    EXPECT_TRUE(messages.texts().first().contains(QStringLiteral("'flash words per address'")));
}

TEST(ProfileFields, ZeroWordsPerAddressIsFineWithoutWords)
{
    const DebugMessages messages;
    const QStringList fields = with_field(fields_without_eeprom(), Profile::flash_word_size, "0");
    const Profile profile(with_field(fields, Profile::flash_words_per_address, "0"));
    EXPECT_FALSE(profile.has_memory_type(MEMORY_FLASH));
    EXPECT_FALSE(profile.has_memory_type(MEMORY_EEPROM));
    EXPECT_EQ(messages.texts(), QStringList());
}

} // namespace
