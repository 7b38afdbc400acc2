#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;

namespace
{

using Addresses = std::vector<unsigned int>;

/// What is written for an image when nothing is compared beforehand.
struct PageSet {
    const char* name;
    Extents image;
    Addresses pages;
    Addresses flash_rows;
    Addresses eeprom_rows;
    bool encrypted = true;
    bool unencrypted = true;
    QStringList messages = {};
};

QStringList warning(const char* address)
{
    return {QStringLiteral("\"Warning, blob at address 0x%1 with size %1\"  not in flash or eeprom "
                           "memory range")
                .arg(QLatin1String(address))};
}

QStringList skipped(unsigned int address, const char* area)
{
    return {QStringLiteral("Skipping  %1  in %2 area!")
                .arg(QString::number(address), QString::fromUtf8(area))};
}

// The pages begin at 0x100, 0x180 (the unencrypted one), 0x200 and 0x280 and have two rows each.
const PageSet page_sets[] = {
    {"EmptyImage", {}, {}, {}, {}},
    {"WholePage", {{0x100, 0x80}}, {0x100}, {0x100, 0x140}, {}},
    {"OneByte", {{0x17F, 1}}, {0x100}, {0x140}, {}},
    {"OneByteMoreThanAPage", {{0x100, 0x81}}, {0x100, 0x180}, {0x100, 0x140, 0x180}, {}},
    {"BlobAcrossThePageBorder", {{0x17C, 10}}, {0x100, 0x180}, {0x140, 0x180}, {}},
    {"BlobOverThreePages",
     {{0x17F, 0x82}},
     {0x100, 0x180, 0x200},
     {0x140, 0x180, 0x1C0, 0x200},
     {}},
    {"LastPage", {{0x2C0, 0x40}}, {0x280}, {0x2C0}, {}},
    {"TwoBlobsInOnePage", {{0x100, 4}, {0x170, 4}}, {0x100}, {0x100, 0x140}, {}},
    {"TwoBlobsInOneRow", {{0x104, 4}, {0x110, 4}}, {0x100}, {0x100}, {}},
    {"PagesFromTheLowestUp", {{0x280, 4}, {0x100, 4}}, {0x100, 0x280}, {0x100, 0x280}, {}},
    {"BlobsOutside",
     {{0xAB, 8}, {0x100, 4}, {0x300, 4}, {0x1030, 4}},
     {0x100},
     {0x100},
     {},
     true,
     true,
     warning("000000ab") + warning("00000300") + warning("00001030")},
    {"BlobFromTheBootloaderIntoFlash", {{0xFF, 0x40}}, {}, {}, {}, true, true, warning("000000ff")},
    {"WithoutEncryptedFlash",
     {{0x100, 4}, {0x180, 4}, {0x2C0, 4}, {0x1000, 4}},
     {0x180},
     {0x180},
     {0x1000},
     false,
     true,
     skipped(256, "encrypted") + skipped(704, "encrypted")},
    {"WithoutUnencryptedFlash",
     {{0x100, 4}, {0x180, 4}, {0x2C0, 4}, {0x1000, 4}},
     {0x100, 0x280},
     {0x100, 0x2C0},
     {0x1000},
     true,
     false,
     skipped(384, "unencrypted")},
    {"WithoutFlash",
     {{0x100, 4}, {0x180, 4}, {0x1000, 4}},
     {},
     {},
     {0x1000},
     false,
     false,
     skipped(256, "encrypted") + skipped(384, "unencrypted")},
    // A blob belongs to the area in which it begins.
    {"BlobFromEncryptedIntoUnencryptedFlash",
     {{0x17C, 10}},
     {0x100, 0x180},
     {0x140, 0x180},
     {},
     true,
     false},
    {"BlobFromUnencryptedIntoEncryptedFlash",
     {{0x1FF, 2}},
     {0x180, 0x200},
     {0x1C0, 0x200},
     {},
     false,
     true},
    // All image bytes of a page are written with it.
    {"SkippedBlobThatReachesIntoAPage",
     {{0x17C, 10}, {0x190, 4}},
     {0x180},
     {0x180},
     {},
     false,
     true,
     skipped(380, "encrypted")},
    {"EepromBesideItsRow", {{0x1001, 3}}, {}, {}, {0x1000}},
    {"EepromAcrossTheRowBorder", {{0x100F, 2}}, {}, {}, {0x1000, 0x1010}},
    {"AllOfEeprom", {{0x1000, 0x30}}, {}, {}, {0x1000, 0x1010, 0x1020}},
    {"TwoBlobsInOneEepromRow", {{0x1001, 3}, {0x1008, 2}}, {}, {}, {0x1000, 0x1000}},
    {"EepromInTheOrderOfTheImage", {{0x1020, 1}, {0x1000, 1}}, {}, {}, {0x1020, 0x1000}},
    {"EepromAfterFlash", {{0x1010, 1}, {0x200, 1}}, {0x200}, {0x200}, {0x1010}},
};

class WriteWithVerifyPages : public testing::TestWithParam<PageSet>
{
protected:
    static Commands commands()
    {
        const PageSet& set = GetParam();
        Commands all;
        for (const unsigned int page : set.pages) {
            all.push_back(erase_page(page));
            for (const unsigned int row : set.flash_rows) {
                if (row - page < 0x80) {
                    all = joined(all, program_row(row, flash_row_of(set.image, row)));
                }
            }
        }
        for (const unsigned int row : set.eeprom_rows) {
            all.push_back(write_eeprom_row(row - 0x1000, eeprom_row_of(set.image, row)));
        }
        return all;
    }

