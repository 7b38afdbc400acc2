#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/TargetFile.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

// A device whose table gives it flash from 0x100 to 0x300 and EEPROM from 0x280 to 0x340. What lies
// in both is flash; operations that go by the limits of EEPROM meet it there a second time.

namespace
{

class OverlappingMemories : public testing::Test
{
protected:
    bool write(const Extents& extents)
    {
        const MemoryMap image = image_of(extents);
        return line.device.write(&image, not_aborted, true, true);
    }

    bool write_range(const Extents& extents, unsigned int start, unsigned int end)
    {
        const MemoryMap image = image_of(extents);
        return line.device.write_range(&image, start, end, not_aborted, true, true);
    }

    bool read_range(unsigned int start, unsigned int end)
    {
        return line.device.read_range(target.file, not_aborted, true, true, start, end);
    }

    const bool not_aborted = false;
    DeviceOnLine line{"overlap"};
    TargetFile target;
};

std::string write_flash(unsigned int address, const Extents& image)
{
    return write_flash_row(address, flash_row_of(image, address));
}

/// EEPROM begins at 0x280.
std::string write_eeprom(unsigned int address, const Extents& image)
{
    return write_eeprom_row(address - 0x280, eeprom_row_of(image, address));
}

} // namespace

TEST_F(OverlappingMemories, AreReadAsFlashTwice)
{
    EXPECT_TRUE(line.device.read(target.file, not_aborted, true, true));
    Commands commands;
    for (unsigned int row = 0x100; row < 0x300; row += 0x40) {
        commands.push_back(read_flash_row(row));
    }
    commands = joined(commands, times(4, read_flash_row(0x280)));
    commands = joined(commands, times(4, read_flash_row(0x2C0)));
    EXPECT_EQ(line.sent(), joined(commands, {read_eeprom(0x80), read_eeprom(0x90),
                                             read_eeprom(0xA0), read_eeprom(0xB0)}));
    EXPECT_THAT(line.recorder.operation(), IsEmpty());
    EXPECT_TRUE(target.exists());
}

TEST_F(OverlappingMemories, AreReadInARangeOfEepromAlone)
{
    EXPECT_TRUE(read_range(0x300, 0x340));
    EXPECT_THAT(line.sent(), ElementsAre(read_eeprom(0x80), read_eeprom(0x90), read_eeprom(0xA0),
                                         read_eeprom(0xB0)));
}

TEST_F(OverlappingMemories, AreReadTwiceInARangeWithinBoth)
{
    EXPECT_TRUE(read_range(0x280, 0x2C0));
    EXPECT_THAT(line.sent(), ElementsAre(read_flash_row(0x280), read_flash_row(0x280)));
}

TEST_F(OverlappingMemories, AreNotReadInARangeThatLeadsOutOfFlash)
{
    EXPECT_FALSE(read_range(0x280, 0x340));
    EXPECT_THAT(line.sent(), ElementsAre(read_flash_row(0x280), read_flash_row(0x2C0)));
    EXPECT_THAT(
        line.recorder.operation(),
        ElementsAre("sig_error start and end addresses correspond to different memory types",
                    "sig_error eeprom read() at 00000280 could not be performed"));
    EXPECT_FALSE(target.exists());
}

TEST_F(OverlappingMemories, AreErasedAsFlash)
{
    EXPECT_TRUE(line.device.erase_all(true, true));
    EXPECT_THAT(line.sent(), ElementsAre(hex(memory_command(0x03, 2, 0x80)))); // steps of 0x100
}

TEST_F(OverlappingMemories, AreErasedInARangeUpToTheEndOfFlash)
{
    EXPECT_TRUE(line.device.erase_range(true, true, 0x280, 0x2F0));
    EXPECT_THAT(line.sent(), ElementsAre(erase_page(0x100))); // a first run counts from there
}

TEST_F(OverlappingMemories, AreNotErasedInARangeBeyondFlash)
{
    EXPECT_FALSE(line.device.erase_range(true, true, 0x280, 0x340));
    EXPECT_THAT(line.sent(), IsEmpty());
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_error unable to erase at 00000340 above max flash address "
                            "0x00000340"));
}

// An image that begins exactly where EEPROM does, or after it, begins the walk over flash rows.
TEST_F(OverlappingMemories, AreWrittenFromTheImageOnWhenItBeginsWhereEepromDoes)
{
    const Extents image{{0x280, 0x40}, {0x310, 0x10}};
    EXPECT_TRUE(write(image));
    EXPECT_THAT(line.sent(), ElementsAre(write_flash(0x280, image), write_eeprom(0x310, image)));
    EXPECT_EQ(line.recorder.operation(), then_complete(upload_progress({0, 0x40, 0x50}, 0x50)));
}

TEST_F(OverlappingMemories, AreWrittenFromTheBeginningOfFlashWhenTheImageBeginsBelowEeprom)
{
    const Extents image{{0x27F, 0x41}};
    EXPECT_TRUE(write(image));
    EXPECT_THAT(line.sent(), ElementsAre(write_flash(0x240, image), write_flash(0x280, image)));
    EXPECT_EQ(
        line.recorder.operation(),
        then_complete(upload_progress({0, 0x40, 0x80, 0xC0, 0x100, 0x140, 0x180, 0x1C0}, 0x1C0)));
}

TEST_F(OverlappingMemories, AreWrittenInARangeOfEepromAlone)
{
    const Extents image{{0x310, 4}};
    EXPECT_TRUE(write_range(image, 0x300, 0x320));
    EXPECT_THAT(line.sent(), ElementsAre(write_eeprom(0x300, image), write_eeprom(0x310, image)));
    EXPECT_EQ(line.recorder.operation(), then_complete(upload_progress({0, 0x10, 0x20}, 0x20)));
}

TEST_F(OverlappingMemories, AreNotWrittenASecondTimeInRowsOfEeprom)
{
    const Extents image{{0x280, 4}};
    EXPECT_FALSE(write_range(image, 0x280, 0x2C0));
    EXPECT_THAT(line.sent(), ElementsAre(write_flash(0x280, image)));
    EXPECT_EQ(line.recorder.operation(),
              then(then(upload_progress({0, 0x40}, 0x80),
                        "sig_error num_bytes must be exactly row_size (64)"),
                   "sig_error unable to write EEPROM row at address 0x00000280"));
}

TEST_F(OverlappingMemories, AreWrittenAndVerifiedByWhereEachPieceBegins)
{
    const Extents image{{0x280, 0x40}, {0x310, 4}};
    const MemoryMap map = image_of(image);
    EXPECT_TRUE(line.device.write_with_verify(&map, not_aborted, true, true, true));
    EXPECT_THAT(line.sent(), ElementsAre(erase_page(0x280), write_flash(0x280, image),
                                         read_flash_row(0x280), write_eeprom(0x310, image)));
    EXPECT_EQ(line.recorder.operation(),
              then_complete(upload_progress({0, 0x40, 0x80, 0x90}, 0x90)));
}

TEST_F(OverlappingMemories, AreVerifiedByWhereEachPieceBegins)
{
    OperationBench bench("overlap", {{0x280, 0x40}, {0x310, 4}});
    bench.install_image();
    EXPECT_TRUE(bench.verify());
    EXPECT_THAT(bench.line.sent(), ElementsAre(read_flash_row(0x280), read_eeprom(0x90)));
    EXPECT_EQ(bench.line.recorder.operation(), then_complete(verify_progress({0x40, 0x44}, 0x44)));
}
