#include "tests/examples/Examples.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

using namespace test;
using Kind = ProfileTableLine::Kind;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace
{

constexpr std::array device_names{"LARK-32",  "SISKIN-64",  "DUNLIN-48",
                                  "WREN-32E", "GODWIT-128", "PLOVER-96"};

/// Where HEX images can put data: an address with bit 23 set comes out somewhere else.
constexpr unsigned int hex_address_end = 0x800000;
/// Word addresses of commands have 24 bits.
constexpr unsigned int word_address_end = 0x1000000;
/// Word counts of commands have 8 bits.
constexpr unsigned int largest_word_count = 255;

std::vector<MemoryType> memories_of(const Profile& device)
{
    std::vector<MemoryType> memories{MEMORY_FLASH};
    if (device.has_memory_type(MEMORY_EEPROM)) {
        memories.push_back(MEMORY_EEPROM);
    }
    return memories;
}

class ExampleDevice : public testing::TestWithParam<const char*>
{
protected:
    void SetUp() override { m_device = example_device(QString::fromUtf8(GetParam())); }

    const Profile& device() const { return *m_device; }

    unsigned int attribute(Profile::Attr a) const
    {
        return m_device->attributes.at(static_cast<std::size_t>(a));
    }

private:
    std::unique_ptr<Profile> m_device;
};

TEST_P(ExampleDevice, SpeaksAtAStandardRate)
{
    constexpr std::array rates{9600U, 19200U, 38400U, 57600U, 115200U, 230400U, 460800U};
    EXPECT_THAT(rates, Contains(attribute(Profile::max_baud)));
}

TEST_P(ExampleDevice, DeliversARowWithinTheWaitForAnAnswer)
{
    // At worst each byte is escaped, and each takes ten bits on the line.
    for (const MemoryType t : memories_of(device())) {
        EXPECT_LT(1000 * 2 * 10 * device().get_row_size(t) / attribute(Profile::max_baud), 300U);
    }
}

TEST_P(ExampleDevice, HasAVersionThatIsReadAsItIsSent)
{
    // A low byte of 0x80 or more would arrive with a high byte of 0xFF.
    EXPECT_LT(attribute(Profile::bootloader_version), 0x10000U);
    EXPECT_LT(attribute(Profile::bootloader_version) & 0xFFU, 0x80U);
}

TEST_P(ExampleDevice, HasFlashOfASizeThatIsQuickToShow)
{
    constexpr unsigned int kib = 1024;
    const unsigned int size =
        device().get_max_address(MEMORY_FLASH) - attribute(Profile::bootloader_start_address);
    EXPECT_GE(size, 32 * kib);
    EXPECT_LE(size, 128 * kib);
}

TEST_P(ExampleDevice, HasOneFlashAddressPerByte)
{
    // Whole-flash erase walks in pages of address steps, a page command erases a page of bytes.
    EXPECT_EQ(device().get_address_divisor(MEMORY_FLASH), 1U);
    EXPECT_EQ(attribute(Profile::flash_end_address_words), device().get_max_address(MEMORY_FLASH));
}

TEST_P(ExampleDevice, HasMemoriesThatEndAfterTheyBegin)
{
    EXPECT_LT(attribute(Profile::bootloader_start_address),
              attribute(Profile::bootloader_end_address));
    for (const MemoryType t : memories_of(device())) {
        EXPECT_LT(device().get_min_address(t), device().get_max_address(t));
    }
}

TEST_P(ExampleDevice, HasMemoriesThatImagesAndCommandsReach)
{
    for (const MemoryType t : memories_of(device())) {
        const unsigned int last = device().get_max_address(t) - 1;
        EXPECT_LT(last, hex_address_end);
        EXPECT_LT(device().byte_to_word_address(last), word_address_end);
    }
}

TEST_P(ExampleDevice, HasAreasThatDoNotOverlap)
{
    const unsigned int begin = device().get_min_address(MEMORY_EEPROM);
    const unsigned int end = device().get_max_address(MEMORY_EEPROM);
    EXPECT_TRUE(end <= attribute(Profile::bootloader_start_address) ||
                begin >= device().get_max_address(MEMORY_FLASH));
}

TEST_P(ExampleDevice, HasFlashAreasOfWholePages)
{
    const unsigned int page = device().get_page_size(MEMORY_FLASH);
    ASSERT_NE(page, 0U);
    for (const Profile::Attr a :
         {Profile::bootloader_start_address, Profile::bootloader_end_address,
          Profile::flash_end_address_bytes, Profile::flash_unencrypted_start_address,
          Profile::flash_unencrypted_end_address}) {
        EXPECT_EQ(attribute(a) % page, 0U) << Profile::attr_to_string(a).toStdString();
    }
    EXPECT_EQ(page % device().get_row_size(MEMORY_FLASH), 0U);
}

TEST_P(ExampleDevice, HasAnUnencryptedAreaWithinFlash)
{
    const unsigned int begin = attribute(Profile::flash_unencrypted_start_address);
    const unsigned int end = attribute(Profile::flash_unencrypted_end_address);
    EXPECT_LE(device().get_min_address(MEMORY_FLASH), begin);
    EXPECT_LE(begin, end);
    EXPECT_LE(end, device().get_max_address(MEMORY_FLASH));
}

TEST_P(ExampleDevice, HasEepromOfWholeRowsOrZerosInItsColumns)
{
    if (device().has_memory_type(MEMORY_EEPROM)) {
        const unsigned int row = device().get_row_size(MEMORY_EEPROM);
        const unsigned int begin = device().get_min_address(MEMORY_EEPROM);
        const unsigned int end = device().get_max_address(MEMORY_EEPROM);
        ASSERT_NE(row, 0U);
        EXPECT_EQ(begin % row, 0U);
        EXPECT_EQ(end % row, 0U);
        EXPECT_EQ(end - begin, attribute(Profile::eeprom_max_size));
    } else {
        for (int a = Profile::eeprom_start_address; a <= Profile::eeprom_max_size; ++a) {
            EXPECT_EQ(attribute(static_cast<Profile::Attr>(a)), 0U) << a;
        }
    }
}

TEST_P(ExampleDevice, HasRowsOfWholeWordsThatReadsAndCommandsCover)
{
    for (const MemoryType t : memories_of(device())) {
        const unsigned int row = device().get_row_size(t);
        const unsigned int word = device().get_word_size(t);
        EXPECT_EQ(row, device().get_block_size(t));
        EXPECT_EQ(row % word, 0U);
        EXPECT_GE(row / word, 1U);
        EXPECT_LE(row / word, largest_word_count);
    }
}

TEST_P(ExampleDevice, FillsWithTheErasedState)
{
    // A word is laid out from the top byte of the 32-bit filler.
    for (const MemoryType t : memories_of(device())) {
        const unsigned int size = device().get_word_size(t);
        ASSERT_LE(size, 4U);
        EXPECT_EQ(device().get_filler_word_size(t), size);
        for (unsigned int i = 0; i < size; ++i) {
            EXPECT_EQ(device().get_filler_word(t) >> (24 - 8 * i) & 0xFFU, 0xFFU) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Devices, ExampleDevice, testing::ValuesIn(device_names),
                         [](const auto& row) { return test_name(row.param); });

TEST(ExampleTable, HoldsTheNamedDevicesEachWithAVersionOfItsOwn)
{
    std::vector<std::string> names;
    QSet<QString> versions;
    for (const ProfileTableLine& line : example_lines()) {
        if (line.kind == Kind::Row) {
            names.push_back(line.fields.at(Profile::device_name).toStdString());
            versions.insert(line.fields.first());
        }
    }
    EXPECT_THAT(names, ElementsAreArray(device_names));
    EXPECT_EQ(versions.size(), static_cast<int>(device_names.size()));
}

TEST(ExampleTable, HasOneTitleRowAboveTheDevicesAndNoSpoiltRow)
{
    std::vector<Kind> kinds;
    for (const ProfileTableLine& line : example_lines()) {
        if (line.kind != Kind::Remark) {
            kinds.push_back(line.kind);
        }
    }
    EXPECT_THAT(kinds, ElementsAre(Kind::Header, Kind::Row, Kind::Row, Kind::Row, Kind::Row,
                                   Kind::Row, Kind::Row));
}

TEST(ExampleTable, ShowsEveryPlaceForEeprom)
{
    EXPECT_FALSE(example_device(QStringLiteral("SISKIN-64"))->has_memory_type(MEMORY_EEPROM));
    const auto above = example_device(QStringLiteral("LARK-32"));
    EXPECT_GT(above->get_min_address(MEMORY_EEPROM), above->get_max_address(MEMORY_FLASH));
    const auto adjacent = example_device(QStringLiteral("WREN-32E"));
    EXPECT_EQ(adjacent->get_min_address(MEMORY_EEPROM), adjacent->get_max_address(MEMORY_FLASH));
    const auto below = example_device(QStringLiteral("DUNLIN-48"));
    EXPECT_LT(below->get_max_address(MEMORY_EEPROM),
              below->attributes[Profile::bootloader_start_address]);
}

TEST(ExampleTable, ShowsAScaledEepromEnd)
{
    const auto device = example_device(QStringLiteral("GODWIT-128"));
    EXPECT_EQ(device->get_word_size(MEMORY_EEPROM), 2U);
    EXPECT_EQ(device->get_words_per_address(MEMORY_EEPROM), 1U);
    EXPECT_EQ(device->get_min_address(MEMORY_EEPROM), 0x30000U);
    EXPECT_EQ(device->get_max_address(MEMORY_EEPROM), 0x30800U);
}

TEST(ExampleTable, ShowsEncryptedAndPlainFlash)
{
    const auto half = example_device(QStringLiteral("LARK-32"));
    EXPECT_TRUE(half->is_unencrypted_flash(0x3FFF));
    EXPECT_TRUE(half->is_encrypted_flash(0x4000));
    const auto window = example_device(QStringLiteral("GODWIT-128"));
    EXPECT_TRUE(window->is_encrypted_flash(0x7FFF));
    EXPECT_TRUE(window->is_unencrypted_flash(0x8000));
    EXPECT_TRUE(window->is_encrypted_flash(0x10000));
    EXPECT_TRUE(example_device(QStringLiteral("SISKIN-64"))->is_unencrypted_flash(0xFFFF));
    EXPECT_TRUE(example_device(QStringLiteral("WREN-32E"))->is_encrypted_flash(0x400));
}

} // namespace
