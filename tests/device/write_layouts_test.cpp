#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Image.h"
#include "tests/support/Progress.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

// Devices with unusual layouts: a memory that is missing, in another place, or not a multiple
// of its row.

namespace
{

bool write_all(DeviceOnLine& line, const MemoryMap& map)
{
    const bool abort_requested = false;
    return line.device.write(&map, abort_requested, true, true);
}

} // namespace

TEST(WriteWithoutEeprom, BeginsAtTheImage)
{
    DeviceOnLine line("no-eeprom");
    EXPECT_TRUE(write_all(line, image({{0x900, counting(64)}})));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 80 04 00") + counting(64))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64}, 64));
}

TEST(WriteWithoutEeprom, MustBeginOnARow)
{
    DeviceOnLine line("no-eeprom");
    EXPECT_FALSE(write_all(line, image({{0x910, counting(64)}})));
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 64",
                            "sig_error address must be a multiple of row_size (64)",
                            "sig_error unable to write flash row at address 0x00000910"));
    EXPECT_THAT(line.sent(), IsEmpty());
}

TEST(WriteWithoutEeprom, EndsWithFlash)
{
    DeviceOnLine line("no-eeprom");
    EXPECT_TRUE(write_all(line, image({{0x3FC0, counting(128)}}, 128)));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 E0 1F 00") + counting(64))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64}, 64));
}

TEST(WriteWithEepromBelowFlash, BeginsAtTheImageAndStillDoesFlashFirst)
{
    DeviceOnLine line("eeprom-below-flash");
    EXPECT_TRUE(write_all(line, image({{0x110, counting(16)}, {0x900, counting(64)}})));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("02 01 80 04 00") + counting(64)),
                                         hex(bytes("05 10 10 00 00") + counting(16))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 64, 80}, 80));
}

TEST(WriteOfAnUnevenDevice, RefusesTheRowThatFlashCutsShort)
{
    DeviceOnLine line("uneven-ends");
    EXPECT_FALSE(write_all(line, image({{0x3FC0, counting(32)}})));
    const auto lines = line.recorder.operation();
    ASSERT_GT(lines.size(), 2U);
    EXPECT_EQ(*(lines.end() - 2), "sig_error start and end addresses correspond to different "
                                  "memory types");
    EXPECT_EQ(lines.back(), "sig_error unable to write flash row at address 0x00003FC0");
    EXPECT_THAT(line.sent(), IsEmpty());
}

TEST(WriteOfAnUnevenDevice, RefusesTheRowThatEepromCutsShort)
{
    DeviceOnLine line("uneven-ends");
    EXPECT_FALSE(write_all(line, image({{0x80E0, counting(24)}})));
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 16", "sig_upload_progress 16 of 16",
                            "sig_error start and end addresses correspond to different memory "
                            "types",
                            "sig_error unable to write EEPROM row at address 0x000080F0"));
}

TEST(WriteWithoutFlash, DoesEepromOnly)
{
    DeviceOnLine line("no-flash-range");
    EXPECT_TRUE(write_all(line, image({{0x1000, counting(64)}, {0x8000, counting(16)}})));
    EXPECT_THAT(line.sent(), ElementsAre(hex(bytes("05 10 00 00 00") + counting(16))));
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 16}, 16));
}
