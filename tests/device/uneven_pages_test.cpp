#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/TargetFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/Replies.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

// Write-and-verify of devices whose pages, rows and words are not multiples of each other. It
// follows the table. Rows count from the start of their page.

namespace
{

Commands erase_and_program(unsigned int page, const Extents& image,
                           const std::vector<unsigned int>& rows)
{
    Commands commands{erase_page(page)};
    for (const unsigned int row : rows) {
        commands = joined(commands, program_row(row, flash_row_of(image, row)));
    }
    return commands;
}

/// An image of one record, which has no bytes.
MemoryMap image_of_record(const char* record)
{
    const TargetFile target(QStringLiteral("image.hex"));
    target.preset(QByteArray(record) + "\n:00000001FF\n");
    MemoryMap image(MemoryMap::default_chunk_size);
    EXPECT_TRUE(image.load_from_hex_file(target.file.fileName(), {}));
    return image;
}

} // namespace

TEST(PagesOfARowAndAHalf, AreWrittenBeyondTheirEndAndPassTheTotal)
{
    const Extents image{{0x180, 0x60}};
    OperationBench bench("page-and-a-half", image);
    EXPECT_TRUE(bench.write_with_verify(true));
    EXPECT_EQ(bench.line.sent(), erase_and_program(0x180, image, {0x180, 0x1C0}));
    EXPECT_EQ(bench.line.recorder.operation(),
              then_complete(upload_progress({0, 0x40, 0x80}, 0x60)));
}

TEST(PagesOfARowAndAHalf, AreLeftAloneWhenTheirRowsMatchAndCountAsAPage)
{
    const Extents image{{0x180, 0x60}};
    OperationBench bench("page-and-a-half", image);
    bench.install_image();
    bench.line.simulated.memory().preset(0x1E0, flash_filler(0x20));
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_THAT(bench.line.sent(), ElementsAre(read_flash_row(0x180), read_flash_row(0x1C0)));
    EXPECT_EQ(bench.line.recorder.operation(), then_complete(upload_progress({0, 0x60}, 0x60)));
}

// The page is erased, but not the part of its second row that lies in the next page.
TEST(PagesOfARowAndAHalf, DifferForAByteBeyondTheirEndWhichTheyCannotSet)
{
    const Extents image{{0x180, 0x60}};
    OperationBench bench("page-and-a-half", image);
    bench.install_image();
    bench.line.simulated.memory().preset(0x1E0, flash_filler(0x20).replace(0x1F, 1, "\x01"));
    EXPECT_FALSE(bench.write_with_verify(false));
    EXPECT_EQ(bench.line.sent(), joined({read_flash_row(0x180), read_flash_row(0x1C0)},
                                        erase_and_program(0x180, image, {0x180, 0x1C0})));
    EXPECT_EQ(bench.line.recorder.operation(),
              then(upload_progress({0, 0x40}, 0x60),
                   "sig_error Row verify failure at address 0x000001C0"));
}

TEST(PagesOfARowAndAHalf, FailWhereTheyBeginWithinARow)
{
    OperationBench bench("page-and-a-half", {{0x1E0, 4}});
    EXPECT_FALSE(bench.write_with_verify(true));
    EXPECT_THAT(bench.line.sent(), ElementsAre(erase_page(0x1E0)));
    EXPECT_THAT(bench.line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 96",
                            "sig_error address must be a multiple of row_size (64)",
                            "sig_error unable to write flash row at address 0x000001E0"));
}

TEST(PagesOfHalfARow, CountARowEachAndEndAtTwiceTheTotal)
{
    const Extents image{{0x200, 0x20}, {0x240, 4}};
    OperationBench bench("half-page", image);
    EXPECT_TRUE(bench.write_with_verify(true));
    EXPECT_EQ(bench.line.sent(), joined(erase_and_program(0x200, image, {0x200}),
                                        erase_and_program(0x240, image, {0x240})));
    EXPECT_EQ(bench.line.recorder.operation(),
              then_complete(upload_progress({0, 0x40, 0x80}, 0x40)));
}

TEST(PagesOfHalfARow, CountAPageEachWhenTheyAreLeftAlone)
{
    OperationBench bench("half-page", {{0x200, 0x20}, {0x240, 0x20}});
    bench.install_image();
    bench.line.simulated.memory().preset(0x220, flash_filler(0x20));
    bench.line.simulated.memory().preset(0x260, flash_filler(0x20));
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_THAT(bench.line.sent(), ElementsAre(read_flash_row(0x200), read_flash_row(0x240)));
    EXPECT_EQ(bench.line.recorder.operation(),
              then_complete(upload_progress({0, 0x20, 0x40}, 0x40)));
}

