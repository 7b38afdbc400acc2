#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"

using namespace test;

namespace
{

/// A device that fails in the middle of an operation. image.hex fills the page at 0x80 and a row of
/// EEPROM.
class ToolDeviceFailure : public QuadTest
{
protected:
    ToolDeviceFailure() { put_image("image.hex", {{0x80, m_lower + m_upper}, {0x1000, m_eeprom}}); }

    void load_device()
    {
        m_device.memory().preset(0x80, m_lower + m_upper);
        m_device.memory().preset(0x1000, m_eeprom);
    }

    /// A cell that has this value after every command, whatever was written.
    void stick_cell(unsigned int address, char value)
    {
        QObject::connect(
            &m_device, &sim::SimulatedDevice::command_received, &m_device,
            [this, address, value] { m_device.memory().preset(address, QByteArray(1, value)); });
    }

    /// The output of an upload that fails.
    static ToolResult not_uploaded(const QByteArray& text)
    {
        return failed("Uploading firmware\n" + text + "\nWrite-and-verify failure!\n");
    }

    const QByteArray m_lower = counting(0x20, 0x10);
    const QByteArray m_upper = counting(0x20, 0x60);
    const QByteArray m_eeprom = counting(0x10, 0xE0);
    const std::string m_write_lower = write_flash(0x80, m_lower);
    const std::string m_write_upper = write_flash(0xA0, m_upper);
    const std::string m_write_eeprom = write_eeprom(0x1000, m_eeprom);
    /// An upload that compares nothing, up to the read-back of its first row.
    const Commands m_lower_written{erase_page(0x80), m_write_lower, read_flash(0x80)};
    const Commands m_page_written = m_lower_written + Commands{m_write_upper, read_flash(0xA0)};
};

} // namespace

// A device that stops answering. The tool gives up on each command after twelve seconds.

TEST_F(ToolDeviceFailure, OfADeviceGoneSilentEndsARead)
{
    m_tool.put_file(QStringLiteral("out.hex"), "kept");
    reply_from(2, {});
    EXPECT_EQ(operate("-r out.hex -R"),
              failed(given_up_on_silence() + "read() at 00000080 could not be performed\n"
                                             "Failed to read memory, aborting...\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{read_flash(0x40), read_flash(0x60)} +
                                      Commands(attempts, read_flash(0x80))));
    EXPECT_EQ(file("out.hex"), "kept");
}

TEST_F(ToolDeviceFailure, OfADeviceGoneSilentEndsAVerificationWithoutAReport)
{
    load_device();
    reply_from(1, {});
    EXPECT_EQ(operate("-v image.hex -R"),
              failed("Verifying firmware\n" + progress({40}) + given_up_on_silence() +
                     "\nVerification failure!\n"));
    EXPECT_EQ(commands_of(m_device),
              Commands{read_flash(0x80)} + Commands(attempts, read_flash(0xA0)));
}

TEST_F(ToolDeviceFailure, OfADeviceGoneSilentEndsAWriteAndVerify)
{
    reply_from(3, {});
    EXPECT_EQ(operate("-e -wv image.hex -R"),
              not_uploaded(progress({0, 40}) + given_up_on_silence() +
                           "unable to write flash row at address 0x000000A0\n"));
    EXPECT_EQ(commands_of(m_device), m_lower_written + Commands(attempts, m_write_upper));
}

// Wrong answers, which cost no time.

TEST_F(ToolDeviceFailure, ByWrongAnswersEndsARangedRead)
{
    reply_from(1, frame("02"));
    EXPECT_EQ(operate("-l 0x120 0x1010 out.hex -R"),
              failed(given_up_on_wrong_answers() +
                     "eeprom read() at 00001000 could not be performed\n"
                     "Failed to read memory range, aborting...\n"));
    EXPECT_EQ(commands_of(m_device),
              Commands{read_flash(0x120)} + Commands(attempts, read_eeprom(0x1000)));
    EXPECT_EQ(file("out.hex"), "");
}

