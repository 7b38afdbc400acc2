#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Image.h"
#include "tests/support/Replies.h"
#include "tests/support/Upload.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

// Addresses next to the end of the address space: nothing may wrap round to its beginning and go
// on for ever.

namespace
{

/// Writes a range with an image whose 16 bytes are at its start.
bool write_range(DeviceOnLine& line, unsigned int start, unsigned int end)
{
    const MemoryMap map = image({{start, counting(16)}});
    const bool abort_requested = false;
    return line.device.write_range(&map, start, end, abort_requested, true, true);
}

} // namespace

TEST(TopOfTheAddressSpace, IsErasedInOneRun)
{
    DeviceOnLine line("flash-to-the-top");
    line.simulated.set_reply_filter(acknowledge_everything());
    EXPECT_TRUE(line.device.erase_all(true, true));
    EXPECT_THAT(line.sent(), ElementsAre("03 10 00 00 00"));
}

TEST(TopOfTheAddressSpace, IsARangeToEraseThatWrapsToNothing)
{
    DeviceOnLine line("flash-to-the-top");
    EXPECT_TRUE(line.device.erase_range(true, true, 0xF0000000, 0xFFFFFFFF));
    EXPECT_THAT(line.sent(), IsEmpty());
    EXPECT_THAT(line.recorder.lines(), IsEmpty());
}

TEST(TopOfTheAddressSpace, IsReadOnIntoTheBottom)
{
    DeviceOnLine line("flash-to-the-top");
    line.simulated.memory().preset(0xFFFFF0, counting(16));
    line.simulated.memory().preset(0, counting(16, 16));
    QByteArray data;
    EXPECT_TRUE(line.device.read_memory(0xFFFFFFF0, 0x20, data));
    EXPECT_EQ(data, counting(32));
    EXPECT_THAT(line.sent(), ElementsAre("01 80 00 FF FF", "01 80 80 FF FF", "01 80 00 00 00",
                                         "01 80 80 00 00"));
}

TEST(TopOfTheAddressSpace, HoldsAFlashRowThatNoImageReaches)
{
    DeviceOnLine line("flash-to-the-top");
    EXPECT_TRUE(write_range(line, 0xFFFFFF00, 0xFFFFFFFF));
    EXPECT_EQ(line.sent().size(), 1U);
    EXPECT_EQ(line.recorder.operation(), completed_upload({0, 128, 256}, 128));
}

TEST(TopOfTheAddressSpace, IsNotWrittenFromABlobThatWraps)
{
    DeviceOnLine line("flash-to-the-top");
    const MemoryMap map = image({{0xFFFFFFF8, counting(16)}});
    const bool abort_requested = false;
    EXPECT_TRUE(line.device.write(&map, abort_requested, true, true));
    EXPECT_THAT(line.sent(), IsEmpty());
    EXPECT_EQ(line.recorder.operation(), completed_upload({0}, 0));
}

TEST(TopOfTheAddressSpace, HoldsAnEepromRowThatIsNotWhole)
{
    DeviceOnLine line("eeprom-to-the-top");
    line.simulated.set_reply_filter(acknowledge_everything());
    EXPECT_FALSE(write_range(line, 0xFFFFFFD0, 0xFFFFFFFF));
    EXPECT_EQ(line.sent().size(), 2U);
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_upload_progress 0 of 32", "sig_upload_progress 16 of 32",
                            "sig_upload_progress 32 of 32",
                            "sig_error start and end addresses correspond to different memory "
                            "types",
                            "sig_error unable to write EEPROM row at address 0xFFFFFFF0"));
}
