#include "gang/ImageNumber.h"
#include "gang/SerialNumber.h"
#include "memory/MemoryMap.h"
#include "tests/gang/GangTest.h"
#include "tests/support/HexRecords.h"

#include <QFile>

using namespace test;

namespace
{

using gang::NumberSlot;
using Format = gang::NumberSlot::Format;

std::string hex_of(quint64 number, int size, Format format)
{
    const auto bytes = gang::bytes_of(number, {0, size, format});
    return bytes ? bytes->toHex().toStdString() : "does not fit";
}

TEST(SerialNumber, IsLaidOutInEitherByteOrder)
{
    EXPECT_EQ(hex_of(0x1234, 2, Format::LittleEndian), "3412");
    EXPECT_EQ(hex_of(0x1234, 4, Format::LittleEndian), "34120000");
    EXPECT_EQ(hex_of(0x1234, 4, Format::BigEndian), "00001234");
    EXPECT_EQ(hex_of(gang::largest_number, 8, Format::BigEndian), "001fffffffffffff");
}

TEST(SerialNumber, IsDigitsAsText)
{
    EXPECT_EQ(hex_of(42, 4, Format::DecimalText), "30303432");
    EXPECT_EQ(hex_of(9999, 4, Format::DecimalText), "39393939");
}

TEST(SerialNumber, IsNeverCut)
{
    EXPECT_EQ(hex_of(0xFF, 1, Format::LittleEndian), "ff");
    EXPECT_EQ(hex_of(0x100, 1, Format::LittleEndian), "does not fit");
    EXPECT_EQ(hex_of(0x10000, 2, Format::BigEndian), "does not fit");
    EXPECT_EQ(hex_of(10000, 4, Format::DecimalText), "does not fit");
}

class ImageNumber : public GangTest
{
protected:
    std::string problem(unsigned int address, int size) const
    {
        return gang::slot_problem(path(QStringLiteral("image.hex")),
                                  {address, size, Format::LittleEndian})
            .toStdString();
    }
};

TEST_F(ImageNumber, TakesAReservedPlace)
{
    EXPECT_EQ(problem(0xE0, 8), "");
    EXPECT_EQ(problem(0xE4, 4), "");
}

TEST_F(ImageNumber, IsRefusedOutsideOfTheImage)
{
    EXPECT_EQ(problem(0x180, 4), "the 4 bytes at 0x00000180 for the serial number lie outside "
                                 "the image; let it hold FF there");
    EXPECT_EQ(problem(0x101E, 4), "the 4 bytes at 0x0000101E for the serial number lie outside "
                                  "the image; let it hold FF there");
    EXPECT_EQ(problem(0xFFFFFFFC, 4), "the 4 bytes at 0xFFFFFFFC for the serial number lie outside "
                                      "the image; let it hold FF there");
}

TEST_F(ImageNumber, IsRefusedOverData)
{
    EXPECT_EQ(problem(0xE6, 4),
              "the 4 bytes at 0x000000E6 for the serial number already hold data of "
              "the image: FF FF 68 69");
}

TEST_F(ImageNumber, IsNotPutIntoWhatCannotBeCopied)
{
    const NumberSlot slot{0xE0, 4, Format::LittleEndian};
    const QByteArray bytes = QByteArray::fromHex("01020304");
    const QString image = path(QStringLiteral("image.hex"));
    const QString copy = path(QStringLiteral("copy.hex"));
    give_file("bad_checksum.hex", QStringLiteral("bad.hex"));
    EXPECT_FALSE(gang::copy_with_number(path(QStringLiteral("bad.hex")), copy, slot, bytes, {}));
    // A piece that ends with the last address cannot be read as a whole.
    put_file(QStringLiteral("top.hex"),
             hex_record(4, 0, QByteArray::fromHex("FFFF")) + hex_record(0, 0xFFFE, "ab") +
                 hex_record(4, 0, QByteArray(2, '\0')) + file(QStringLiteral("image.hex")));
    EXPECT_FALSE(gang::copy_with_number(path(QStringLiteral("top.hex")), copy, slot, bytes, {}));
    EXPECT_FALSE(QFile::exists(copy));
    EXPECT_FALSE(gang::copy_with_number(image, folder(), slot, bytes, {}));
    EXPECT_TRUE(gang::copy_with_number(image, copy, slot, bytes, {}));
}

TEST_F(ImageNumber, ChangesNothingElse)
{
    const NumberSlot slot{0xE2, 4, Format::BigEndian};
    const QString copy = path(QStringLiteral("copy.hex"));
    ASSERT_TRUE(gang::copy_with_number(path(QStringLiteral("image.hex")), copy, slot,
                                       QByteArray::fromHex("01020304"), {0xC0}));
    MemoryMap before(16);
    MemoryMap after(16);
    ASSERT_TRUE(before.load_from_hex_file(path(QStringLiteral("image.hex")), {}));
    ASSERT_TRUE(after.load_from_hex_file(copy, {}));
    EXPECT_EQ(after.size(), before.size());
    EXPECT_FALSE(after.has_overlaps());
    QByteArray expected;
    QByteArray found;
    before.read(0xA0, 0x60, expected);
    after.read(0xA0, 0x60, found);
    expected.replace(0x42, 4, QByteArray::fromHex("01020304"));
    EXPECT_EQ(found.toHex().toStdString(), expected.toHex().toStdString());
    before.read(0x1010, 0x10, expected);
    after.read(0x1010, 0x10, found);
    EXPECT_EQ(found.toHex().toStdString(), expected.toHex().toStdString());
}

} // namespace