TEST_F(ToolDeviceFailure, ByAWrongAcknowledgementOfTheEraseEndsAWriteAndVerify)
{
    reply_from(1, frame("02"), 1);
    EXPECT_EQ(operate("-wv image.hex -R"),
              not_uploaded(progress({0}) + "unable to erase flash page at address 0x00000080\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{read_flash(0x80), erase_page(0x80)}));
}

TEST_F(ToolDeviceFailure, ByAWrongAcknowledgementOfARowEndsAWriteAndVerify)
{
    reply_from(3, frame("05"), 1);
    EXPECT_EQ(
        operate("-e -wv image.hex"),
        not_uploaded(progress({0, 40}) + "unable to write flash row at address 0x000000A0\n"));
    EXPECT_EQ(commands_of(m_device), m_lower_written + Commands{m_write_upper});
}

TEST_F(ToolDeviceFailure, ByAWrongAcknowledgementOfAnEepromRowEndsAWriteAndVerify)
{
    reply_from(5, frame("02"), 1);
    EXPECT_EQ(
        operate("-e -wv image.hex"),
        not_uploaded(progress({0, 40, 80}) + "unable to write EEPROM row at address 0x00001000\n"));
    EXPECT_EQ(commands_of(m_device), m_page_written + Commands{m_write_eeprom});
}

TEST_F(ToolDeviceFailure, ByAReadBackThatGoesWrongEndsAWriteAndVerify)
{
    reply_from(4, frame("02"));
    EXPECT_EQ(operate("-e -wv image.hex"),
              not_uploaded(progress({0, 40}) + given_up_on_wrong_answers() +
                           "unable to verify read flash row at address 0x000000A0\n"));
    EXPECT_EQ(commands_of(m_device),
              (m_lower_written + Commands{m_write_upper} + Commands(attempts, read_flash(0xA0))));
}

// Memory that does not hold what it should.

TEST_F(ToolDeviceFailure, ByACellThatTakesNoValueEndsAWriteAndVerifyAtItsRow)
{
    stick_cell(0x9F, '\x00');
    EXPECT_EQ(operate("-wv image.hex -R"),
              not_uploaded(progress({0}) + "Row verify failure at address 0x00000080\n"));
    EXPECT_EQ(commands_of(m_device), Commands{read_flash(0x80)} + m_lower_written);
    EXPECT_EQ(m_device.memory().read(0xA0, 0x20), QByteArray(0x20, '\xFF'));
}

TEST_F(ToolDeviceFailure, ByACellThatTakesNoValueGoesUnnoticedByAWriteButNotByAVerification)
{
    stick_cell(0xA0, '\x00');
    EXPECT_EQ(operate("-e -w image.hex -v image.hex -R"),
              failed(progress({0, 22, 44, 66, 88, 100}) +
                     "Erased all flash!\n"
                     "Now writingMemory written!\n"
                     "Verifying firmware\n" +
                     progress({40}) +
                     "data mismatch starting at address 0x000000A0\n"
                     "device data size 32: 00" +
                     QByteArray(" " + m_upper.mid(1).toHex(' ')).toUpper() +
                     "\nexpected data 32: " + m_upper.toHex(' ').toUpper() +
                     "\n\nVerification failure!\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{"0304400000", m_write_lower, m_write_upper,
                                               m_write_eeprom, read_flash(0x80)} +
                                      Commands(4, read_flash(0xA0))));
}

TEST_F(ToolDeviceFailure, ByAnEepromCellIsNotNoticedByAWriteAndVerify)
{
    stick_cell(0x1003, '\x00');
    EXPECT_EQ(operate("-e -wv image.hex"),
              succeeded("Uploading firmware\n" + progress({0, 40, 80, 100}) + "\nUploaded!\n"));
    EXPECT_EQ(m_device.memory().read(0x1003, 1), QByteArray(1, '\x00'));
}

// A row is read again for a verification only.

TEST_F(ToolDeviceFailure, ByASingleWrongReadBackEndsAWriteAndVerify)
{
    reply_from(2, frame(read_flash(0x80).c_str(), m_upper), 1);
    EXPECT_EQ(operate("-e -wv image.hex"),
              not_uploaded(progress({0}) + "Row verify failure at address 0x00000080\n"));
    EXPECT_EQ(commands_of(m_device), m_lower_written);
}

TEST_F(ToolDeviceFailure, ByASingleWrongReadHasAGoodPageRewritten)
{
    load_device();
    reply_from(1, frame(read_flash(0xA0).c_str(), m_lower), 1);
    EXPECT_EQ(operate("-wv image.hex"),
              succeeded("Uploading firmware\n" + progress({0, 40, 80, 100}) + "\nUploaded!\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{read_flash(0x80), read_flash(0xA0)} +
                                      m_page_written + Commands{m_write_eeprom}));
}

TEST_F(ToolDeviceFailure, OfAComparisonIsReportedAndHasThePageRewritten)
{
    load_device();
    reply_from(0, frame("02"), attempts);
    EXPECT_EQ(operate("-wv image.hex"),
              succeeded("Uploading firmware\n" + progress({0}) + given_up_on_wrong_answers() +
                        progress({40, 80, 100}) + "\nUploaded!\n"));
    EXPECT_EQ(commands_of(m_device),
              (Commands(attempts, read_flash(0x80)) + m_page_written + Commands{m_write_eeprom}));
}
