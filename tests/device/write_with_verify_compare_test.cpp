#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/OperationFaults.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;

namespace
{

/// A device that holds the image, except for some bytes.
struct Compare {
    const char* name;
    Extents image;
    std::map<unsigned int, QByteArray> own_bytes;
    Commands commands;
    std::vector<unsigned int> processed;
};

const Extents two_pages{{0x100, 0x100}};
const QByteArray other = bytes("5A");

Commands programmed(const Extents& image, unsigned int page)
{
    return joined({erase_page(page)},
                  joined(program_row(page, flash_row_of(image, page)),
                         program_row(page + 0x40, flash_row_of(image, page + 0x40))));
}

const Compare compares[] = {
    {"Same",
     two_pages,
     {},
     {read_flash_row(0x100), read_flash_row(0x140), read_flash_row(0x180), read_flash_row(0x1C0)},
     {0, 128, 256}},
    {"FirstRowDiffers",
     two_pages,
     {{0x100, other}},
     joined(joined({read_flash_row(0x100)}, programmed(two_pages, 0x100)),
            {read_flash_row(0x180), read_flash_row(0x1C0)}),
     {0, 64, 128, 256}},
    {"LastByteOfTheSecondRowDiffers",
     two_pages,
     {{0x17F, other}},
     joined(joined({read_flash_row(0x100), read_flash_row(0x140)}, programmed(two_pages, 0x100)),
            {read_flash_row(0x180), read_flash_row(0x1C0)}),
     {0, 64, 128, 256}},
    {"SecondPageDiffers",
     two_pages,
     {{0x1C0, other}},
     joined({read_flash_row(0x100), read_flash_row(0x140), read_flash_row(0x180),
             read_flash_row(0x1C0)},
            programmed(two_pages, 0x180)),
     {0, 128, 192, 256}},
    {"BothPagesDiffer",
     two_pages,
     {{0x100, other}, {0x180, other}},
     joined(joined({read_flash_row(0x100)}, programmed(two_pages, 0x100)),
            joined({read_flash_row(0x180)}, programmed(two_pages, 0x180))),
     {0, 64, 128, 192, 256}},
    // A row without a byte of the image makes its page one to write, whatever the device holds.
    {"FirstRowHasNoByte",
     {{0x140, 0x40}},
     {},
     joined({read_flash_row(0x100), erase_page(0x100)}, program_row(0x140, bytes_at(0x140, 0x40))),
     {0, 64, 128}},
    {"SecondRowHasNoByte",
     {{0x100, 0x40}},
     {},
     joined({read_flash_row(0x100), read_flash_row(0x140), erase_page(0x100)},
            program_row(0x100, bytes_at(0x100, 0x40))),
     {0, 64, 128}},
    {"SecondRowHasNoByteAndTheDeviceFiller",
     {{0x100, 0x40}},
     {{0x140, flash_filler(0x40)}},
     joined({read_flash_row(0x100), read_flash_row(0x140), erase_page(0x100)},
            program_row(0x100, bytes_at(0x100, 0x40))),
     {0, 64, 128}},
    // Where the image has no byte its row asks for filler.
    {"DeviceHasFillerInTheRestOfARow",
     {{0x100, 0x7A}},
     {{0x17A, flash_filler(6)}},
     {read_flash_row(0x100), read_flash_row(0x140)},
     {0, 128}},
    {"DeviceHasNoFillerInTheRestOfARow",
     {{0x100, 0x7A}},
     {},
     joined({read_flash_row(0x100), read_flash_row(0x140)}, programmed({{0x100, 0x7A}}, 0x100)),
     {0, 64, 128}},
    // EEPROM is not compared.
    {"EepromSame",
     {{0x1004, 4}},
     {},
     {write_eeprom_row(0, eeprom_row_of({{0x1004, 4}}, 0x1000))},
     {0, 16}},
};

class WriteWithVerifyComparisons : public testing::TestWithParam<Compare>
{
};

} // namespace