TEST(PagesOfHalfARow, FailAtTheSecondPageOfARow)
{
    const Extents image{{0x200, 0x40}};
    OperationBench bench("half-page", image);
    EXPECT_FALSE(bench.write_with_verify(true));
    EXPECT_EQ(bench.line.sent(),
              joined(erase_and_program(0x200, image, {0x200}), {erase_page(0x220)}));
    EXPECT_EQ(bench.line.recorder.operation(),
              then(then(upload_progress({0, 0x40}, 0x40),
                        "sig_error address must be a multiple of row_size (64)"),
                   "sig_error unable to write flash row at address 0x00000220"));
}

// Rows of 6 bytes and words of 4. A read asks for the whole words of a row, which is one, while a
// row or more is left of the block, and for a block's worth of words at the end.
TEST(RowsOfAWordAndAHalf, AreSentAsTheyAreAndReadBackInWholeWords)
{
    const Extents image{{0x60, 6}, {0x120, 6}};
    OperationBench bench("broken-words", image);
    EXPECT_TRUE(bench.write_with_verify(true));
    EXPECT_THAT(bench.line.sent(),
                ElementsAre("03 01 18 00 00", "02 01 18 00 00 " + hex(bytes_at(0x60, 6)),
                            "01 01 18 00 00", "01 01 19 00 00", "01 03 1A 00 00",
                            "05 01 00 00 00 " + hex(bytes_at(0x120, 6))));
    EXPECT_EQ(bench.line.recorder.operation(), then_complete(upload_progress({0, 6, 12, 18}, 18)));
}

TEST(RowsOfAWordAndAHalf, AreFilledUpWithTheBeginningOfAWord)
{
    const Extents image{{0x60, 1}, {0x120, 1}};
    OperationBench bench("broken-words", image);
    EXPECT_TRUE(bench.write_with_verify(true));
    EXPECT_EQ(bench.line.sent().at(1),
              "02 01 18 00 00 " + hex(bytes_at(0x60, 1)) + " CD EF 01 AB CD");
    EXPECT_EQ(bench.line.sent().back(),
              "05 01 00 00 00 " + hex(bytes_at(0x120, 1)) + " 00 00 00 5A 00");
}

TEST(RowsOfAWordAndAHalf, EndUpInTheWrongPlaceWhereTheyBeginWithinAWord)
{
    OperationBench bench("broken-words", {{0x60, 12}});
    bench.line.simulated.set_reply_filter(
        [](const sim::Command& command, const QByteArray& answer) {
            return command.kind == sim::Command::Kind::Write ? frame_of("02") : Reply{{answer}};
        });
    EXPECT_FALSE(bench.write_with_verify(true));
    EXPECT_EQ(bench.line.sent().at(5), "02 01 19 00 00 " + hex(bytes_at(0x66, 6)));
    EXPECT_EQ(
        bench.line.recorder.operation(),
        then(upload_progress({0, 6}, 12), "sig_error Row verify failure at address 0x00000066"));
}

TEST(RowsOfAWordAndAHalf, MatchAPageThatHoldsTheImage)
{
    OperationBench bench("broken-words", {{0x60, 12}});
    bench.install_image();
    EXPECT_TRUE(bench.write_with_verify(false));
    const Commands row{"01 01 18 00 00", "01 01 19 00 00", "01 03 1A 00 00"};
    EXPECT_EQ(bench.line.sent(), joined(row, row));
    EXPECT_EQ(bench.line.recorder.operation(), then_complete(upload_progress({0, 12}, 12)));
}

// An Intel HEX file may hold records without bytes. They touch the page that they lie in.
TEST(RecordWithoutBytesInMidPage, HasItsPageErasedAndNothingWritten)
{
    DeviceOnLine line("overlap");
    const MemoryMap image = image_of_record(":00011000EF");
    const bool abort = false;
    EXPECT_TRUE(line.device.write_with_verify(&image, abort, true, true, false));
    EXPECT_THAT(line.sent(), ElementsAre(read_flash_row(0x100), erase_page(0x100)));
    EXPECT_EQ(line.recorder.operation(), then_complete(upload_progress({0, 0x40, 0x80}, 0x80)));
}

TEST(RecordWithoutBytesInMidPage, IsNoneOfItsPagesWhereAPageBegins)
{
    DeviceOnLine line("overlap");
    const MemoryMap image = image_of_record(":000180007F");
    const bool abort = false;
    EXPECT_TRUE(line.device.write_with_verify(&image, abort, true, true, true));
    EXPECT_THAT(line.sent(), IsEmpty());
    EXPECT_EQ(line.recorder.operation(), then_complete(upload_progress({0}, 0)));
}
