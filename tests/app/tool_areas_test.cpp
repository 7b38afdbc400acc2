#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

using namespace test;

namespace
{

const QByteArray encrypted_row = counting(0x20, 0x10);
const QByteArray unencrypted_row = counting(0x20, 0x60);
const QByteArray eeprom_row = counting(0x10, 0xE0);

/// An operation without one of the areas, or without both.
struct AreaCase {
    const char* name;
    const char* arguments;
    Commands commands;
    QByteArray text; ///< between the version and the end
};

std::ostream& operator<<(std::ostream& stream, const AreaCase& row)
{
    return stream << row.arguments;
}

/// image.hex has a row on either side of the areas' border and one of EEPROM.
class ToolAreas : public QuadTest, public testing::WithParamInterface<AreaCase>
{
protected:
    ToolAreas()
    {
        const std::vector<Piece> image{
            {0x60, encrypted_row}, {0x80, unencrypted_row}, {0x1000, eeprom_row}};
        put_image("image.hex", image);
        for (const Piece& piece : image) {
            m_device.memory().preset(piece.address, piece.bytes);
        }
    }
};

QByteArray written(std::initializer_list<int> percentages)
{
    return progress(percentages) + "Now writingMemory written!\n";
}

QByteArray range_written(std::initializer_list<int> percentages)
{
    return progress(percentages) + "Now writingMemory range written!\n";
}

QByteArray verified(std::initializer_list<int> percentages)
{
    return "Verifying firmware\n" + progress(percentages) + "\nVerified!\n";
}

QByteArray uploaded(std::initializer_list<int> percentages)
{
    return "Uploading firmware\n" + progress(percentages) + "\nUploaded!\n";
}

const Commands eeprom_reads{read_eeprom(0x1000), read_eeprom(0x1010)};
const Commands encrypted_reads{read_flash(0x40), read_flash(0x60), read_flash(0x100),
                               read_flash(0x120)};
const Commands unencrypted_reads{read_flash(0x80), read_flash(0xA0), read_flash(0xC0),
                                 read_flash(0xE0)};
const std::string eeprom_write = write_eeprom(0x1000, eeprom_row);

const AreaCase erases[] = {
    {"unencrypted", "-e -xe", {"0302800000"}, "Erased all flash!\n"},
    {"encrypted", "-e -xu", {erase_page(0x40), erase_page(0x100)}, "Erased all flash!\n"},
    {"neither", "-e -xe -xu", {}, "Erased all flash!\n"},
};

const AreaCase writes[] = {
    {"unencrypted",
     "-w image.hex -xe",
     {write_flash(0x80, unencrypted_row), eeprom_write},
     written({0, 28, 42})},
    {"encrypted",
     "-w image.hex -xu",
     {write_flash(0x60, encrypted_row), eeprom_write},
     written({0, 40, 80, 100})},
    {"neither", "-w image.hex -xe -xu", {eeprom_write}, written({0, 100})},
    {"range_unencrypted",
     "-W 0x60 0xA0 image.hex -xe",
     {write_flash(0x80, unencrypted_row)},
     range_written({0, 50})},
    {"range_encrypted",
     "-W 0x60 0xA0 image.hex -xu",
     {write_flash(0x60, encrypted_row)},
     range_written({0, 50})},
    {"range_neither", "-W 0x60 0xA0 image.hex -xe -xu", {}, range_written({0})},
};

const AreaCase reads[] = {
    {"unencrypted", "-r out.hex -xe", unencrypted_reads + eeprom_reads, "Memory read!\n"},
    {"encrypted", "-r out.hex -xu", encrypted_reads + eeprom_reads, "Memory read!\n"},
    {"neither", "-r out.hex -xe -xu", eeprom_reads, "Memory read!\n"},
    {"range_unencrypted", "-l 0x60 0xA0 out.hex -xe", {read_flash(0x80)}, "Memory range read!\n"},
    {"range_encrypted", "-l 0x60 0xA0 out.hex -xu", {read_flash(0x60)}, "Memory range read!\n"},
};

const AreaCase verifications[] = {
    {"unencrypted",
     "-v image.hex -xe",
     {read_flash(0x80), read_eeprom(0x1000)},
     verified({66, 100})},
    {"encrypted", "-v image.hex -xu", {read_flash(0x60), read_eeprom(0x1000)}, verified({66, 100})},
    {"neither", "-v image.hex -xe -xu", {read_eeprom(0x1000)}, verified({100})},
};

const AreaCase uploads[] = {
    {"unencrypted",
     "-e -wv image.hex -xe",
     {erase_page(0x80), write_flash(0x80, unencrypted_row), read_flash(0x80), eeprom_write},
     uploaded({0, 40, 80, 100})},
    {"encrypted",
     "-e -wv image.hex -xu",
     {erase_page(0x40), write_flash(0x60, encrypted_row), read_flash(0x60), eeprom_write},
     uploaded({0, 40, 80, 100})},
    {"neither", "-e -wv image.hex -xe -xu", {eeprom_write}, uploaded({0, 100})},
};

} // namespace

TEST_P(ToolAreas, LeftOutAreNotTouched)
{
    EXPECT_EQ(operate(GetParam().arguments), succeeded(GetParam().text));
    EXPECT_EQ(commands_of(m_device), GetParam().commands);
}

INSTANTIATE_TEST_SUITE_P(Erase, ToolAreas, testing::ValuesIn(erases), row_name);
INSTANTIATE_TEST_SUITE_P(Write, ToolAreas, testing::ValuesIn(writes), row_name);
INSTANTIATE_TEST_SUITE_P(Read, ToolAreas, testing::ValuesIn(reads), row_name);
INSTANTIATE_TEST_SUITE_P(Verify, ToolAreas, testing::ValuesIn(verifications), row_name);
INSTANTIATE_TEST_SUITE_P(WriteAndVerify, ToolAreas, testing::ValuesIn(uploads), row_name);