TEST_P(WriteWithVerifyComparisons, DecideWhichPagesAreWritten)
{
    const Compare& row = GetParam();
    OperationBench bench("small", row.image);
    bench.install_image();
    for (const auto& [address, bytes] : row.own_bytes) {
        bench.line.simulated.memory().preset(address, bytes);
    }
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_EQ(bench.line.sent(), row.commands);
    EXPECT_EQ(bench.line.recorder.operation(),
              then_complete(upload_progress(row.processed, row.processed.back())));
}

INSTANTIATE_TEST_SUITE_P(, WriteWithVerifyComparisons, testing::ValuesIn(compares), row_name);

namespace
{

const Extents three_pages{{0x100, 0x180}};

/// Writes an image into an erased device once.
class WriteWithVerifyRepeated : public testing::Test
{
protected:
    WriteWithVerifyRepeated()
    {
        EXPECT_TRUE(bench.write_with_verify(false));
        bench.line.simulated.clear_commands();
        bench.line.recorder.clear();
    }

    OperationBench bench{"small", three_pages};
    const Commands all_rows{read_flash_row(0x100), read_flash_row(0x140), read_flash_row(0x180),
                            read_flash_row(0x1C0), read_flash_row(0x200), read_flash_row(0x240)};
};

} // namespace

TEST_F(WriteWithVerifyRepeated, LeavesMatchingPagesAlone)
{
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_EQ(bench.line.sent(), all_rows);
    EXPECT_EQ(bench.line.recorder.operation(),
              then_complete(upload_progress({0, 128, 256, 384}, 384)));
}

TEST_F(WriteWithVerifyRepeated, WritesEveryPageWhenNothingIsCompared)
{
    EXPECT_TRUE(bench.write_with_verify(true));
    EXPECT_EQ(bench.line.sent(),
              joined(joined(programmed(three_pages, 0x100), programmed(three_pages, 0x180)),
                     programmed(three_pages, 0x200)));
    EXPECT_EQ(bench.line.simulated.memory().read(0x100, 0x180), bytes_at(0x100, 0x180));
}

TEST_F(WriteWithVerifyRepeated, RepairsOnlyThePageOfAFlippedByte)
{
    sim::DeviceMemory& memory = bench.line.simulated.memory();
    memory.preset(0x1D3, QByteArray(1, static_cast<char>(~memory.read(0x1D3, 1).at(0))));
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_EQ(bench.line.sent(), joined(joined({read_flash_row(0x100), read_flash_row(0x140),
                                                read_flash_row(0x180), read_flash_row(0x1C0)},
                                               programmed(three_pages, 0x180)),
                                        {read_flash_row(0x200), read_flash_row(0x240)}));
    EXPECT_EQ(memory.read(0x100, 0x180), bytes_at(0x100, 0x180));
}

TEST(WriteWithVerifyComparing, TakesARowThatCannotBeReadForOneOfFiller)
{
    OperationBench bench("small", {{0x100, 0x80}});
    bench.install_image();
    bench.line.simulated.set_reply_filter(
        [](const sim::Command& command, const QByteArray& answer) {
            return command.sequence < read_attempts ? frame_of("00") : Reply{{answer}};
        });
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_EQ(bench.line.sent(), joined(times(read_attempts, read_flash_row(0x100)),
                                        programmed({{0x100, 0x80}}, 0x100)));
    EXPECT_EQ(bench.line.recorder.operation(),
              then_complete({"sig_upload_progress 0 of 128", gave_up_reading(),
                             "sig_upload_progress 64 of 128", "sig_upload_progress 128 of 128"}));
}

TEST(WriteWithVerifyComparing, LeavesAPageThatCannotBeReadAloneWhenTheImageAsksForFiller)
{
    OperationBench bench("small");
    bench.image.write(0x100, flash_filler(0x80));
    bench.line.simulated.set_reply_filter(unreadable_from(0));
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_EQ(bench.line.sent(), joined(times(read_attempts, read_flash_row(0x100)),
                                        times(read_attempts, read_flash_row(0x140))));
    EXPECT_EQ(bench.line.recorder.operation(),
              then_complete({"sig_upload_progress 0 of 128", gave_up_reading(), gave_up_reading(),
                             "sig_upload_progress 128 of 128"}));
}
