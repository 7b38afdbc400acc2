#include "tests/device/MissingPort.h"
#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/RowName.h"

#include <QTemporaryDir>
#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

struct Match {
    const char* name;
    const char* device;
    Extents image;
    Commands commands;
    std::vector<unsigned int> processed;
    unsigned int total;
    bool encrypted = true;
    bool unencrypted = true;
};

const Match matches[] = {
    {"FlashRows",
     "small",
     {{0x100, 0x80}},
     {read_flash_row(0x100), read_flash_row(0x140)},
     {64, 128},
     128},
    {"BeginningOfAFlashRow",
     "small",
     {{0x100, 0x4A}},
     {read_flash_row(0x100), read_flash_row(0x140)},
     {64, 74},
     74},
    {"OneByte", "small", {{0x240, 1}}, {read_flash_row(0x240)}, {1}, 1},
    {"BesideTheRows",
     "small",
     {{0x110, 0x40}},
     {read_flash_row(0x100), read_flash_row(0x140)},
     {64},
     64},
    {"EepromRows", "small", {{0x1000, 20}}, {read_eeprom(0), read_eeprom(0x10)}, {16, 20}, 20},
    {"UpToTheEndOfFlash", "small", {{0x2C0, 0x40}}, {read_flash_row(0x2C0)}, {64}, 64},
    {"UpToTheEndOfFlashBesideTheRows",
     "small",
     {{0x2A0, 0x60}},
     {read_flash_row(0x280), read_flash_row(0x2C0), read_flash_row(0x2C0)},
     {64, 96},
     96},
    {"LastByteOfFlash", "small", {{0x2FF, 1}}, {read_flash_row(0x2C0)}, {1}, 1},
    {"UpToTheEndOfEeprom", "small", {{0x1025, 11}}, {read_eeprom(0x20)}, {11}, 11},
    {"BlobsInTheOrderOfTheImage",
     "small",
     {{0x1010, 4}, {0x200, 5}, {0x100, 6}},
     {read_eeprom(0x10), read_flash_row(0x200), read_flash_row(0x100)},
     {4, 9, 15},
     15},
    {"BlobsOutsideDoNotCount",
     "small",
     {{0x50, 16}, {0x100, 4}, {0x300, 4}, {0x1030, 4}},
     {read_flash_row(0x100)},
     {4},
     4},
    {"BlobThatBeginsInTheBootloaderDoesNotCount",
     "small",
     {{0xFF, 0x40}, {0x200, 4}},
     {read_flash_row(0x200)},
     {4},
     4},
    {"WithoutEncryptedFlash",
     "small",
     {{0x100, 4}, {0x180, 4}, {0x200, 4}, {0x1000, 4}},
     {read_flash_row(0x180), read_eeprom(0)},
     {4, 8},
     8,
     false,
     true},
    {"WithoutUnencryptedFlash",
     "small",
     {{0x100, 4}, {0x180, 4}, {0x200, 4}, {0x1000, 4}},
     {read_flash_row(0x100), read_flash_row(0x200), read_eeprom(0)},
     {4, 8, 12},
     12,
     true,
     false},
    {"EepromIsInNeitherArea",
     "small",
     {{0x100, 4}, {0x180, 4}, {0x1000, 4}},
     {read_eeprom(0)},
     {4},
     4,
     false,
     false},
    // A blob belongs to the area in which it begins.
    {"BlobFromEncryptedIntoUnencryptedFlash",
     "small",
     {{0x140, 0x80}},
     {read_flash_row(0x140), read_flash_row(0x180)},
     {64, 128},
     128,
     true,
     false},
    {"BlobFromUnencryptedIntoEncryptedFlash",
     "small",
     {{0x1C0, 0x80}},
     {read_flash_row(0x1C0), read_flash_row(0x200)},
     {64, 128},
     128,
     false,
     true},
    {"EepromBelowFlash",
     "eeprom-below-flash",
     {{0x100, 4}, {0x68, 8}},
     {read_flash_row(0x100), read_eeprom(0x20)},
     {4, 12},
     12},
};

class VerifyMatches : public testing::TestWithParam<Match>
{
};

