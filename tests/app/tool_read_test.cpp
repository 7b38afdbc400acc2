#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"

using namespace test;

namespace
{

/// A device with data in every part of its memories.
class ToolRead : public QuadTest
{
protected:
    ToolRead()
    {
        m_device.memory().preset(0x00, QByteArray(0x40, '\x00'));
        m_device.memory().preset(0x40, m_encrypted);
        m_device.memory().preset(0x80, m_unencrypted);
        m_device.memory().preset(0x1000, m_eeprom);
    }

    const QByteArray m_encrypted = counting(0x40, 0x01);
    const QByteArray m_unencrypted = counting(0x60, 0x81);
    const QByteArray m_eeprom = counting(0x18, 0xE1);
    const QByteArray m_blank_row = QByteArray(0x20, '\xFF');
    const QByteArray m_blank_page = QByteArray(0x40, '\xFF');
};

/// The same on devices without one of these parts.
class ToolReadOfAnother : public ToolTest
{
};

/// The message for a range that lies outside.
QByteArray outside(const char* lower)
{
    return QByteArray("Cannot read to address range 0xA 0xA outside of flash addresses 0xA 0xA or "
                      "eeprom addresses 0xA 0xA\n")
        .replace("0xA", lower);
}

} // namespace

TEST_F(ToolRead, SavesAllMemoryButTheBootloaderWithoutAProgressLine)
{
    EXPECT_EQ(operate("-r out.hex"), succeeded("Memory read!\n"));
    EXPECT_EQ(commands_of(m_device), read_everything());
    EXPECT_EQ(file("out.hex"), saved_file({{0x40, m_encrypted},
                                           {0x80, m_unencrypted + m_blank_row},
                                           {0x100, m_blank_page},
                                           {0x1000, m_eeprom + QByteArray(8, '\xFF')}}));
}

TEST_F(ToolRead, LeavesTheDeviceAsItIs)
{
    operate("-r out.hex -R");
    EXPECT_EQ(commands_of(m_device), read_everything() + Commands{reset});
    EXPECT_EQ(m_device.memory().read(0x80, 0x60), m_unencrypted);
    EXPECT_EQ(m_device.memory().statistics().pages_erased, 0U);
}

TEST_F(ToolRead, OfARangeSavesThatRangeOnly)
{
    EXPECT_EQ(operate("-l 0x80 160 out.hex"), succeeded("Memory range read!\n"));
    EXPECT_EQ(commands_of(m_device), Commands{read_flash(0x80)});
    EXPECT_EQ(file("out.hex"), ":020000040000FA\n"
                               ":100080008182838485868788898A8B8C8D8E8F90E8\n"
                               ":020000040000FA\n"
                               ":100090009192939495969798999A9B9C9D9E9FA0D8\n"
                               ":00000001FF\n");
}

TEST_F(ToolRead, OfARangeReachesFromFlashIntoEeprom)
{
    EXPECT_EQ(operate("-l 0x120 0x1008 out.hex"), succeeded("Memory range read!\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{read_flash(0x120), read_eeprom(0x1000)}));
    EXPECT_EQ(file("out.hex"), saved_file({{0x120, m_blank_row}, {0x1000, m_eeprom.left(8)}}));
}

TEST_F(ToolRead, OfARangeMayLieInEepromOnly)
{
    EXPECT_EQ(operate("-l 0x1004 0x1020 out.hex"), succeeded("Memory range read!\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{read_eeprom(0x1000), read_eeprom(0x1010)}));
    EXPECT_EQ(file("out.hex"), saved_file({{0x1004, m_eeprom.mid(4) + QByteArray(8, '\xFF')}}));
}

TEST_F(ToolRead, OfARangeMustBeAlignedInFlash)
{
    EXPECT_EQ(operate("-l 0x80 0x9F out.hex -R"),
              failed("Start address 0x0000009F is in flash memory but is not but must be a "
                     "multiple of block size 0000009F\n"
                     "Failed to read memory range, aborting...\n"));
    EXPECT_EQ(heard_by(m_device), "");
}

TEST_F(ToolRead, OfARangeMustLieInsideTheMemories)
{
    EXPECT_EQ(operate("-l 0x20 0x80 out.hex"),
              failed(outside("0x00000020") + "Failed to read memory range, aborting...\n"));
    EXPECT_EQ(operate("-l 0x40 0x1021 out.hex"),
              failed(outside("0x00000040") + "Failed to read memory range, aborting...\n"));
    EXPECT_EQ(heard_by(m_device), "");
}

TEST_F(ToolRead, OfARangeWithoutMemoryFailsWithoutAReason)
{
    EXPECT_EQ(operate("-l 0x140 0x1000 out.hex"),
              failed("Failed to read memory range, aborting...\n"));
    EXPECT_EQ(heard_by(m_device), "");
}

TEST_F(ToolRead, AsksAgainWhenAnAnswerIsLost)
{
    reply_from(1, {}, 1);
    EXPECT_EQ(operate("-l 0x40 0x80 out.hex"), succeeded("Memory range read!\n"));
    EXPECT_EQ(commands_of(m_device),
              (Commands{read_flash(0x40), read_flash(0x60), read_flash(0x60)}));
    EXPECT_EQ(file("out.hex"), saved_file({{0x40, m_encrypted}}));
}

TEST_F(ToolReadOfAnother, FailsWithoutAReasonWhenNothingIsLeftToRead)
{
    m_tool.put_file(QStringLiteral("out.hex"), "kept");
    sim::SimulatedDevice device(solo());
    EXPECT_EQ(run(device, "-B 0203 -xe -xu -r out.hex -R"),
              exited(1, "Version set to 0x0203 successfully!Failed to read memory, aborting...\n"));
    EXPECT_EQ(heard_by(device), "");
    EXPECT_EQ(m_tool.file(QStringLiteral("out.hex")), "kept");
}

// Its rows are longer than its blocks: the row that begins in the last block ends beyond the flash.
TEST_F(ToolReadOfAnother, FailsAtARowThatFlashHoldsOnlyHalfOf)
{
    m_tool.put_file(QStringLiteral("out.hex"), "kept");
    sim::SimulatedDevice device(twin());
    EXPECT_EQ(run(device, "-B 0102 -r out.hex -R"),
              exited(1, "Version set to 0x0102 successfully!"
                        "start and end addresses correspond to different memory types\n"
                        "read() at 000003f0 could not be performed\n"
                        "Failed to read memory, aborting...\n"));
    ASSERT_EQ(device.commands().size(), 55U);
    EXPECT_EQ(small_digits(device.commands().back().payload), "0110f00100");
    EXPECT_EQ(m_tool.file(QStringLiteral("out.hex")), "kept");
}
