#include "memory/AddressedBLOB.h"
#include "tests/memory/Images.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>

using namespace test;

namespace
{

TEST(AddressedBlob, TakesItsChunkSize)
{
    const AddressedBLOB blob(256);
    EXPECT_EQ(blob.chunk_size(), 256U);
    EXPECT_EQ(blob.size(), 0U);
}

TEST(AddressedBlob, ClearGoesBackToAddress0)
{
    AddressedBLOB blob(16);
    blob.address = 0x1000;
    blob.write(0, counting(20));
    zarnBLOB& base = blob;
    base.clear();
    EXPECT_EQ(blob.address, 0U);
    EXPECT_EQ(blob.size(), 0U);
    EXPECT_EQ(blob.capacity(), 0U);
    EXPECT_EQ(blob.chunk_size(), 16U);
}

TEST(AddressedBlob, LoadingRawBytesGoesBackToAddress0)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("bytes.bin"));
    write_file(path, "bytes");
    AddressedBLOB blob(16);
    blob.address = 0x1000;
    EXPECT_EQ(blob.load_from_file(path), 5U);
    EXPECT_EQ(blob.address, 0U);
    EXPECT_EQ(bytes_of(blob), "bytes");
}

TEST(AddressedBlob, IsDestroyedThroughItsBase)
{
    std::unique_ptr<zarnBLOB> blob = std::make_unique<AddressedBLOB>(16);
    blob->write(0, counting(100));
    blob.reset(); // the leak checker of a sanitizer build sees what is not freed
    EXPECT_EQ(blob, nullptr);
}

TEST(AddressedBlob, OrderIsByUnsignedAddressAndStrict)
{
    AddressedBLOB low(16);
    AddressedBLOB high(16);
    low.address = 0x7FFFFFFF;
    high.address = 0x80000000;
    EXPECT_TRUE(AddressedBLOB::address_sort_compare(&low, &high));
    EXPECT_FALSE(AddressedBLOB::address_sort_compare(&high, &low));
    EXPECT_FALSE(AddressedBLOB::address_sort_compare(&low, &low));
    high.address = low.address;
    high.write(0, counting(3));
    EXPECT_FALSE(AddressedBLOB::address_sort_compare(&low, &high));
    EXPECT_FALSE(AddressedBLOB::address_sort_compare(&high, &low));
}

} // namespace
