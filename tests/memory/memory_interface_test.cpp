#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"
#include "tests/support/Interface.h"

#include <QFile>
#include <QTemporaryFile>
#include <gtest/gtest.h>

#include <type_traits>

using namespace test;

// The public members that other programs are written against: names, parameters in their order,
// types and constness. What has changed here does not compile.

namespace
{

using U32 = unsigned int;

// zarnBLOB
static_assert(std::is_constructible_v<zarnBLOB, U32>);
static_assert(std::is_polymorphic_v<zarnBLOB> && std::has_virtual_destructor_v<zarnBLOB>);
static_assert(is_exactly<void (zarnBLOB::*)()>(&zarnBLOB::clear));
static_assert(is_exactly<U32 (zarnBLOB::*)() const>(&zarnBLOB::capacity));
static_assert(is_exactly<U32 (zarnBLOB::*)() const>(&zarnBLOB::size));
static_assert(is_exactly<U32 (zarnBLOB::*)() const>(&zarnBLOB::chunk_size));
static_assert(has_overload<U32 (zarnBLOB::*)(U32, U32, char*) const>(&zarnBLOB::read));
static_assert(has_overload<U32 (zarnBLOB::*)(U32, U32, QByteArray&) const>(&zarnBLOB::read));
static_assert(has_overload<void (zarnBLOB::*)(U32, U32, const char*)>(&zarnBLOB::write));
static_assert(has_overload<void (zarnBLOB::*)(U32, QByteArray)>(&zarnBLOB::write));
static_assert(is_exactly<U32 (zarnBLOB::*)(QString)>(&zarnBLOB::load_from_file));
static_assert(is_exactly<U32 (zarnBLOB::*)(QString) const>(&zarnBLOB::save_to_file));
static_assert(is_exactly<QString (zarnBLOB::*)() const>(&zarnBLOB::to_hex_string));

// AddressedBLOB
using Blob = AddressedBLOB;
static_assert(std::is_base_of_v<zarnBLOB, Blob>);
static_assert(std::is_constructible_v<Blob, U32>);
static_assert(is_exactly<U32 Blob::*>(&Blob::address));
static_assert(is_exactly<void (Blob::*)()>(&Blob::clear), "overridden");
static_assert(is_exactly<bool (*)(const Blob*, const Blob*)>(&Blob::address_sort_compare));
static_assert(is_exactly<bool (Blob::*)(QFile&, IntelHexFileRecordType, unsigned short, QByteArray)
                             const>(&Blob::write_record_to_file));
static_assert(is_exactly<bool (Blob::*)(QFile&, unsigned short, QByteArray) const>(
    &Blob::write_data_record_to_file));
static_assert(is_exactly<bool (Blob::*)(QFile&, U32) const>(
    &Blob::write_extended_linear_address_record_to_file));
static_assert(is_exactly<bool (Blob::*)(QFile&) const>(&Blob::write_eof_to_file));
static_assert(
    is_exactly<bool (Blob::*)(QFile&, unsigned short) const>(&Blob::write_content_to_file));

// MemoryMap
using Map = MemoryMap;
static_assert(std::is_constructible_v<Map, U32>);
static_assert(is_exactly<int (Map::*)(U32) const>(&Map::get_blob_index));
static_assert(has_overload<bool (Map::*)(U32, U32, char*) const>(&Map::read));
static_assert(has_overload<bool (Map::*)(U32, U32, QByteArray&) const>(&Map::read));
static_assert(has_overload<void (Map::*)(U32, U32, const char*)>(&Map::write));
static_assert(has_overload<void (Map::*)(U32, QByteArray)>(&Map::write));
static_assert(is_exactly<U32 (Map::*)() const>(&Map::size));
static_assert(is_exactly<void (Map::*)()>(&Map::clear));
static_assert(is_exactly<bool (Map::*)()>(&Map::has_overlaps));
static_assert(
    is_exactly<bool (Map::*)(QFile&, unsigned char&) const>(&Map::read_hex_digit_from_file));
static_assert(is_exactly<bool (Map::*)(QFile&, unsigned char&, unsigned char&) const>(
    &Map::read_hex_byte_from_file));
static_assert(is_exactly<bool (Map::*)(QFile&, unsigned char, QByteArray&, unsigned char&) const>(
    &Map::read_hex_bytes_from_file));
static_assert(is_exactly<bool (Map::*)(QFile&, IntelHexFileRecordType&, unsigned short&,
                                       QByteArray&) const>(&Map::read_record_from_file));
static_assert(is_exactly<bool (Map::*)(QString, QSet<U32>)>(&Map::load_from_hex_file));
static_assert(is_exactly<bool (Map::*)(QString) const>(&Map::save_to_hex_file));

int number_of(IntelHexFileRecordType type)
{
    return static_cast<int>(type);
}

} // namespace

TEST(MemoryInterface, HasTheRecordTypesOfTheFileFormat)
{
    using Type = IntelHexFileRecordType;
    EXPECT_EQ(number_of(Type::Data), 0);
    EXPECT_EQ(number_of(Type::EndOfFile), 1);
    EXPECT_EQ(number_of(Type::ExtendedSegmentAddress), 2);
    EXPECT_EQ(number_of(Type::StartSegmentAddress), 3);
    EXPECT_EQ(number_of(Type::ExtendedLinearAddress), 4);
    EXPECT_EQ(number_of(Type::StartLinearAddress), 5);
}

TEST(MemoryInterface, ClearsABlobThroughItsBase)
{
    AddressedBLOB blob(16);
    blob.address = 0x1000;
    blob.write(0, "bytes");
    zarnBLOB& base = blob;
    base.clear();
    EXPECT_EQ(blob.address, 0U);
    EXPECT_EQ(blob.size(), 0U);
}

// Neighbouring parameters of the same type, whose order no compiler checks.

TEST(MemoryInterface, TakesAnOffsetBeforeACount)
{
    zarnBLOB blob(16);
    blob.write(3, 2, "abc");
    EXPECT_EQ(blob.size(), 5U);
    QByteArray bytes;
    EXPECT_EQ(blob.read(3, 1, bytes), 1U);
    EXPECT_EQ(bytes, "a");
    char byte = '?';
    EXPECT_EQ(blob.read(4, 1, &byte), 1U);
    EXPECT_EQ(byte, 'b');
}

TEST(MemoryInterface, TakesAnAddressBeforeACount)
{
    MemoryMap map(16);
    map.write(3, 2, "abc");
    EXPECT_EQ(blobs_of(map), (Blobs{{3, "6162"}}));
    QByteArray bytes;
    EXPECT_TRUE(map.read(4, 1, bytes));
    EXPECT_EQ(bytes, "b");
    char byte = '?';
    EXPECT_TRUE(map.read(3, 1, &byte));
    EXPECT_EQ(byte, 'a');
}

TEST(MemoryInterface, ReturnsAByteBeforeTheChecksum)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write("1F");
    file.seek(0);
    unsigned char value = 0;
    unsigned char checksum = 0x10;
    EXPECT_TRUE(MemoryMap(16).read_hex_byte_from_file(file, value, checksum));
    EXPECT_EQ(value, 0x1F);
    EXPECT_EQ(checksum, 0x2F);
}

TEST(MemoryInterface, AsksWhetherTheFirstBlobComesBeforeTheSecond)
{
    AddressedBLOB low(16);
    AddressedBLOB high(16);
    high.address = 1;
    EXPECT_TRUE(AddressedBLOB::address_sort_compare(&low, &high));
    EXPECT_FALSE(AddressedBLOB::address_sort_compare(&high, &low));
}
