#include "tests/device/DeviceOperations.h"
#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace test;
using testing::ElementsAre;

// A profile table may come from anywhere. Geometry that no command can be built from ends in a
// message, before anything is sent; all other geometry is used as it is.

namespace
{

Operation read(unsigned int address)
{
    return read_memory(address, 2);
}

Operation erase_page(unsigned int address)
{
    return [address](ZarnSerialDevice& device) {
        return device.erase_flash(address, 1);
    };
}

Operation erase_all()
{
    return [](ZarnSerialDevice& device) {
        return device.erase_all(true, true);
    };
}

Operation erase_range()
{
    return [](ZarnSerialDevice& device) {
        return device.erase_range(true, true, 0x1000, 0x2000);
    };
}

Operation write(unsigned int address)
{
    return test::write({{address, counting(16)}});
}

struct Unusable {
    const char* name;
    const char* device;
    Operation operation;
    const char* fault;
};

const char* const no_flash_row = "flash_row_size is 0, expected 1 to 1073741568";
const char* const immense_flash_row = "flash_row_size is 1073741569, expected 1 to 1073741568";
const char* const immense_flash_words = "flash_word_size is 1073741569, expected 1 to 1073741568";
const char* const no_flash_block = "flash_block_size is 0, expected 1 to 4294967295";
const char* const no_flash_page = "flash_page_size is 0, expected 1 to 4294967295";
const char* const page_that_wraps = "flash_page_size is 2147483648, expected 1 to 2147483647";
const char* const no_flash_words = "flash_word_size is 0, expected 1 to 4294967295";
const char* const fine_flash = "flash_words_per_address is 4, expected 1 to 2";
const char* const no_eeprom_row = "eeprom_row_size is 0, expected 1 to 1073741568";
const char* const no_eeprom_block = "eeprom_block_size is 0, expected 1 to 4294967295";
const char* const no_eeprom_words = "eeprom_word_size is 0, expected 1 to 4294967295";
const char* const misplaced_eeprom =
    "eeprom_start_address is 0x00008004, expected a multiple of eeprom_block_size 8";

const Unusable unusable[] = {
    {"ReadWithoutFlashRow", "zero-flash-row", read(0x1000), no_flash_row},
    {"WriteWithoutFlashRow", "zero-flash-row", write(0x1000), no_flash_row},
    {"WriteRangeWithoutFlashRow", "zero-flash-row", write_range(0x1000, 0x1040), no_flash_row},
    {"ReadWithoutFlashBlock", "zero-flash-block", read(0x1000), no_flash_block},
    {"WriteRangeWithoutFlashBlock", "zero-flash-block", write_range(0x1000, 0x1040),
     no_flash_block},
    {"WriteRangeIntoFlashWithoutBlock", "zero-flash-block", write_range(0x100, 0x1040),
     no_flash_block},
    {"ErasePageWithoutPage", "zero-flash-page", erase_page(0x1000), no_flash_page},
    {"EraseAllWithoutPage", "zero-flash-page", erase_all(), no_flash_page},
    {"EraseRangeWithoutPage", "zero-flash-page", erase_range(), no_flash_page},
    {"EraseAllByPagesThatWrapToNothing", "overflowing-page", erase_all(), page_that_wraps},
    {"ReadWithImmenseRow", "immense-row", read(0x1000), immense_flash_row},
    {"WriteWithImmenseRow", "immense-row", write(0x1000), immense_flash_row},
    {"ReadWithImmenseWords", "immense-words", read(0x1000), immense_flash_words},
    {"WriteWithImmenseWords", "immense-words", write(0x1000), immense_flash_words},
    {"ReadWithoutFlashWords", "no-flash-words", read(0x1000), no_flash_words},
    {"WriteMemoryWithoutFlashWords", "no-flash-words", write_memory(0x1000, 64), no_flash_words},
    {"ErasePageWithoutFlashWords", "no-flash-words", erase_page(0x1000), no_flash_words},
    {"EraseAllWithoutFlashWords", "no-flash-words", erase_all(), no_flash_words},
    {"EraseRangeWithoutFlashWords", "no-flash-words", erase_range(), no_flash_words},
    {"WriteWithoutFlashWords", "no-flash-words", write(0x1000), no_flash_words},
    {"WriteRangeWithoutFlashWords", "no-flash-words", write_range(0x1000, 0x1040), no_flash_words},
    {"ReadOfFineFlash", "flash-divisor-zero", read(0x1000), fine_flash},
    {"WriteMemoryOfFineFlash", "flash-divisor-zero", write_memory(0x1000, 64), fine_flash},
    {"ErasePageOfFineFlash", "flash-divisor-zero", erase_page(0x1000), fine_flash},
    {"EraseAllOfFineFlash", "flash-divisor-zero", erase_all(), fine_flash},
    {"EraseRangeOfFineFlash", "flash-divisor-zero", erase_range(), fine_flash},
    {"WriteOfFineFlash", "flash-divisor-zero", write(0x1000), fine_flash},
    {"WriteRangeOfFineFlash", "flash-divisor-zero", write_range(0x1000, 0x1040), fine_flash},
    {"ReadWithoutEepromRow", "zero-eeprom-row", read(0x8000), no_eeprom_row},
    {"WriteMemoryWithoutEepromRow", "zero-eeprom-row", write_memory(0x8000, 16), no_eeprom_row},
    {"WriteWithoutEepromRow", "zero-eeprom-row", write(0x8000), no_eeprom_row},
    {"WriteRangeWithoutEepromRow", "zero-eeprom-row", write_range(0x8000, 0x8010), no_eeprom_row},
    {"ReadWithoutEepromBlock", "zero-eeprom-block", read(0x8000), no_eeprom_block},
    {"ReadWithoutEepromWords", "no-eeprom-words", read(0x8000), no_eeprom_words},
    {"WriteMemoryWithoutEepromWords", "no-eeprom-words", write_memory(0x8000, 16), no_eeprom_words},
    {"WriteWithoutEepromWords", "no-eeprom-words", write(0x8000), no_eeprom_words},
    {"ReadOfMisplacedEeprom", "misplaced-eeprom", read(0x8004), misplaced_eeprom},
    {"ReadOfABlockLargerThanEeprom", "eeprom-block-above-eeprom", read(0x8000),
     "eeprom_start_address is 0x00008000, expected a multiple of eeprom_block_size 65536"},
};

class UnusableGeometry : public testing::TestWithParam<Unusable>
{
};

struct Usable {
    const char* name;
    const char* device;
    Operation operation;
};

// Operations that do not need the wrong figure still work.
const Usable usable[] = {
    {"WriteWithoutFlashBlock", "zero-flash-block", write(0x1000)},
    {"WriteRangeOfEepromWithoutFlashBlock", "zero-flash-block", write_range(0x8000, 0x8010)},
    {"EraseWithoutFlashRow", "zero-flash-row", erase_all()},
    {"WriteOfEepromWithoutFlashRow", "zero-flash-row", write(0x8000)},
    {"WriteWithoutFlashPage", "zero-flash-page", write(0x1000)},
    {"WriteOfFlashWithoutEepromRow", "zero-eeprom-row", write(0x1000)},
    {"WriteOfEepromWithoutEepromBlock", "zero-eeprom-block", write(0x8000)},
    {"ReadOfFlashWithoutEepromWords", "no-eeprom-words", read(0x1000)},
    {"ReadOfMisplacedEepromAfterItsFirstBlock", "misplaced-eeprom", read(0x8008)},
    {"WriteOfFlashWithFineEeprom", "eeprom-divisor-zero", write(0x1000)},
    {"WriteOfMisplacedEeprom", "misplaced-eeprom", write(0x8010)},
    {"ReadWithRowBeyondAllMemory", "endless-row", read(0x1000)},
    {"WriteMemoryWithRowBelowAWord", "flash-row-below-word", write_memory(0x1000, 1)},
    {"WriteWithRowBelowAWord", "flash-row-below-word", write(0x1000)},
    {"WriteOfEepromWithRowBelowAWord", "eeprom-row-below-word", write(0x8000)},
    {"WriteWithBlockBelowAWord", "flash-block-below-word", write(0x1000)},
};

// Figures that lead to commands that the checks of every command refuse.
struct Strange {
    const char* name;
    const char* device;
    Operation operation;
    std::vector<std::string> messages;
};

const char* const nothing_expected =
    "sig_error expected_response_length == 0 but max_attempts != 1 (nonsensical)";
const char* const different_types =
    "sig_error start and end addresses correspond to different memory types";

const Strange strange[] = {
    {"WriteMemoryWithoutFlashRow",
     "zero-flash-row",
     write_memory(0x1000, 64),
     {"sig_error num_bytes must be exactly row_size (0)"}},
    {"ReadWithRowBelowAWord", "flash-row-below-word", read(0x1000), {nothing_expected}},
    {"ReadWithBlockBelowAWord", "flash-block-below-word", read(0x1000), {nothing_expected}},
    {"ReadWithEepromRowBelowAWord", "eeprom-row-below-word", read(0x8000), {nothing_expected}},
    {"ReadWithEepromBlockBelowAWord", "eeprom-block-below-word", read(0x8000), {nothing_expected}},
    {"WriteWithRowBeyondAllMemory",
     "endless-row",
     write(0x1000),
     {"sig_upload_progress 0 of 0", different_types,
      "sig_error unable to write flash row at address 0x00000800"}},
    {"EraseRangeByPagesLargerThanFlash",
     "page-above-flash",
     erase_range(),
     {"sig_error address + page_size > 0x00004000",
      "sig_error unable to erase 1 flash pages at address 0x00000800"}},
    {"EraseAllByPagesLargerThanFlash",
     "page-above-flash",
     erase_all(),
     {"sig_error address + page_size > 0x00004000",
      "sig_error unable to erase 1 flash pages at address 0x00000800"}},
    {"EraseRangeByPagesOfHalfTheAddressSpace",
     "overflowing-page",
     erase_range(),
     {"sig_error address must be a multiple of 2147483648",
      "sig_error unable to erase 1 flash pages at address 0x00000800"}},
};

class StrangeGeometry : public testing::TestWithParam<Strange>
{
};

class UsableGeometry : public testing::TestWithParam<Usable>
{
};

} // namespace

