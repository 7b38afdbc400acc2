#include "tests/device/GeometryFaultRows.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/ReadBench.h"

#include <gmock/gmock.h>

using namespace test;
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

const auto bad_flash = Values(zero_flash_row, zero_flash_block, no_flash_words, flash_divisor_zero);
const auto bad_eeprom = Values(zero_eeprom_row, zero_eeprom_block, no_eeprom_words);

} // namespace

TEST_P(ReadOfBadFlash, NamesTheAttribute)
{
    EXPECT_FALSE(bench.read());
    expect_refusal();
}

TEST_P(ReadOfBadFlash, DoesNotMatterWhenAllFlashIsLeftOutAndItHasBlocks)
{
    const bool without_blocks = GetParam().device == std::string("zero-flash-block");
    EXPECT_EQ(bench.read(false, false), !without_blocks);
    if (without_blocks) {
        expect_refusal();
    }
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

namespace
{

/// All rows from address 0 up to the end of flash.
Commands whole_flash_rows()
{
    Commands commands;
    for (unsigned int row = 0; row < 0x300; row += 0x40) {
        commands.push_back(read_flash_row(row));
    }
    return commands;
}

const char* const nothing_expected =
    "sig_error expected_response_length == 0 but max_attempts != 1 (nonsensical)";

} // namespace

TEST(ReadOfABlockThatReachesAboveFlash, AsksForWhatTheBlockHasOfFlash)
{
    ReadBench bench("flash-block-above-flash");
    EXPECT_TRUE(bench.read());
    const Commands eeprom{read_eeprom(0), read_eeprom(0x10), read_eeprom(0x20)};
    EXPECT_EQ(bench.line.sent(), joined(whole_flash_rows(), eeprom));
    EXPECT_EQ(bench.target.content(), content_of({{0x100, 0x40}, {0x1000, 0x30}}));
}

TEST(ReadOfABlockThatReachesAboveEeprom, IsRefused)
{
    ReadBench bench("eeprom-block-above-eeprom");
    EXPECT_FALSE(bench.read());
    EXPECT_THAT(bench.line.recorder.lines(),
                testing::ElementsAre(
                    "sig_error unusable geometry in device profile 'eeprom-block-above-eeprom': "
                    "eeprom_start_address is 0x00001000, expected a multiple of eeprom_block_size "
                    "4145"));
    EXPECT_THAT(bench.line.sent(), IsEmpty());
}

TEST(ReadOfRowsBelowAWord, FailsAtTheFirst)
{
    ReadBench bench("flash-row-below-word");
    EXPECT_FALSE(bench.read());
    EXPECT_THAT(bench.line.recorder.lines(),
                testing::ElementsAre(nothing_expected,
                                     "sig_error read() at 00000100 could not be performed"));
}

TEST(ReadOfEepromRowsBelowAWord, FailsAtTheFirstWhenFlashHasBeenRead)
{
    ReadBench bench("eeprom-row-below-word");
    EXPECT_FALSE(bench.read());
    EXPECT_EQ(bench.line.sent().size(), 8U);
    EXPECT_THAT(bench.line.recorder.operation(),
                testing::ElementsAre(nothing_expected,
                                     "sig_error eeprom read() at 00001000 could not be performed"));
    EXPECT_FALSE(bench.target.exists());
}

TEST(ReadOfEepromBlocksBelowAWord, AsksForRows)
{
    ReadBench bench("eeprom-block-below-word");
    EXPECT_TRUE(bench.read_range(0x1000, 0x1010));
    EXPECT_EQ(bench.line.sent(), Commands{read_eeprom(0, 8)});
}

TEST(ReadOfBlocksBelowAWord, ReadsARowAtEachUpToTheOneThatLeavesFlash)
{
    ReadBench bench("flash-block-below-word");
    EXPECT_FALSE(bench.read());
    EXPECT_EQ(bench.line.sent().size(), 0x1C1U);
    EXPECT_THAT(bench.line.recorder.operation(),
                testing::ElementsAre("sig_error start and end addresses correspond to different "
                                     "memory types",
                                     "sig_error read() at 000002c1 could not be performed"));
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
