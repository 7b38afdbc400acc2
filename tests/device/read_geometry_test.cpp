#include "tests/device/GeometryFaultRows.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/ReadBench.h"

#include <gmock/gmock.h>

using testing::IsEmpty;
using testing::Values;

namespace
{

class ReadOfBadFlash : public testing::TestWithParam<GeometryFault>
{
protected:
    void expect_refusal()
    {
        EXPECT_EQ(bench.line.recorder.lines(), GetParam().message());
        EXPECT_THAT(bench.line.sent(), IsEmpty());
        EXPECT_FALSE(bench.line.port.is_open());
        EXPECT_FALSE(bench.target.exists());
    }

    ReadBench bench{GetParam().device};
};

class ReadOfBadEeprom : public ReadOfBadFlash
{
};

const auto bad_flash = Values(zero_flash_row, flash_row_below_word, zero_flash_block,
                              flash_block_below_word, no_flash_words, flash_divisor_zero);
const auto bad_eeprom = Values(zero_eeprom_row, eeprom_row_below_word, zero_eeprom_block,
                               eeprom_block_below_word, eeprom_block_above_eeprom, no_eeprom_words);

} // namespace

TEST_P(ReadOfBadFlash, NamesTheAttribute)
{
    EXPECT_FALSE(bench.read());
    expect_refusal();
}

TEST_P(ReadOfBadFlash, NamesTheAttributeWhenAllFlashIsExcluded)
{
    EXPECT_FALSE(bench.read(false, false));
    expect_refusal();
}

TEST_P(ReadOfBadFlash, NamesTheAttributeForARangeThatReachesIntoFlash)
{
    EXPECT_FALSE(bench.read_range(0x200, 0x1010));
    expect_refusal();
}

TEST_P(ReadOfBadFlash, DoesNotMatterForARangeInEeprom)
{
    EXPECT_TRUE(bench.read_range(0x1000, 0x1010));
    EXPECT_EQ(bench.line.sent(), Commands{read_eeprom(0)});
}

INSTANTIATE_TEST_SUITE_P(, ReadOfBadFlash, bad_flash, device_name);

TEST_P(ReadOfBadEeprom, NamesTheAttribute)
{
    EXPECT_FALSE(bench.read());
    expect_refusal();
}

TEST_P(ReadOfBadEeprom, NamesTheAttributeForARangeThatReachesIntoEeprom)
{
    EXPECT_FALSE(bench.read_range(0x200, 0x1010));
    expect_refusal();
}

TEST_P(ReadOfBadEeprom, DoesNotMatterForARangeInFlash)
{
    EXPECT_TRUE(bench.read_range(0x200, 0x240));
    EXPECT_EQ(bench.line.sent(), Commands{read_flash_row(0x200)});
}

INSTANTIATE_TEST_SUITE_P(, ReadOfBadEeprom, bad_eeprom, device_name);

TEST(ReadOfADeviceWithoutBlockSize, NamesTheAttributeForARangeThatOnlyEndsInFlash)
{
    ReadBench bench(zero_flash_block.device);
    EXPECT_FALSE(bench.read_range(0x50, 0x200));
    EXPECT_EQ(bench.line.recorder.lines(), zero_flash_block.message());
}

// No address of its flash is a multiple of the block, so ranges in it are refused for that.
TEST(ReadOfABlockThatReachesAboveFlash, NamesTheAttribute)
{
    ReadBench bench(flash_block_above_flash.device);
    EXPECT_FALSE(bench.read());
    EXPECT_EQ(bench.line.recorder.lines(), flash_block_above_flash.message());
    EXPECT_THAT(bench.line.sent(), IsEmpty());
}

TEST(ReadOfADeviceWithoutPageSize, IsNoneOfItsBusiness)
{
    ReadBench bench("zero-flash-page");
    EXPECT_TRUE(bench.read());
    EXPECT_EQ(bench.target.content(), content_of({{0x100, 0x200}, {0x1000, 0x30}}));
}

namespace
{

const char* const misplaced =
    "sig_error unusable geometry in device profile 'misplaced-eeprom': eeprom_start_address is "
    "0x00001004, expected a multiple of eeprom_block_size 8";

} // namespace

TEST(ReadOfMisplacedEeprom, IsRefused)
{
    ReadBench bench("misplaced-eeprom");
    EXPECT_FALSE(bench.read());
    EXPECT_THAT(bench.line.recorder.lines(), testing::ElementsAre(misplaced));
    EXPECT_THAT(bench.line.sent(), IsEmpty());
}

TEST(ReadOfMisplacedEeprom, IsRefusedForARangeFromItsFirstBlock)
{
    ReadBench bench("misplaced-eeprom");
    EXPECT_FALSE(bench.read_range(0x100, 0x1010));
    EXPECT_THAT(bench.line.recorder.lines(), testing::ElementsAre(misplaced));
    EXPECT_THAT(bench.line.sent(), IsEmpty());
}

TEST(ReadOfMisplacedEeprom, WorksFromTheSecondBlockOn)
{
    ReadBench bench("misplaced-eeprom");
    EXPECT_TRUE(bench.read_range(0x1008, 0x1010));
    EXPECT_EQ(bench.line.sent(), (Commands{read_eeprom(4, 4), read_eeprom(8, 4)}));
    EXPECT_EQ(bench.target.content(), content_of({{0x1008, 8}}));
}
