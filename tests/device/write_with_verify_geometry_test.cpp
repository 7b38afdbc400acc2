#include "tests/device/GeometryFaultRows.h"
#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"

#include <gmock/gmock.h>

using namespace test;
using testing::IsEmpty;
using testing::Values;

namespace
{

const Extents four_flash_bytes{{0x200, 4}};
const Extents four_eeprom_bytes{{0x1000, 4}};

class WriteOfBadFlash : public testing::TestWithParam<GeometryFault>
{
protected:
    static void expect_refusal(bool skip_compare)
    {
        OperationBench bench(GetParam().device, {{0x200, 4}, {0x1000, 4}});
        EXPECT_FALSE(bench.write_with_verify(skip_compare));
        EXPECT_EQ(bench.line.recorder.lines(), GetParam().message());
        EXPECT_THAT(bench.line.sent(), IsEmpty());
        EXPECT_FALSE(bench.line.port.is_open());
    }

    static void expect_success_of(const Extents& image, const Commands& commands,
                                  bool with_flash = true)
    {
        OperationBench bench(GetParam().device, image);
        EXPECT_TRUE(bench.write_with_verify(true, with_flash, with_flash));
        EXPECT_EQ(bench.line.sent(), commands);
    }
};

class WriteOfBadEeprom : public WriteOfBadFlash
{
};

const Commands eeprom_commands{write_eeprom_row(0, eeprom_row_of(four_eeprom_bytes, 0x1000))};
const Commands flash_commands =
    joined({erase_page(0x200)}, program_row(0x200, flash_row_of(four_flash_bytes, 0x200)));

} // namespace

TEST_P(WriteOfBadFlash, NamesTheAttribute)
{
    expect_refusal(false);
}

TEST_P(WriteOfBadFlash, NamesTheAttributeAlsoWhenNothingIsCompared)
{
    expect_refusal(true);
}

TEST_P(WriteOfBadFlash, DoesNotMatterForEeprom)
{
    expect_success_of(four_eeprom_bytes, eeprom_commands);
}

TEST_P(WriteOfBadFlash, DoesNotMatterWhenFlashIsExcluded)
{
    expect_success_of({{0x200, 4}, {0x1000, 4}}, eeprom_commands, false);
}

INSTANTIATE_TEST_SUITE_P(WithVerify, WriteOfBadFlash,
                         Values(zero_flash_row, zero_flash_block, no_flash_words,
                                flash_divisor_zero, zero_flash_page),
                         device_name);

TEST_P(WriteOfBadEeprom, NamesTheAttribute)
{
    expect_refusal(false);
}

TEST_P(WriteOfBadEeprom, DoesNotMatterForFlash)
{
    expect_success_of(four_flash_bytes, flash_commands);
}

INSTANTIATE_TEST_SUITE_P(WithVerify, WriteOfBadEeprom, Values(zero_eeprom_row, no_eeprom_words),
                         device_name);

TEST(WriteWithVerifyOfADeviceWithoutEepromBlocks, IsNoneOfItsBusiness)
{
    OperationBench bench("zero-eeprom-block", four_eeprom_bytes);
    EXPECT_TRUE(bench.write_with_verify(true));
    EXPECT_EQ(bench.line.sent(), eeprom_commands);
}

TEST(WriteWithVerifyByPagesLargerThanFlash, FailsToEraseTheFirst)
{
    OperationBench bench("page-above-flash", {{0x200, 4}, {0x1000, 4}});
    EXPECT_FALSE(bench.write_with_verify(true));
    EXPECT_THAT(bench.line.recorder.lines(),
                testing::ElementsAre("sig_upload_progress 0 of 785",
                                     "sig_error address < 0x00000100",
                                     "sig_error unable to erase flash page at address "
                                     "0x00000000"));
    EXPECT_THAT(bench.line.sent(), IsEmpty());
}

TEST(WriteWithVerifyOfMisplacedEeprom, WritesItUnread)
{
    OperationBench bench("misplaced-eeprom", {{0x1004, 2}});
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_EQ(bench.line.sent().size(), 1U);
}