    /// Each row of a page counts, whether it is written or not.
    static SignalRecorder::Lines signals_expected()
    {
        std::vector<unsigned int> processed{0};
        for (std::size_t i = 0; i < 2 * GetParam().pages.size(); ++i) {
            processed.push_back(processed.back() + 0x40);
        }
        for (std::size_t i = 0; i < GetParam().eeprom_rows.size(); ++i) {
            processed.push_back(processed.back() + 0x10);
        }
        return then_complete(upload_progress(processed, processed.back()));
    }
};

} // namespace

TEST_P(WriteWithVerifyPages, AreErasedAndWrittenUncompared)
{
    const PageSet& set = GetParam();
    OperationBench bench("small", set.image);
    const DebugMessages messages;
    EXPECT_TRUE(bench.write_with_verify(true, set.encrypted, set.unencrypted));
    EXPECT_EQ(bench.line.sent(), commands());
    EXPECT_EQ(bench.line.recorder.operation(), signals_expected());
    EXPECT_EQ(messages.texts(), set.messages);
    EXPECT_TRUE(bench.line.port.is_open());
}

INSTANTIATE_TEST_SUITE_P(, WriteWithVerifyPages, testing::ValuesIn(page_sets), row_name);

TEST(WriteWithVerify, LeavesTheRestOfAPageErasedAndAllOtherPagesAsTheyAre)
{
    OperationBench bench("small", {{0x190, 4}, {0x1012, 3}});
    sim::DeviceMemory& memory = bench.line.simulated.memory();
    memory.preset(0x100, QByteArray(0x200, '\x11'));
    memory.preset(0x1000, QByteArray(0x30, '\x22'));
    EXPECT_TRUE(bench.write_with_verify(false));
    EXPECT_EQ(memory.read(0x100, 0x80), QByteArray(0x80, '\x11'));
    EXPECT_EQ(memory.read(0x180, 0x40), flash_row_of({{0x190, 4}}, 0x180));
    EXPECT_EQ(memory.read(0x1C0, 0x40), QByteArray(0x40, '\xFF'));
    EXPECT_EQ(memory.read(0x200, 0x100), QByteArray(0x100, '\x11'));
    EXPECT_EQ(memory.read(0x1000, 0x10), QByteArray(0x10, '\x22'));
    EXPECT_EQ(memory.read(0x1010, 0x10), eeprom_row_of({{0x1012, 3}}, 0x1010));
    EXPECT_EQ(memory.read(0x1020, 0x10), QByteArray(0x10, '\x22'));
    EXPECT_EQ(memory.statistics().cells_programmed_without_erase, 0U);
}
