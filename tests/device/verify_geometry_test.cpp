#include "tests/device/GeometryFaultRows.h"
#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"

#include <gmock/gmock.h>

using namespace test;
using testing::IsEmpty;
using testing::Values;

namespace
{

/// An image that fits the device, and one for its other memory alone.
class VerifyOfBadFlash : public testing::TestWithParam<GeometryFault>
{
protected:
    static void expect_refusal_of(const Extents& image)
    {
        OperationBench bench(GetParam().device, image);
        bench.install_image();
        EXPECT_FALSE(bench.verify());
        EXPECT_EQ(bench.line.recorder.lines(), GetParam().message());
        EXPECT_THAT(bench.line.sent(), IsEmpty());
        EXPECT_FALSE(bench.line.port.is_open());
    }

    static void expect_success_of(const Extents& image, const Commands& commands,
                                  bool with_flash = true)
    {
        OperationBench bench(GetParam().device, image);
        bench.install_image();
        EXPECT_TRUE(bench.verify(with_flash, with_flash));
        EXPECT_EQ(bench.line.sent(), commands);
    }
};

class VerifyOfBadEeprom : public VerifyOfBadFlash
{
};

} // namespace

TEST_P(VerifyOfBadFlash, NamesTheAttribute)
{
    expect_refusal_of({{0x1000, 4}, {0x200, 4}});
}

TEST_P(VerifyOfBadFlash, DoesNotMatterForEeprom)
{
    expect_success_of({{0x1000, 4}}, {read_eeprom(0)});
}

TEST_P(VerifyOfBadFlash, DoesNotMatterWhenFlashIsExcluded)
{
    expect_success_of({{0x200, 4}, {0x1000, 4}}, {read_eeprom(0)}, false);
}

INSTANTIATE_TEST_SUITE_P(, VerifyOfBadFlash,
                         Values(zero_flash_row, zero_flash_block, no_flash_words,
                                flash_divisor_zero),
                         device_name);

TEST_P(VerifyOfBadEeprom, NamesTheAttribute)
{
    expect_refusal_of({{0x200, 4}, {0x1000, 4}});
}

TEST_P(VerifyOfBadEeprom, DoesNotMatterForFlash)
{
    expect_success_of({{0x200, 4}}, {read_flash_row(0x200)});
}

INSTANTIATE_TEST_SUITE_P(, VerifyOfBadEeprom,
                         Values(zero_eeprom_row, zero_eeprom_block, no_eeprom_words), device_name);

TEST(VerifyOfRowsBelowAWord, FailsAtTheFirst)
{
    OperationBench bench("flash-row-below-word", {{0x200, 4}});
    EXPECT_FALSE(bench.verify());
    EXPECT_THAT(bench.line.recorder.lines(),
                testing::ElementsAre(
                    "sig_error expected_response_length == 0 but max_attempts != 1 (nonsensical)"));
}

TEST(VerifyOfABlockThatReachesAboveFlash, AsksForWhatTheBlockHasOfFlash)
{
    OperationBench bench("flash-block-above-flash", {{0x200, 4}});
    bench.install_image();
    EXPECT_TRUE(bench.verify());
    EXPECT_EQ(bench.line.sent().size(), 12U); // all of flash, from address 0
    EXPECT_EQ(bench.line.sent().back(), read_flash_row(0x2C0));
}

TEST(VerifyOfMisplacedEeprom, IsRefusedWhereABlockBeginsBeforeIt)
{
    OperationBench bench("misplaced-eeprom", {{0x200, 4}, {0x1004, 2}});
    bench.install_image();
    EXPECT_FALSE(bench.verify());
    EXPECT_THAT(bench.line.recorder.lines(),
                testing::ElementsAre(
                    "sig_error unusable geometry in device profile 'misplaced-eeprom': "
                    "eeprom_start_address is 0x00001004, expected a multiple of eeprom_block_size "
                    "8"));
    EXPECT_THAT(bench.line.sent(), IsEmpty());
}