TEST_P(UnusableGeometry, IsReportedAndNothingIsSent)
{
    const Unusable& row = GetParam();
    DeviceOnLine line(row.device);
    EXPECT_FALSE(row.operation(line.device));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error unusable geometry in device profile '" +
                            std::string(row.device) + "': " + row.fault));
    EXPECT_FALSE(line.port.is_open());
}

INSTANTIATE_TEST_SUITE_P(, UnusableGeometry, testing::ValuesIn(unusable), row_name);

TEST_P(UsableGeometry, OfTheRestOfTheDeviceStillWorks)
{
    DeviceOnLine line(GetParam().device);
    // The simulated device knows the wrong figure too and need not know how to handle it.
    line.simulated.set_reply_filter([](const sim::Command& command, const QByteArray&) {
        const bool reads = command.kind == sim::Command::Kind::Read;
        const int length = command.payload.at(1) * (command.is_eeprom() ? 1 : 2);
        return frame_of(reads ? command.payload + counting(length) : command.payload.left(1));
    });
    EXPECT_TRUE(GetParam().operation(line.device));
    EXPECT_FALSE(line.sent().empty());
}

INSTANTIATE_TEST_SUITE_P(, UsableGeometry, testing::ValuesIn(usable), row_name);

TEST_P(StrangeGeometry, FailsWithTheMessageOfTheCheckThatItMeets)
{
    DeviceOnLine line(GetParam().device);
    EXPECT_FALSE(GetParam().operation(line.device));
    EXPECT_EQ(line.recorder.lines(), GetParam().messages);
    EXPECT_TRUE(line.sent().empty());
}

