#include "tests/device/TargetFile.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;

namespace
{

struct Example {
    const char* name;
    const char* device;
    const char* image;
    bool half_duplex = false;
};

// Of the folder in which this runs.
const Example examples[] = {
    {"Lark", "LARK-32", "blink.hex"},
    {"LarkOnAHalfDuplexLine", "LARK-32", "blink.hex", true},
    {"Siskin", "SISKIN-64", "siskin-64.hex"},
    {"Dunlin", "DUNLIN-48", "dunlin-48.hex"},
    {"Wren", "WREN-32E", "wren-32e.hex"},
    {"Godwit", "GODWIT-128", "godwit-128.hex"},
    {"Plover", "PLOVER-96", "plover-96.hex"},
};

constexpr char old_byte = '\x00';
constexpr char erased_byte = '\xFF';

/// Flash and EEPROM, from the beginning of each.
struct Memories {
    QByteArray flash;
    QByteArray eeprom;

    bool operator==(const Memories& other) const
    {
        return flash == other.flash && eeprom == other.eeprom;
    }
};

/// An example device that holds old bytes everywhere, and its image.
class RoundTrip : public testing::TestWithParam<Example>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(
            image.load_from_hex_file(QString::fromUtf8(GetParam().image), profile.boundaries));
        for (const MemoryType type : {MEMORY_FLASH, MEMORY_EEPROM}) {
            memory().preset(profile.get_min_address(type),
                            QByteArray(static_cast<int>(size_of(type)), old_byte));
        }
    }

    sim::DeviceMemory& memory() { return line.simulated.memory(); }

    unsigned int size_of(MemoryType type) const
    {
        return profile.get_max_address(type) - profile.get_min_address(type);
    }

    bool has_eeprom() const { return profile.has_memory_type(MEMORY_EEPROM); }

    unsigned int first_address() const
    {
        const unsigned int flash = profile.get_min_address(MEMORY_FLASH);
        return has_eeprom() ? qMin(flash, profile.get_min_address(MEMORY_EEPROM)) : flash;
    }

    unsigned int end_address() const
    {
        return qMax(profile.get_max_address(MEMORY_FLASH), profile.get_max_address(MEMORY_EEPROM));
    }

    Memories filled(char flash, char eeprom) const
    {
        return {QByteArray(static_cast<int>(size_of(MEMORY_FLASH)), flash),
                QByteArray(static_cast<int>(size_of(MEMORY_EEPROM)), eeprom)};
    }

    static QByteArray& bytes_of(Memories& memories, MemoryType type)
    {
        return type == MEMORY_FLASH ? memories.flash : memories.eeprom;
    }

    /// What is there with the image put over it.
    Memories with_image(Memories memories) const
    {
        for (const auto& blob : image.blobs()) {
            const MemoryType type = profile.get_memory_type(blob->address);
            const unsigned int offset = blob->address - profile.get_min_address(type);
            blob->read(0, blob->size(), bytes_of(memories, type).data() + static_cast<int>(offset));
        }
        return memories;
    }

    /// Whole flash pages or EEPROM rows become erased where the image touches them; so does what
    /// is written as filler, which is the erased state here.
    Memories with_units_erased(Memories memories, MemoryType type, unsigned int unit) const
    {
        const QByteArray erased(static_cast<int>(unit), erased_byte);
        for (const auto& blob : image.blobs()) {
            if (profile.get_memory_type(blob->address) != type) {
                continue;
            }
            const unsigned int start = blob->address - profile.get_min_address(type);
            for (unsigned int offset = start / unit * unit; offset < start + blob->size();
                 offset += unit) {
                bytes_of(memories, type)
                    .replace(static_cast<int>(offset), static_cast<int>(unit), erased);
            }
        }
        return memories;
    }

    Memories with_pages_erased(const Memories& memories) const
    {
        return with_units_erased(memories, MEMORY_FLASH, profile.get_page_size(MEMORY_FLASH));
    }

    Memories with_eeprom_rows_erased(const Memories& memories) const
    {
        return with_units_erased(memories, MEMORY_EEPROM, profile.get_row_size(MEMORY_EEPROM));
    }

    /// What a file says about the device.
    Memories content_of(const TargetFile& file) const
    {
        MemoryMap map(MemoryMap::default_chunk_size);
        EXPECT_TRUE(map.load_from_hex_file(file.file.fileName(), profile.boundaries));
        Memories memories = filled('?', '?');
        for (const MemoryType type : {MEMORY_FLASH, MEMORY_EEPROM}) {
            map.read(profile.get_min_address(type), size_of(type), bytes_of(memories, type));
        }
        return memories;
    }

    Memories content_of_device()
    {
        return {memory().read(profile.get_min_address(MEMORY_FLASH), size_of(MEMORY_FLASH)),
                memory().read(profile.get_min_address(MEMORY_EEPROM), size_of(MEMORY_EEPROM))};
    }

    bool write_with_verify()
    {
        return line.device.write_with_verify(&image, abort, true, true, false);
    }

    bool verify() { return line.device.verify_firmware(&image, abort, true, true); }

    static sim::Options options()
    {
        using Echo = sim::Options::Echo;
        return {sim::Entry::Version, GetParam().half_duplex ? Echo::Apart : Echo::None};
    }

    static Host host()
    {
        Host host;
        host.half_duplex = GetParam().half_duplex;
        return host;
    }

    const Profile& profile = profile_named(GetParam().device);
    DeviceOnLine line{GetParam().device, host(), options()};
    MemoryMap image{MemoryMap::default_chunk_size};
    TargetFile target;
    const bool abort = false;
};

} // namespace

