#include "sim/device/DeviceMemory.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"

#include <gmock/gmock.h>

using namespace test;
using sim::DeviceMemory;

namespace
{

constexpr unsigned int flash_start = 0x800;
constexpr unsigned int flash_end = 0x10000;
constexpr unsigned int page_size = 0x200;
constexpr unsigned int eeprom_start = 0x400000;
constexpr unsigned int eeprom_end = 0x400100;

QByteArray erased(int count)
{
    return QByteArray(count, '\xFF');
}

std::vector<std::pair<unsigned int, QByteArray>> content(const DeviceMemory& memory)
{
    std::vector<std::pair<unsigned int, QByteArray>> content;
    for (const DeviceMemory::ProgrammedRange& range : memory.programmed_ranges()) {
        content.emplace_back(range.address, range.bytes);
    }
    return content;
}

using Content = std::vector<std::pair<unsigned int, QByteArray>>;

class SimDeviceMemory : public testing::Test
{
protected:
    DeviceMemory memory{*sample_profile()};
};

} // namespace

TEST_F(SimDeviceMemory, StartsErasedEverywhere)
{
    EXPECT_EQ(memory.read(0, flash_end), erased(flash_end));
    EXPECT_EQ(memory.read(eeprom_start, 0x100), erased(0x100));
    EXPECT_EQ(content(memory), Content());
}

TEST_F(SimDeviceMemory, ProgramsErasedFlashExactly)
{
    EXPECT_TRUE(memory.program_flash(0x1000, bytes("00 12 FF 80")));
    EXPECT_EQ(memory.read(0xFFF, 6), bytes("FF 00 12 FF 80 FF"));
    EXPECT_EQ(memory.statistics().flash_rows_programmed, 1U);
    EXPECT_EQ(memory.statistics().cells_programmed_without_erase, 0U);
}

TEST_F(SimDeviceMemory, OnlyClearsBitsWhereFlashIsNotErased)
{
    memory.program_flash(0x1000, bytes("F0 F0 00 FF"));
    EXPECT_TRUE(memory.program_flash(0x1000, bytes("0F 30 01 12")));
    EXPECT_EQ(memory.read(0x1000, 4), bytes("00 30 00 12"));
    // 0x30 needs no bit that is cleared already, so its cell holds what was sent.
    EXPECT_EQ(memory.statistics().cells_programmed_without_erase, 2U);
}

TEST_F(SimDeviceMemory, ProgramsNothingOutsideUserFlash)
{
    EXPECT_FALSE(memory.program_flash(flash_start - 1, bytes("00 00")));
    EXPECT_FALSE(memory.program_flash(flash_end - 1, bytes("00 00")));
    EXPECT_FALSE(memory.program_flash(eeprom_start, bytes("00")));
    EXPECT_EQ(content(memory), Content());
    EXPECT_EQ(memory.statistics().flash_rows_programmed, 0U);
    EXPECT_TRUE(memory.program_flash(flash_start, bytes("00")));
    EXPECT_TRUE(memory.program_flash(flash_end - 1, bytes("00")));
}

TEST_F(SimDeviceMemory, OverwritesEeprom)
{
    EXPECT_TRUE(memory.write_eeprom(eeprom_start, bytes("00 11")));
    EXPECT_TRUE(memory.write_eeprom(eeprom_start, bytes("FF EE")));
    EXPECT_EQ(memory.read(eeprom_start, 2), bytes("FF EE"));
    EXPECT_EQ(memory.statistics().eeprom_writes, 2U);
    EXPECT_EQ(memory.statistics().cells_programmed_without_erase, 0U);
}

TEST_F(SimDeviceMemory, WritesNothingOutsideEeprom)
{
    EXPECT_FALSE(memory.write_eeprom(eeprom_start - 1, bytes("00 00")));
    EXPECT_FALSE(memory.write_eeprom(eeprom_end - 1, bytes("00 00")));
    EXPECT_FALSE(memory.write_eeprom(flash_start, bytes("00")));
    EXPECT_EQ(content(memory), Content());
    EXPECT_EQ(memory.statistics().eeprom_writes, 0U);
}

TEST_F(SimDeviceMemory, ErasesWholePages)
{
    memory.preset(0xE00, QByteArray(0x800, '\x11'));
    EXPECT_TRUE(memory.erase_pages(0x1000, 2));
    const Content expected = {{0xE00, QByteArray(0x200, '\x11')},
                              {0x1400, QByteArray(0x200, '\x11')}};
    EXPECT_EQ(content(memory), expected);
    EXPECT_EQ(memory.statistics().pages_erased, 2U);
}