struct Nothing {
    const char* name;
    const char* device;
    Extents image;
    bool encrypted = true;
    bool unencrypted = true;
};

const Nothing nothings[] = {
    {"NoBlob", "small", {}},
    {"BlobsOutside", "small", {{0x50, 16}, {0xFF, 0x40}, {0x300, 4}, {0x1030, 4}}},
    {"EncryptedFlashAlone", "small", {{0x100, 4}, {0x200, 4}}, false, true},
    {"UnencryptedFlashAlone", "small", {{0x180, 4}, {0x1C0, 0x80}}, true, false},
    {"FlashAlone", "small", {{0x100, 4}, {0x180, 4}}, false, false},
    {"EepromOfADeviceWithoutIt", "no-eeprom", {{0x1000, 4}}},
};

class VerifyOfNothing : public testing::TestWithParam<Nothing>
{
protected:
    static void expect_silent_failure(OperationBench& bench, bool encrypted, bool unencrypted)
    {
        const DebugMessages messages;
        EXPECT_FALSE(bench.verify(encrypted, unencrypted));
        EXPECT_THAT(bench.line.recorder.lines(), IsEmpty());
        EXPECT_EQ(messages.texts(), QStringList());
        EXPECT_THAT(bench.line.sent(), IsEmpty());
        EXPECT_FALSE(bench.line.port.is_open());
    }
};

} // namespace

TEST_P(VerifyMatches, AreReadRowByRowAndComplete)
{
    const Match& row = GetParam();
    OperationBench bench(row.device, row.image);
    bench.install_image();
    const DebugMessages messages;
    EXPECT_TRUE(bench.verify(row.encrypted, row.unencrypted));
    EXPECT_EQ(bench.line.sent(), row.commands);
    EXPECT_EQ(bench.line.recorder.operation(),
              then_complete(verify_progress(row.processed, row.total)));
    EXPECT_EQ(messages.texts(), QStringList());
}

INSTANTIATE_TEST_SUITE_P(, VerifyMatches, testing::ValuesIn(matches), row_name);

TEST_P(VerifyOfNothing, FailsSilentlyWithoutOpeningThePort)
{
    const Nothing& row = GetParam();
    OperationBench bench(row.device, row.image);
    expect_silent_failure(bench, row.encrypted, row.unencrypted);
}

INSTANTIATE_TEST_SUITE_P(, VerifyOfNothing, testing::ValuesIn(nothings), row_name);

TEST_F(VerifyOfNothing, InABlobWithoutBytesFailsSilentlyToo)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("empty_blob.hex")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(":00010000FF\n:00000001FF\n");
    file.close();
    OperationBench bench("small");
    ASSERT_TRUE(bench.image.load_from_hex_file(file.fileName(), {}));
    ASSERT_EQ(bench.image.blobs().size(), 1U);
    expect_silent_failure(bench, true, true);
}

TEST(Verify, LooksOnlyAtTheBytesOfTheImage)
{
    OperationBench bench("small", {{0x104, 4}, {0x1008, 3}});
    bench.line.simulated.memory().preset(0x100, counting(0x200));
    bench.line.simulated.memory().preset(0x1000, counting(0x30));
    bench.install_image();
    EXPECT_TRUE(bench.verify());
}

TEST(Verify, ChangesNothing)
{
    OperationBench bench("small", {{0x100, 0x200}, {0x1000, 0x30}});
    bench.install_image();
    EXPECT_TRUE(bench.verify());
    EXPECT_EQ(bench.line.simulated.memory().read(0x100, 0x200), bytes_at(0x100, 0x200));
    EXPECT_EQ(bench.line.simulated.memory().read(0x1000, 0x30), bytes_at(0x1000, 0x30));
}

TEST(Verify, SaysThatThePortCannotBeOpened)
{
    MissingPort missing("small");
    const MemoryMap image = image_of({{0x100, 4}});
    EXPECT_FALSE(missing.device.verify_firmware(&image, missing.abort, true, true));
    EXPECT_THAT(missing.recorder.lines(), ElementsAre(port_cannot_be_opened()));
}