TEST_P(RoundTrip, OfEraseWriteAndRead)
{
    ASSERT_TRUE(line.device.erase_all(true, true));
    ASSERT_TRUE(line.device.write(&image, abort, true, true));
    ASSERT_TRUE(line.device.read(target.file, abort, true, true));
    const Memories expected = with_image(with_eeprom_rows_erased(filled(erased_byte, old_byte)));
    EXPECT_TRUE(content_of(target) == expected);
    EXPECT_TRUE(content_of_device() == expected);
    EXPECT_EQ(memory().statistics().cells_programmed_without_erase, 0U);
    EXPECT_TRUE(verify());
}

TEST_P(RoundTrip, OfWriteWithVerifyAndVerify)
{
    ASSERT_TRUE(write_with_verify());
    EXPECT_TRUE(verify());
    EXPECT_TRUE(content_of_device() ==
                with_image(with_pages_erased(with_eeprom_rows_erased(filled(old_byte, old_byte)))));
    EXPECT_EQ(memory().statistics().cells_programmed_without_erase, 0U);
}

TEST_P(RoundTrip, OfRangesThatCoverBothMemories)
{
    const unsigned int start = first_address();
    const unsigned int end = end_address();
    ASSERT_TRUE(line.device.erase_all(true, true));
    ASSERT_TRUE(line.device.write_range(&image, start, end, abort, true, true));
    ASSERT_TRUE(line.device.read_range(target.file, abort, true, true, start, end));
    const Memories expected = with_image(filled(erased_byte, erased_byte));
    EXPECT_TRUE(content_of(target) == expected);
    EXPECT_TRUE(content_of_device() == expected);
}

TEST_P(RoundTrip, OfASecondWriteWithVerifyLeavesFlashAlone)
{
    ASSERT_TRUE(write_with_verify());
    const auto before = memory().statistics();
    ASSERT_TRUE(write_with_verify());
    EXPECT_EQ(memory().statistics().pages_erased, before.pages_erased);
    EXPECT_EQ(memory().statistics().flash_rows_programmed, before.flash_rows_programmed);
}

TEST_P(RoundTrip, OfAFlippedBitThatIsFoundAndRepairedWithOnePage)
{
    ASSERT_TRUE(write_with_verify());
    const Memories written = content_of_device();
    const unsigned int address = image.blobs().front()->address;
    const bool in_eeprom = profile.is_eeprom(address);
    const auto before = memory().statistics();
    memory().preset(address, QByteArray(1, static_cast<char>(memory().read(address, 1).at(0) ^ 1)));
    EXPECT_FALSE(verify());
    EXPECT_TRUE(write_with_verify());
    EXPECT_EQ(memory().statistics().pages_erased, before.pages_erased + (in_eeprom ? 0 : 1));
    EXPECT_TRUE(content_of_device() == written);
    EXPECT_TRUE(verify());
}

INSTANTIATE_TEST_SUITE_P(, RoundTrip, testing::ValuesIn(examples), row_name);
