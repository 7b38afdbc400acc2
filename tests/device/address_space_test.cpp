#include "tests/device/DeviceOperations.h"
#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Image.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"

#include <QFile>
#include <gmock/gmock.h>

#include <utility>
#include <vector>

using namespace test;
using testing::ElementsAre;

// Addresses next to the end of the address space: an operation whose sums would wrap round to its
// beginning is refused before it sends anything.

namespace
{

Operation write_with_verify(unsigned int address)
{
    return [=](ZarnSerialDevice& device) {
        const MemoryMap map = image({{address, counting(16)}});
        return device.write_with_verify(&map, never, true, true, true);
    };
}

Operation verify(unsigned int address)
{
    return [=](ZarnSerialDevice& device) {
        const MemoryMap map = image({{address, counting(16)}});
        return device.verify_firmware(&map, never, true, true);
    };
}

Operation read_range(unsigned int start, unsigned int end)
{
    return [=](ZarnSerialDevice& device) {
        QFile file(QStringLiteral("never made.hex"));
        return device.read_range(file, never, true, true, start, end);
    };
}

struct Wrapping {
    const char* name;
    const char* device;
    Operation operation;
    const char* unit;
};

const Wrapping wrapping[] = {
    {"EraseAll", "flash-to-the-top",
     [](ZarnSerialDevice& device) { return device.erase_all(true, true); },
     "flash_page_size 268435456"},
    {"EraseAllOfFlashThatIsLeftOut", "flash-to-the-top",
     [](ZarnSerialDevice& device) { return device.erase_all(true, false); },
     "flash_page_size 268435456"},
    {"EraseRange", "flash-to-the-top",
     [](ZarnSerialDevice& device) {
         return device.erase_range(true, true, 0xF0000000, 0xFFFFFFFF);
     },
     "flash_page_size 268435456"},
    {"ErasePage", "flash-to-the-top",
     [](ZarnSerialDevice& device) { return device.erase_flash(0xF0000000, 1); },
     "flash_page_size 268435456"},
    {"ReadFromTheTopOnIntoTheBottom", "flash-to-the-top", read_memory(0xFFFFFFF0, 0x20),
     "flash_row_size 128"},
    {"ReadOfTheLastBlock", "flash-to-the-top", read_memory(0xFFFFFF00, 0x80),
     "flash_block_size 256"},
    {"ReadOfARange", "flash-to-the-top", read_range(0xFFFFFE00, 0xFFFFFFFF),
     "flash_block_size 256"},
    {"ReadOfARangeOfEeprom", "eeprom-to-the-top", read_range(0xFFFFFFF0, 0xFFFFFFFF),
     "eeprom_block_size 16"},
    {"WriteOfTheLastRow", "flash-to-the-top", write({{0xFFFFFFF8, counting(7)}}),
     "flash_row_size 128"},
    {"WriteOfABlobThatWraps", "flash-to-the-top", write({{0xFFFFFFF8, counting(16)}}),
     "flash_row_size 128"},
    {"WriteOfABlobThatWrapsInEeprom", "eeprom-to-the-top", write({{0xFFFFFFF8, counting(16)}}),
     "eeprom_row_size 16"},
    {"WriteOfARange", "flash-to-the-top", write_range(0xFFFFFF00, 0xFFFFFFFF),
     "flash_row_size 128"},
    {"WriteOfARangeOfEeprom", "eeprom-to-the-top", write_range(0xFFFFFFD0, 0xFFFFFFFF),
     "eeprom_row_size 16"},
    {"WriteWithVerifyOfTheLastPage", "flash-to-the-top", write_with_verify(0xF0000000),
     "flash_page_size 268435456"},
    {"WriteWithVerifyOfTheLastEepromRow", "eeprom-to-the-top", write_with_verify(0xFFFFFFEF),
     "eeprom_row_size 16"},
    {"VerifyOfTheLastRow", "flash-to-the-top", verify(0xFFFFFF80), "flash_row_size 128"},
    {"VerifyOfTheLastEepromRow", "eeprom-to-the-top", verify(0xFFFFFFF0), "eeprom_row_size 16"},
};

class AddressSpaceWraps : public testing::TestWithParam<Wrapping>
{
};

} // namespace

TEST_P(AddressSpaceWraps, AreRefusedBeforeAnythingIsSent)
{
    DeviceOnLine line(GetParam().device);
    EXPECT_FALSE(GetParam().operation(line.device));
    const std::string end = QByteArray(GetParam().device).startsWith("flash")
                                ? "flash_end_address_bytes"
                                : "eeprom_end_address";
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error unusable geometry in device profile '" +
                            std::string(GetParam().device) + "': " + end + " is 0xFFFFFFFF, and " +
                            GetParam().unit + " leads beyond address 0xFFFFFFFF"));
    EXPECT_FALSE(line.port.is_open());
}

INSTANTIATE_TEST_SUITE_P(, AddressSpaceWraps, testing::ValuesIn(wrapping), row_name);

TEST(AddressSpaceTop, CanBeReachedByWhatDoesNotWrap)
{
    DeviceOnLine line("flash-to-the-top");
    line.simulated.set_reply_filter(acknowledge_everything());
    EXPECT_TRUE(line.device.erase_range(true, true, 0, 0xEFFFFFFF));
    EXPECT_TRUE(write_range(0xFFFFFE00, 0xFFFFFF00)(line.device));
    EXPECT_EQ(line.sent().front(), "03 0F 00 00 00");
}

// Word addresses have 24 bits on the line.
TEST(AddressSpaceTop, IsReadUpToTheLastBlockThatEndsBelowIt)
{
    DeviceOnLine line("flash-to-the-top");
    QByteArray data;
    EXPECT_TRUE(line.device.read_memory(0xFFFFFE00, 0x100, data));
    EXPECT_EQ(data, QByteArray(0x100, '\xFF'));
    EXPECT_THAT(line.sent(), ElementsAre("01 80 00 FE FF", "01 80 80 FE FF"));
}