TEST_F(SimDeviceMemory, ErasesThePageThatHoldsTheAddress)
{
    memory.preset(0x1000, QByteArray(0x400, '\x11'));
    EXPECT_TRUE(memory.erase_pages(0x11FF, 1));
    const Content expected = {{0x1200, QByteArray(0x200, '\x11')}};
    EXPECT_EQ(content(memory), expected);
}

TEST_F(SimDeviceMemory, TakesProgrammingAgainAfterErasing)
{
    memory.program_flash(0x1000, bytes("00 00"));
    memory.erase_pages(0x1000, 1);
    memory.program_flash(0x1000, bytes("12 34"));
    EXPECT_EQ(memory.read(0x1000, 2), bytes("12 34"));
    EXPECT_EQ(memory.statistics().cells_programmed_without_erase, 0U);
}

TEST_F(SimDeviceMemory, NeverErasesTheBootloader)
{
    memory.preset(0, QByteArray(flash_end, '\x11'));
    EXPECT_FALSE(memory.erase_pages(0, 255));
    EXPECT_FALSE(memory.erase_pages(flash_start - 1, 2));
    EXPECT_EQ(memory.read(0, flash_end), QByteArray(flash_end, '\x11'));
    EXPECT_EQ(memory.statistics().pages_erased, 0U);
}

TEST_F(SimDeviceMemory, NeverErasesAPageThatTheBootloaderReachesInto)
{
    DeviceMemory straddling(*sample_profile({{Profile::bootloader_end_address, "0x480"}}));
    straddling.preset(0x900, bytes("11"));
    EXPECT_FALSE(straddling.erase_pages(0x900, 1));
    EXPECT_EQ(straddling.read(0x900, 1), bytes("11"));
    EXPECT_TRUE(straddling.erase_pages(0xA00, 1));
}

TEST_F(SimDeviceMemory, PassesOverPagesBeyondTheEndOfFlash)
{
    memory.preset(flash_end - page_size, QByteArray(page_size, '\x11'));
    memory.preset(eeprom_start, bytes("22"));
    EXPECT_TRUE(memory.erase_pages(flash_end - page_size, 4));
    const Content expected = {{eeprom_start, bytes("22")}};
    EXPECT_EQ(content(memory), expected);
    EXPECT_EQ(memory.statistics().pages_erased, 1U);
}

TEST_F(SimDeviceMemory, ErasesNothingThatBeginsOutsideFlash)
{
    memory.preset(eeprom_start, bytes("22"));
    EXPECT_FALSE(memory.erase_pages(flash_end, 1));
    EXPECT_FALSE(memory.erase_pages(eeprom_start, 1));
    EXPECT_EQ(memory.read(eeprom_start, 1), bytes("22"));
}

TEST_F(SimDeviceMemory, PresetsAnythingThatIsMemoryAndCountsTheRest)
{
    EXPECT_EQ(memory.preset(0, bytes("01 02")), 0U);
    EXPECT_EQ(memory.preset(flash_end - 1, bytes("03 04 05")), 2U);
    EXPECT_EQ(memory.preset(eeprom_start - 1, bytes("06 07")), 1U);
    EXPECT_EQ(memory.preset(0x900000, bytes("08")), 1U);
    const Content expected = {
        {0, bytes("01 02")}, {flash_end - 1, bytes("03")}, {eeprom_start, bytes("07")}};
    EXPECT_EQ(content(memory), expected);
}

TEST_F(SimDeviceMemory, ListsRangesAcrossItsBlocksAndWithoutErasedBytes)
{
    memory.preset(0xFFE, bytes("01 02 03 04 FF 05"));
    const Content expected = {{0xFFE, bytes("01 02 03 04")}, {0x1003, bytes("05")}};
    EXPECT_EQ(content(memory), expected);
    EXPECT_EQ(memory.read(0xFFD, 8), bytes("FF 01 02 03 04 FF 05 FF"));
}

TEST_F(SimDeviceMemory, KnowsWhatAHostCanWrite)
{
    for (const unsigned int address : {flash_start, flash_end - 1, eeprom_start, eeprom_end - 1}) {
        EXPECT_TRUE(memory.is_user_memory(address)) << address;
    }
    for (const unsigned int address :
         {0U, flash_start - 1, flash_end, eeprom_start - 1, eeprom_end, 0xFFFFFFFFU}) {
        EXPECT_FALSE(memory.is_user_memory(address)) << address;
    }
}

