#include "tests/device/DeviceOperations.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/OperationImages.h"
#include "tests/device/TargetFile.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/RowName.h"

#include <gtest/gtest.h>

using namespace test;

// Neighbouring parameters of the same type, whose order no compiler checks. The device has flash
// from 0x100 to 0x300 in pages of 0x80 bytes, of which the one at 0x180 is unencrypted.

namespace
{

struct Call {
    const char* name;
    Operation run;
    Commands commands;
};

const Extents extents = {{0x100, 0x40}, {0x180, 0x40}};

std::string write_row(unsigned int address)
{
    return write_flash_row(address, flash_row_of(extents, address));
}

const Call ordered_calls[] = {
    // Steps of two pages, because the divisor is 2: both begin in the encrypted area.
    {"EraseAllOfTheEncryptedArea",
     [](ZarnSerialDevice& device) { return device.erase_all(true, false); },
     {"03 02 80 00 00"}},
    {"EraseTheUnencryptedAreaOfARange",
     [](ZarnSerialDevice& device) { return device.erase_range(false, true, 0x100, 0x1FF); },
     {erase_page(0x180)}},
    {"WriteTheUnencryptedArea",
     [](ZarnSerialDevice& device) {
         const MemoryMap image = image_of(extents);
         return device.write(&image, never, false, true);
     },
     {write_row(0x180)}},
    {"WriteTheUnencryptedAreaOfARange",
     [](ZarnSerialDevice& device) {
         const MemoryMap image = image_of(extents);
         return device.write_range(&image, 0x100, 0x1C0, never, false, true);
     },
     {write_row(0x180)}},
    {"ReadTheUnencryptedArea",
     [](ZarnSerialDevice& device) {
         TargetFile target;
         return device.read(target.file, never, false, true);
     },
     {read_flash_row(0x180), read_flash_row(0x1C0)}},
    {"ReadTheUnencryptedAreaOfARange",
     [](ZarnSerialDevice& device) {
         TargetFile target;
         return device.read_range(target.file, never, false, true, 0x100, 0x1C0);
     },
     {read_flash_row(0x180)}},
    {"ReadMemory", read_memory(0x180, 0x40), {read_flash_row(0x180)}},
    {"VerifyTheUnencryptedArea",
     [](ZarnSerialDevice& device) {
         const MemoryMap image = image_of(extents);
         return !device.verify_firmware(&image, never, false, true);
     },
     times(4, read_flash_row(0x180))}, // a row that differs is read four times
    {"WriteAndVerifyTheUnencryptedAreaWithoutComparing",
     [](ZarnSerialDevice& device) {
         const MemoryMap image = image_of(extents);
         return device.write_with_verify(&image, never, false, true, true);
     },
     joined({erase_page(0x180)}, program_row(0x180, flash_row_of(extents, 0x180)))},
    {"CompareTheUnencryptedArea",
     [](ZarnSerialDevice& device) {
         const MemoryMap image = image_of(extents);
         return device.write_with_verify(&image, never, false, true, false);
     },
     joined({read_flash_row(0x180), erase_page(0x180)},
            program_row(0x180, flash_row_of(extents, 0x180)))},
};

class ParameterOrder : public testing::TestWithParam<Call>
{
};

} // namespace

TEST_P(ParameterOrder, ShowsInWhatIsSent)
{
    DeviceOnLine line("no-eeprom");
    EXPECT_TRUE(GetParam().run(line.device));
    EXPECT_EQ(line.sent(), GetParam().commands);
}

INSTANTIATE_TEST_SUITE_P(, ParameterOrder, testing::ValuesIn(ordered_calls), row_name);
