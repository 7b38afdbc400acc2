#include "device/ZarnSerialDevice.h"
#include "tests/support/Bytes.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/RowName.h"

#include <gtest/gtest.h>

using namespace test;

namespace
{

struct Filling {
    const char* name;
    const char* device;
    MemoryType type;
    unsigned int num_bytes;
    const char* filling;
};

const Filling fillings[] = {
    {"Nothing", "sample", MEMORY_FLASH, 0, ""},
    {"OneByteIsAWholeWord", "sample", MEMORY_FLASH, 1, "AB CD"},
    {"FiveBytesAreThreeWords", "sample", MEMORY_FLASH, 5, "AB CD AB CD AB CD"},
    {"SixBytesAreThreeWordsToo", "sample", MEMORY_FLASH, 6, "AB CD AB CD AB CD"},
    {"EepromHasItsOwnFiller", "sample", MEMORY_EEPROM, 3, "5A 5A 5A"},
    {"FourByteWords", "wide-words", MEMORY_FLASH, 5, "11 22 33 44 11 22 33 44"},
    {"WordsLongerThanTheFiller", "wide-words", MEMORY_EEPROM, 7,
     "A1 A2 A3 A4 00 00 A1 A2 A3 A4 00 00"},
    {"OnlyTheTopOfTheFillerFitsAShortWord", "no-eeprom", MEMORY_FLASH, 4, "00 00 00 00"},
    {"AMemoryThatIsNotThere", "no-eeprom", MEMORY_EEPROM, 4, ""},
    {"NoMemoryAtAll", "sample", MEMORY_OTHER, 4, ""},
};

class Filler : public testing::TestWithParam<Filling>
{
};

} // namespace

TEST_P(Filler, IsLaidOutWordByWordFromItsTopByte)
{
    const Filling& row = GetParam();
    const ZarnSerialDevice device(QStringLiteral("none"), nullptr, 9600, false,
                                  version_named(row.device));
    QByteArray data = "what was there before";
    device.initialize_array(row.num_bytes, data, row.type);
    EXPECT_EQ(data, bytes(row.filling));
}

INSTANTIATE_TEST_SUITE_P(, Filler, testing::ValuesIn(fillings), row_name);

TEST(FillerBeyondAByteArray, IsNotMade)
{
    const ZarnSerialDevice device(QStringLiteral("none"), nullptr, 9600, false,
                                  version_named("sample"));
    QByteArray data = "what was there before";
    device.initialize_array(0x7FFFFE02, data, MEMORY_FLASH);
    EXPECT_EQ(data.size(), 0);
}
