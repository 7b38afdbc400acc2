#include "tests/device/MissingPort.h"
#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/OperationFaults.h"
#include "tests/support/RowName.h"

#include <QCoreApplication>
#include <QTimer>
#include <gmock/gmock.h>

using namespace test;

namespace
{

using Lines = SignalRecorder::Lines;
using ReplyFilter = sim::SimulatedDevice::ReplyFilter;

/// Two pages and an EEPROM row.
const Extents flash_and_eeprom{{0x100, 0x100}, {0x1010, 4}};

/// All that is sent for it when nothing is compared beforehand.
const Commands all_commands{
    erase_page(0x100),
    write_flash_row(0x100, bytes_at(0x100, 0x40)),
    read_flash_row(0x100),
    write_flash_row(0x140, bytes_at(0x140, 0x40)),
    read_flash_row(0x140),
    erase_page(0x180),
    write_flash_row(0x180, bytes_at(0x180, 0x40)),
    read_flash_row(0x180),
    write_flash_row(0x1C0, bytes_at(0x1C0, 0x40)),
    read_flash_row(0x1C0),
    write_eeprom_row(0x10, eeprom_row_of(flash_and_eeprom, 0x1010)),
};

/// The device answers the command of a sequence number wrongly.
struct Failure {
    const char* name;
    ReplyFilter (*filter)(unsigned int sequence);
    unsigned int sequence;
    std::vector<unsigned int> processed;
    Lines errors;
};

ReplyFilter damaging_one(unsigned int sequence)
{
    return damaging({sequence});
}

const Failure failures[] = {
    {"EraseOfTheFirstPage",
     wrong_acknowledgement_of,
     0,
     {0},
     {"sig_error unable to erase flash page at address 0x00000100"}},
    {"EraseOfTheSecondPage",
     wrong_acknowledgement_of,
     5,
     {0, 64, 128},
     {"sig_error unable to erase flash page at address 0x00000180"}},
    {"WriteOfAFirstRow",
     wrong_acknowledgement_of,
     1,
     {0},
     {"sig_error unable to write flash row at address 0x00000100"}},
    {"WriteOfALastRow",
     wrong_acknowledgement_of,
     8,
     {0, 64, 128, 192},
     {"sig_error unable to write flash row at address 0x000001C0"}},
    {"ReadingBack",
     unreadable_from,
     4,
     {0, 64},
     {gave_up_reading(), "sig_error unable to verify read flash row at address 0x00000140"}},
    {"ComparingWithWhatIsReadBack",
     damaging_one,
     2,
     {0},
     {"sig_error Row verify failure at address 0x00000100"}},
    {"ComparingTheLastRow",
     damaging_one,
     9,
     {0, 64, 128, 192},
     {"sig_error Row verify failure at address 0x000001C0"}},
    {"EepromRow",
     wrong_acknowledgement_of,
     10,
     {0, 64, 128, 192, 256},
     {"sig_error unable to write EEPROM row at address 0x00001010"}},
};

class WriteWithVerifyFailures : public testing::TestWithParam<Failure>
{
protected:
    /// All commands up to the one that fails, which is repeated if it is a read.
    static Commands commands()
    {
        const auto failing = all_commands.begin() + GetParam().sequence;
        Commands sent(all_commands.begin(), failing);
        const bool gives_up = GetParam().filter == unreadable_from;
        return joined(sent, times(gives_up ? read_attempts : 1, *failing));
    }
};

} // namespace

TEST_P(WriteWithVerifyFailures, EndTheOperation)
{
    const Failure& row = GetParam();
    OperationBench bench("small", flash_and_eeprom);
    bench.line.simulated.set_reply_filter(row.filter(row.sequence));
    EXPECT_FALSE(bench.write_with_verify(true));
    EXPECT_EQ(bench.line.sent(), commands());
    Lines expected = upload_progress(row.processed, 272);
    expected.insert(expected.end(), row.errors.begin(), row.errors.end());
    EXPECT_EQ(bench.line.recorder.operation(), expected);
}

INSTANTIATE_TEST_SUITE_P(, WriteWithVerifyFailures, testing::ValuesIn(failures), row_name);

