#include "memory/MemoryMap.h"
#include "tests/examples/Examples.h"
#include "tests/support/DebugMessages.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <vector>

using namespace test;

namespace
{

struct ExampleImage {
    const char* device;
    const char* file;
    bool has_eeprom_data;
};

constexpr unsigned int chunk_size = 16;

class ExampleImageFile : public testing::TestWithParam<ExampleImage>
{
protected:
    void SetUp() override
    {
        const DebugMessages messages;
        m_device = example_device(QString::fromUtf8(GetParam().device));
        ASSERT_TRUE(m_image.load_from_hex_file(example_path(QString::fromUtf8(GetParam().file)),
                                               m_device->boundaries));
        ASSERT_EQ(messages.texts(), QStringList());
    }

    const Profile& device() const { return *m_device; }

    const MemoryMap& image() const { return m_image; }

    const MemoryMap::Blobs& blobs() const { return m_image.blobs(); }

    /// The lowest address of the image in a memory, if it has any there.
    std::optional<unsigned int> first_address(MemoryType t) const
    {
        for (const auto& blob : blobs()) { // sorted by address
            if (device().get_memory_type(blob->address) == t) {
                return blob->address;
            }
        }
        return std::nullopt;
    }

    unsigned int size_in(MemoryType t) const
    {
        unsigned int size = 0;
        for (const auto& blob : blobs()) {
            size += device().get_memory_type(blob->address) == t ? blob->size() : 0;
        }
        return size;
    }

private:
    std::unique_ptr<Profile> m_device;
    MemoryMap m_image{chunk_size};
};

TEST_P(ExampleImageFile, LiesWhollyInItsDevice)
{
    for (const auto& blob : blobs()) {
        EXPECT_NE(device().get_memory_type(blob->address), MEMORY_OTHER) << blob->address;
    }
}

TEST_P(ExampleImageFile, IsCutAtEveryAreaOfItsDevice)
{
    for (const auto& blob : blobs()) {
        const unsigned int first = blob->address;
        const unsigned int last = first + blob->size() - 1;
        EXPECT_EQ(device().get_memory_type(first), device().get_memory_type(last)) << first;
        EXPECT_EQ(device().is_encrypted_flash(first), device().is_encrypted_flash(last)) << first;
    }
}

TEST_P(ExampleImageFile, BeginsOnRowBoundaries)
{
    for (const MemoryType t : {MEMORY_FLASH, MEMORY_EEPROM}) {
        if (const auto first = first_address(t)) {
            EXPECT_EQ(*first % device().get_row_size(t), 0U);
        }
    }
}

TEST_P(ExampleImageFile, TouchesEveryRowOfItsFlashPages)
{
    const unsigned int row_size = device().get_row_size(MEMORY_FLASH);
    const unsigned int page_size = device().get_page_size(MEMORY_FLASH);
    QByteArray row;
    for (unsigned int page = device().get_min_address(MEMORY_FLASH);
         page < device().get_max_address(MEMORY_FLASH); page += page_size) {
        unsigned int rows_touched = 0;
        for (unsigned int offset = 0; offset < page_size; offset += row_size) {
            rows_touched += image().read(page + offset, row_size, row) ? 1U : 0U;
        }
        EXPECT_TRUE(rows_touched == 0 || rows_touched == page_size / row_size) << page;
    }
}

TEST_P(ExampleImageFile, HoldsAFewKibibytesOfFlashAndSomeEeprom)
{
    EXPECT_GE(size_in(MEMORY_FLASH), 1024U);
    EXPECT_LE(size_in(MEMORY_FLASH), 12 * 1024U);
    EXPECT_EQ(size_in(MEMORY_EEPROM) > 0, GetParam().has_eeprom_data);
}

INSTANTIATE_TEST_SUITE_P(Images, ExampleImageFile,
                         testing::Values(ExampleImage{"LARK-32", "blink.hex", true},
                                         ExampleImage{"SISKIN-64", "siskin-64.hex", false},
                                         ExampleImage{"DUNLIN-48", "dunlin-48.hex", true},
                                         ExampleImage{"WREN-32E", "wren-32e.hex", true},
                                         ExampleImage{"GODWIT-128", "godwit-128.hex", true},
                                         ExampleImage{"PLOVER-96", "plover-96.hex", true}),
                         [](const auto& row) { return test_name(row.param.device); });

/// Address and size of each blob.
using Extents = std::vector<std::pair<unsigned int, unsigned int>>;

Extents extents(const char* device, const char* file)
{
    MemoryMap image(chunk_size);
    EXPECT_TRUE(image.load_from_hex_file(example_path(QString::fromUtf8(file)),
                                         example_device(QString::fromUtf8(device))->boundaries));
    Extents result;
    result.reserve(image.blobs().size());
    for (const auto& blob : image.blobs()) {
        result.emplace_back(blob->address, blob->size());
    }
    return result;
}

TEST(ExampleImageExtents, OfBlinkHaveAGapAndRunIntoEncryptedFlash)
{
    EXPECT_EQ(extents("LARK-32", "blink.hex"),
              (Extents{{0x800, 3060}, {0x3C00, 0x400}, {0x4000, 2040 - 0x400}, {0x10000, 20}}));
}

TEST(ExampleImageExtents, OfWrenRunFromFlashIntoEeprom)
{
    EXPECT_EQ(extents("WREN-32E", "wren-32e.hex"),
              (Extents{{0x400, 1270}, {0x7F00, 0x100}, {0x8000, 20}}));
}

} // namespace
