#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

using namespace test;

namespace
{

/// A device that holds image.hex: a page and a half of flash and an EEPROM row.
class ToolVerify : public QuadTest
{
protected:
    ToolVerify()
    {
        put_image("image.hex", {{0x80, m_flash}, {0x1000, m_eeprom}});
        m_device.memory().preset(0x80, m_flash);
        m_device.memory().preset(0x1000, m_eeprom);
    }

    static QByteArray answer(unsigned int address, const QByteArray& row)
    {
        return frame(read_flash(address).c_str(), row);
    }

    const QByteArray m_flash = counting(0x60, 0x10);
    const QByteArray m_eeprom = counting(0x10, 0xE0);
    const Commands m_all_rows{read_flash(0x80), read_flash(0xA0), read_flash(0xC0),
                              read_eeprom(0x1000)};
    const QByteArray m_wrong_row = QByteArray(0x20, '\x77');
};

/// An image that leaves nothing to compare.
struct NothingToCheck {
    const char* name;
    const char* arguments;
    std::vector<Piece> image;
};

std::ostream& operator<<(std::ostream& stream, const NothingToCheck& nothing)
{
    return stream << nothing.arguments;
}

const NothingToCheck nothing_to_check[] = {
    {"empty_file", "-v image.hex", {}},
    {"bootloader", "-v image.hex", {{0x00, counting(0x40)}}},
    {"beyond_flash", "-v image.hex", {{0x140, counting(0x20)}}},
    {"beyond_eeprom", "-v image.hex", {{0x1020, counting(0x10)}}},
    {"encrypted_left_out", "-xe -v image.hex", {{0x40, counting(8)}, {0x100, counting(8)}}},
    {"unencrypted_left_out", "-v image.hex -xu", {{0x80, counting(0x40)}}},
    {"missing_file", "-v missing.hex", {}},
};

class ToolVerifyOfNothing : public QuadTest, public testing::WithParamInterface<NothingToCheck>
{
};

} // namespace

TEST_F(ToolVerify, ReadsEveryRowOfTheImageAndEndsTheProgressLine)
{
    EXPECT_EQ(operate("-v image.hex"),
              succeeded("Verifying firmware\n" + progress({28, 57, 85, 100}) + "\nVerified!\n"));
    EXPECT_EQ(commands_of(m_device), m_all_rows);
}

TEST_F(ToolVerify, LooksAtTheImagesBytesOnly)
{
    put_image("image.hex", {{0x8A, m_flash.mid(0x0A, 0x0C)}});
    m_device.memory().preset(0x80, QByteArray(0x0A, '\x00'));
    m_device.memory().preset(0x96, QByteArray(0x20, '\x00'));
    EXPECT_EQ(operate("-v image.hex"),
              succeeded("Verifying firmware\n" + progress({100}) + "\nVerified!\n"));
}

TEST_F(ToolVerify, OfEepromAloneReadsNoFlash)
{
    put_image("image.hex", {{0x1000, m_eeprom.left(5)}});
    EXPECT_EQ(operate("-v image.hex -R"), succeeded("Verifying firmware\n" + progress({100}) +
                                                    "\nVerified!\nResetting device\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{read_eeprom(0x1000), reset}));
}

TEST_F(ToolVerify, ReportsAFlippedByteAfterTheProgress)
{
    m_device.memory().preset(0xA1, QByteArray(1, '\x08'));
    EXPECT_EQ(operate("-v image.hex -R"),
              failed("Verifying firmware\n" + progress({28}) +
                     "data mismatch starting at address 0x000000A0\n"
                     "device data size 32: 30 08 32 33 34 35 36 37 38 39 3A 3B 3C 3D 3E 3F "
                     "40 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F\n"
                     "expected data 32: 30 31 32 33 34 35 36 37 38 39 3A 3B 3C 3D 3E 3F "
                     "40 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F\n"
                     "\nVerification failure!\n"));
    EXPECT_EQ(commands_of(m_device), Commands{read_flash(0x80)} + Commands(4, read_flash(0xA0)));
}

TEST_F(ToolVerify, ReportsTheImagesBytesOfARowOnlyPartlyItsOwn)
{
    put_image("image.hex", {{0x1000, m_eeprom.left(3)}});
    m_device.memory().preset(0x1002, QByteArray(1, '\x00'));
    EXPECT_EQ(operate("-v image.hex"),
              failed("Verifying firmware\n"
                     "data mismatch starting at address 0x00001000\n"
                     "device data size 16: E0 E1 00 E3 E4 E5 E6 E7 E8 E9 EA EB EC ED EE EF\n"
                     "expected data 3: E0 E1 E2\n"
                     "\nVerification failure!\n"));
}

TEST_F(ToolVerify, ReadsARowAgainThatComesBackWrong)
{
    reply_from(1, answer(0xA0, m_wrong_row), 3);
    EXPECT_EQ(operate("-v image.hex"),
              succeeded("Verifying firmware\n" + progress({28, 57, 85, 100}) + "\nVerified!\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{read_flash(0x80)} + Commands(4, read_flash(0xA0)) +
                                      Commands{read_flash(0xC0), read_eeprom(0x1000)}));
}

TEST_F(ToolVerify, GivesUpARowThatComesBackWrongFourTimes)
{
    put_image("image.hex", {{0x80, counting(1, 0x11)}});
    reply_from(0, answer(0x80, m_wrong_row), 4);
    const QByteArray wrong_row = "77" + QByteArray(" 77").repeated(31);
    EXPECT_EQ(operate("-v image.hex"), failed("Verifying firmware\n"
                                              "data mismatch starting at address 0x00000080\n"
                                              "device data size 32: " +
                                              wrong_row +
                                              "\nexpected data 1: 11\n"
                                              "\nVerification failure!\n"));
    EXPECT_EQ(commands_of(m_device), Commands(4, read_flash(0x80)));
}

TEST_F(ToolVerify, OfABadFileSendsNothing)
{
    give_file("bad_checksum.hex");
    const ToolResult result = operate("-v bad_checksum.hex -R");
    EXPECT_EQ(result, failed("Could not process firmware file bad_checksum.hex as intel hex 32 "
                             "format during verify, aborting..."));
    EXPECT_EQ(heard_by(m_device), "");
    EXPECT_TRUE(result.err.contains("MemoryMap::read_record(): checksum mismatch"));
}

TEST_F(ToolVerify, LeavesTheImageFileAsItIs)
{
    const std::string before = file("image.hex");
    operate("-v image.hex");
    EXPECT_EQ(file("image.hex"), before);
}

TEST_P(ToolVerifyOfNothing, FailsWithoutAReasonAndSendsNothing)
{
    put_image("image.hex", GetParam().image);
    EXPECT_EQ(operate(GetParam().arguments),
              failed("Verifying firmware\n\nVerification failure!\n"));
    EXPECT_EQ(heard_by(m_device), "");
}

INSTANTIATE_TEST_SUITE_P(Images, ToolVerifyOfNothing, testing::ValuesIn(nothing_to_check),
                         row_name);
