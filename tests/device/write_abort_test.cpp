#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Image.h"
#include "tests/support/Progress.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using testing::IsEmpty;

namespace
{

const std::string aborted = "upload_firmware() aborted by user";

/// A stop is requested as soon as this many bytes are processed.
struct Abort {
    const char* name;
    std::vector<std::pair<unsigned int, QByteArray>> pieces;
    unsigned int after;
    unsigned int rows_sent;
    SignalRecorder::Lines lines;
};

// Two rows of flash; two rows of EEPROM.
const std::pair<unsigned int, QByteArray> flash{0x800, counting(128)};
const std::pair<unsigned int, QByteArray> eeprom{0x8000, counting(32)};

const Abort aborts[] = {
    {"BeforeFlash", {flash, eeprom}, 0, 0, failed_upload({0}, 160, aborted)},
    {"BetweenFlashRows", {flash, eeprom}, 64, 1, failed_upload({0, 64}, 160, aborted)},
    {"BetweenFlashAndEeprom", {flash, eeprom}, 128, 2, failed_upload({0, 64, 128}, 160, aborted)},
    {"BetweenEepromRows", {flash, eeprom}, 144, 3, failed_upload({0, 64, 128, 144}, 160, aborted)},
    {"BeforeEeprom", {eeprom}, 0, 0, failed_upload({0}, 32, aborted)},
    {"TooLateAfterTheLastEepromRow",
     {flash, eeprom},
     160,
     4,
     completed_upload({0, 64, 128, 144, 160}, 160)},
    {"TooLateAfterTheLastFlashRow", {flash}, 128, 2, completed_upload({0, 64, 128}, 128)},
    {"WithNothingToWrite", {}, 0, 0, completed_upload({0}, 0)},
    {"BetweenRowsThatAreNotSent",
     {{0x8C0, counting(64)}},
     64,
     0,
     failed_upload({0, 64}, 256, aborted)},
};

class WriteAborts : public testing::TestWithParam<Abort>
{
protected:
    WriteAborts()
    {
        QObject::connect(&line.device, &ZarnSerialDevice::sig_upload_progress, &line.device,
                         [this](unsigned int processed, unsigned int) {
                             abort_requested = processed >= GetParam().after;
                         });
    }

    void expect_the_end(bool succeeded)
    {
        EXPECT_EQ(succeeded, GetParam().lines.back() == "sig_operation_complete");
        EXPECT_EQ(line.recorder.operation(), GetParam().lines);
        EXPECT_EQ(line.sent().size(), GetParam().rows_sent);
    }

    DeviceOnLine line{"sample"};
    bool abort_requested = false;
};

} // namespace

TEST_P(WriteAborts, EndItBeforeItsNextRow)
{
    const MemoryMap map = image(GetParam().pieces);
    expect_the_end(line.device.write(&map, abort_requested, true, true));
}

INSTANTIATE_TEST_SUITE_P(, WriteAborts, testing::ValuesIn(aborts), row_name);

TEST(AbortRequest, BeforeAWriteIsSeenWhenThePortIsOpen)
{
    DeviceOnLine line("sample");
    const MemoryMap map = image({flash});
    const bool abort_requested = true;
    EXPECT_FALSE(line.device.write(&map, abort_requested, true, true));
    EXPECT_EQ(line.recorder.lines(), failed_upload({0}, 128, aborted));
    EXPECT_TRUE(line.port.is_open());
}

TEST(AbortRequest, EndsAWalkOverRowsThatAreLeftOut)
{
    DeviceOnLine line("sample");
    // Rows in an area that is left out, up to one that is not: no progress before it.
    const MemoryMap map = image({{0x1000, counting(64)}});
    bool abort_requested = true;
    EXPECT_FALSE(line.device.write(&map, abort_requested, false, true));
    EXPECT_EQ(line.recorder.lines(), failed_upload({0}, 0x840, aborted));
}

TEST(AbortRequest, EndsAWriteOfARangeBeforeItsNextRow)
{
    DeviceOnLine line("sample");
    bool abort_requested = false;
    QObject::connect(
        &line.device, &ZarnSerialDevice::sig_upload_progress, &line.device,
        [&](unsigned int processed, unsigned int) { abort_requested = processed == 64; });
    const MemoryMap map = image({flash, eeprom});
    EXPECT_FALSE(line.device.write_range(&map, 0x800, 0x8020, abort_requested, true, true));
    EXPECT_EQ(line.recorder.operation(), failed_upload({0, 64}, 0x3800 + 0x20, aborted));
    EXPECT_EQ(line.sent().size(), 1U);
}

TEST(AbortRequest, BeforeAWriteOfARangeInEepromSendsNothing)
{
    DeviceOnLine line("sample");
    const MemoryMap map = image({eeprom});
    const bool abort_requested = true;
    EXPECT_FALSE(line.device.write_range(&map, 0x8000, 0x8020, abort_requested, true, true));
    EXPECT_EQ(line.recorder.lines(), failed_upload({0}, 32, aborted));
    EXPECT_THAT(line.sent(), IsEmpty());
}