namespace
{

/// An image that lies outside the device.
struct Misfit {
    const char* name;
    const char* device;
    Extents image;
    Commands commands;
    Lines signals_seen;
};

const Misfit misfits[] = {
    {"PageThatBeginsInTheBootloader",
     "late-start",
     {{0x140, 4}},
     {},
     {"sig_upload_progress 0 of 128", "sig_error unreadable memory area",
      // The image has no byte of the page's first row, and then:
      "sig_error address < 0x00000140",
      "sig_error unable to erase flash page at address 0x00000100"}},
    {"BlobBeyondTheEndOfFlash",
     "small",
     {{0x2F0, 0x20}},
     {read_flash_row(0x280), erase_page(0x280),
      write_flash_row(0x2C0, flash_row_of({{0x2F0, 0x20}}, 0x2C0)), read_flash_row(0x2C0)},
     {"sig_upload_progress 0 of 256", "sig_upload_progress 64 of 256",
      "sig_upload_progress 128 of 256", "sig_error unreadable memory area",
      "sig_error address + page_size > 0x00000300",
      "sig_error unable to erase flash page at address 0x00000300"}},
    {"BlobBeyondTheEndOfEeprom",
     "small",
     {{0x102F, 2}},
     {write_eeprom_row(0x20, eeprom_row_of({{0x102F, 2}}, 0x1020))},
     {"sig_upload_progress 0 of 32", "sig_upload_progress 16 of 32",
      "sig_error unwritable memory area",
      "sig_error unable to write EEPROM row at address 0x00001030"}},
};

class WriteWithVerifyOverruns : public testing::TestWithParam<Misfit>
{
};

} // namespace

TEST_P(WriteWithVerifyOverruns, EndTheOperation)
{
    const Misfit& row = GetParam();
    OperationBench bench(row.device, row.image);
    EXPECT_FALSE(bench.write_with_verify(false));
    EXPECT_EQ(bench.line.sent(), row.commands);
    EXPECT_EQ(bench.line.recorder.operation(), row.signals_seen);
}

INSTANTIATE_TEST_SUITE_P(, WriteWithVerifyOverruns, testing::ValuesIn(misfits), row_name);

TEST(WriteWithVerifyFailing, LeavesThePageErasedThatItCouldNotWrite)
{
    OperationBench bench("small", flash_and_eeprom);
    bench.line.simulated.memory().preset(0x100, QByteArray(0x200, '\0'));
    bench.line.simulated.set_reply_filter(damaging({2}));
    EXPECT_FALSE(bench.write_with_verify(true));
    const sim::DeviceMemory& memory = bench.line.simulated.memory();
    EXPECT_EQ(memory.read(0x140, 0x40), QByteArray(0x40, '\xFF'));
    EXPECT_EQ(memory.read(0x180, 0x180), QByteArray(0x180, '\0'));
}

TEST(WriteWithVerifyFailing, ReportsTheTotalBeforeThePortThatCannotBeOpened)
{
    MissingPort missing("small");
    const MemoryMap map = image_of(flash_and_eeprom);
    EXPECT_FALSE(missing.device.write_with_verify(&map, missing.abort, true, true, false));
    EXPECT_THAT(missing.recorder.lines(),
                testing::ElementsAre("sig_upload_progress 0 of 272", port_cannot_be_opened()));
}

// A page that was erased then could not be written any more.
TEST(WriteWithVerify, ErasesNothingOnceTheEventLoopsHaveBeenEnded)
{
    OperationBench bench("small", {{0x100, 0x80}});
    bench.line.simulated.set_reply_filter([](const sim::Command&, const QByteArray&) {
        QCoreApplication::quit();
        return no_reply();
    });
    EXPECT_FALSE(bench.write_with_verify(false));
    const auto begins_with = [](const char* text) {
        return testing::Contains(testing::StartsWith(text));
    };
    EXPECT_THAT(bench.line.recorder.lines(), begins_with("sig_encoded_command 55 55 01"));
    EXPECT_THAT(bench.line.recorder.lines(), Not(begins_with("sig_encoded_command 55 55 03")));
    QTimer::singleShot(0, QCoreApplication::instance(), &QCoreApplication::quit);
    QCoreApplication::exec();
}