TEST(SimDeviceMemoryLimits, CopesWithFlashUpToTheLastAddress)
{
    DeviceMemory memory(*sample_profile({{Profile::flash_end_address_bytes, "0xFFFFFFFF"},
                                         {Profile::flash_page_size, "0x80000000"}}));
    EXPECT_TRUE(memory.program_flash(0xFFFFFFFD, bytes("11 22")));
    EXPECT_FALSE(memory.program_flash(0xFFFFFFFE, bytes("11 22")));
    EXPECT_EQ(memory.read(0xFFFFFFFC, 8), bytes("FF 11 22 FF FF FF FF FF"));
    EXPECT_TRUE(memory.erase_pages(0xFFFFFFFD, 255));
    EXPECT_EQ(memory.statistics().pages_erased, 1U);
    EXPECT_EQ(content(memory), Content());
}

TEST(SimDeviceMemoryLimits, HasNothingToErasePagesOfSizeZero)
{
    DeviceMemory memory(*sample_profile({{Profile::flash_page_size, "0"}}));
    EXPECT_FALSE(memory.erase_pages(0x1000, 1));
}

TEST(SimDeviceMemoryLimits, HasNoUserFlashWhenTheBootloaderFillsIt)
{
    DeviceMemory memory(*sample_profile({{Profile::bootloader_end_address, "0x10000"}}));
    EXPECT_FALSE(memory.program_flash(0xFFFF, bytes("00")));
    EXPECT_FALSE(memory.program_flash(0x20000, bytes("00")));
    EXPECT_FALSE(memory.erase_pages(0x1000, 1));
    EXPECT_FALSE(memory.is_user_memory(0x1000));
}

TEST(SimDeviceMemoryLimits, HasNoEepromWhereTheTableGivesNone)
{
    DeviceMemory memory(*sample_profile({{Profile::eeprom_start_address, "0"},
                                         {Profile::eeprom_end_address, "0"},
                                         {Profile::eeprom_word_size, "0"}}));
    EXPECT_FALSE(memory.is_in_eeprom(0, 1));
    EXPECT_FALSE(memory.write_eeprom(0, bytes("00")));
}

TEST_F(SimDeviceMemory, HoldsStuckBitsWhateverIsDone)
{
    EXPECT_TRUE(memory.stick_bits(0x1000, 0x81, false));
    EXPECT_TRUE(memory.stick_bits(0x1001, 0x0F, true));
    EXPECT_EQ(memory.read(0x1000, 2), bytes("7E FF"));
    memory.program_flash(0x1000, bytes("F3 30"));
    EXPECT_EQ(memory.read(0x1000, 2), bytes("72 3F"));
    memory.erase_pages(0x1000, 1);
    EXPECT_EQ(memory.read(0x1000, 2), bytes("7E FF"));
    memory.preset(0x1000, bytes("FF 00"));
    EXPECT_EQ(memory.read(0x1000, 2), bytes("7E 0F"));
    // A broken cell is not the host's mistake.
    EXPECT_EQ(memory.statistics().cells_programmed_without_erase, 0U);
}

TEST_F(SimDeviceMemory, SticksTheBitsOfEepromTooAndTheLatestWord)
{
    EXPECT_TRUE(memory.stick_bits(0x400000, 0x03, false));
    EXPECT_TRUE(memory.stick_bits(0x400000, 0x01, true));
    memory.write_eeprom(0x400000, bytes("00"));
    EXPECT_EQ(memory.read(0x400000, 1), bytes("01"));
    memory.write_eeprom(0x400000, bytes("FF"));
    EXPECT_EQ(memory.read(0x400000, 1), bytes("FD"));
}

TEST_F(SimDeviceMemory, HasNoBitsToStickWhereItHasNoMemory)
{
    EXPECT_FALSE(memory.stick_bits(0x10000, 0x01, false));
    EXPECT_EQ(memory.read(0x10000, 1), bytes("FF"));
}

TEST_F(SimDeviceMemory, KnowsWhereAHostCanWriteFlash)
{
    EXPECT_TRUE(memory.is_in_user_flash(0x800, 0xF800));
    EXPECT_FALSE(memory.is_in_user_flash(0x7FF, 2));
    EXPECT_FALSE(memory.is_in_user_flash(0xFFFF, 2));
}