INSTANTIATE_TEST_SUITE_P(, StrangeGeometry, testing::ValuesIn(strange), row_name);

TEST(PagesLargerThanFlash, AreNoneToEraseWhenAllOfItIsLeftOut)
{
    DeviceOnLine line("page-above-flash");
    EXPECT_TRUE(line.device.erase_all(false, true));
    EXPECT_TRUE(line.recorder.lines().empty());
    EXPECT_TRUE(line.sent().empty());
}

TEST(WordsOfManyBytes, AreReadInAnswersLongerThanALengthOf16Bits)
{
    DeviceOnLine line("kilobyte-words");
    line.simulated.set_reply_filter([](const sim::Command& command, const QByteArray&) {
        return frame_of(command.payload + counting(66 * 1024));
    });
    QByteArray data;
    EXPECT_TRUE(line.device.read_memory(0x20000, 66 * 1024, data));
    EXPECT_EQ(data, counting(66 * 1024));
    EXPECT_THAT(line.sent(), ElementsAre("01 42 80 00 00"));
}

TEST(WordsOfManyBytes, AreNotReadFromAnAnswerThatLacks65536Bytes)
{
    DeviceOnLine line("kilobyte-words");
    line.simulated.set_reply_filter([](const sim::Command& command, const QByteArray&) {
        return frame_of(command.payload + counting(2 * 1024));
    });
    QByteArray data;
    EXPECT_FALSE(line.device.read_memory(0x20000, 66 * 1024, data));
}

TEST(BlockBeyondFlash, IsReadAsFarAsFlashGoes)
{
    DeviceOnLine line("endless-block"); // larger than flash, so two bytes take a read of all of it
    const QByteArray all = counting(0x4000);
    line.simulated.memory().preset(0, all);
    QByteArray data;
    EXPECT_TRUE(line.device.read_memory(0x3FFE, 2, data));
    EXPECT_EQ(data, all.right(2));
    ASSERT_EQ(line.sent().size(), 0x4000U / 0x40);
    EXPECT_EQ(line.sent().front(), "01 20 00 00 00");
    EXPECT_EQ(line.sent().back(), "01 20 E0 1F 00");
}

TEST(EepromThatScalesToNothing, IsNoMemory)
{
    DeviceOnLine line("eeprom-divisor-zero");
    EXPECT_FALSE(read(0x8000)(line.device));
    EXPECT_FALSE(write_memory(0x8000, 16)(line.device));
    EXPECT_THAT(line.recorder.lines(), ElementsAre("sig_error unreadable memory area",
                                                   "sig_error unwritable memory area"));
}
