#include "sim/faults/ByteDamage.h"
#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"

using namespace test;

namespace
{

using sim::Command;
using sim::Delivery;

/// A line that damages what it carries in a way that no checksum shows, or that brings the
/// acknowledgement of one row while another is waited for. image.hex fills the page at 0x80 and a
/// row of EEPROM.
class ToolUnnoticed : public QuadTest
{
protected:
    ToolUnnoticed() { put_image("image.hex", {{0x80, m_lower + m_upper}, {0x1000, m_eeprom}}); }

    /// The first command that is this one never arrives, and an acknowledgement from before comes
    /// instead of its own.
    void lose_after_a_late_acknowledgement(const std::string& lost)
    {
        m_device.set_gate([this, lost](const Command& command) {
            m_is_lost = !m_was_lost && small_digits(command.payload) == lost;
            m_was_lost = m_was_lost || m_is_lost;
            return m_is_lost ? std::nullopt : std::optional(command.payload);
        });
        m_device.set_reply_filter([this](const Command&, const QByteArray& answer) {
            return std::vector<Delivery>{{m_is_lost ? frame("02") : answer}};
        });
    }

    void alter(const std::string& altered)
    {
        m_device.set_gate([altered](const Command& command) {
            return small_digits(command.payload) == altered ? sim::with_same_sum(command.payload)
                                                            : command.payload;
        });
    }

    /// The tool believes that all is well, and these bytes are what the device holds.
    void expect_unnoticed(const char* arguments, const QByteArray& flash, const QByteArray& eeprom)
    {
        const ToolResult result = operate(arguments);
        EXPECT_EQ(result.status, 0) << result;
        EXPECT_EQ(small_digits(m_device.memory().read(0x80, 0x40)), small_digits(flash));
        EXPECT_EQ(small_digits(m_device.memory().read(0x1000, 0x10)), small_digits(eeprom));
    }

    void expect_noticed(const char* arguments, const char* message)
    {
        const ToolResult result = operate(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.out.contains(message)) << result;
    }

    const QByteArray m_lower = counting(0x20, 0x10);
    const QByteArray m_upper = counting(0x20, 0x60);
    const QByteArray m_eeprom = counting(0x10, 0xE0);
    const QByteArray m_erased = QByteArray(0x20, '\xFF');
    /// What comes of the last two bytes when their top bits turn over.
    const QByteArray m_altered_upper = counting(0x1E, 0x60) + QByteArray::fromHex("FEFF");
    const QByteArray m_altered_eeprom = counting(0x0E, 0xE0) + QByteArray::fromHex("6E6F");

private:
    bool m_is_lost = false;
    bool m_was_lost = false;
};

} // namespace

TEST_F(ToolUnnoticed, ALateAcknowledgementHidesThatAWriteLostARow)
{
    lose_after_a_late_acknowledgement(write_flash(0xA0, m_upper));
    expect_unnoticed("-e -w image.hex", m_lower + m_erased, m_eeprom);
}

TEST_F(ToolUnnoticed, ALateAcknowledgementIsNoticedByAVerificationAfterwards)
{
    lose_after_a_late_acknowledgement(write_flash(0xA0, m_upper));
    expect_noticed("-e -w image.hex -v image.hex", "data mismatch starting at address 0x000000A0");
}

TEST_F(ToolUnnoticed, ALateAcknowledgementIsNoticedByAWriteAndVerify)
{
    lose_after_a_late_acknowledgement(write_flash(0xA0, m_upper));
    expect_noticed("-wv image.hex", "Row verify failure at address 0x000000A0");
}

TEST_F(ToolUnnoticed, ARowIsAlteredOnItsWay)
{
    alter(write_flash(0xA0, m_upper));
    expect_unnoticed("-e -w image.hex", m_lower + m_altered_upper, m_eeprom);
}

TEST_F(ToolUnnoticed, AnAlteredRowIsNoticedByAVerificationAfterwards)
{
    alter(write_flash(0xA0, m_upper));
    expect_noticed("-e -w image.hex -v image.hex", "data mismatch starting at address 0x000000A0");
}

TEST_F(ToolUnnoticed, AnAlteredRowIsNoticedByAWriteAndVerify)
{
    alter(write_flash(0xA0, m_upper));
    expect_noticed("-wv image.hex", "Row verify failure at address 0x000000A0");
}

TEST_F(ToolUnnoticed, AnAlteredRowOfEepromIsNotNoticedByAWriteAndVerify)
{
    alter(write_eeprom(0x1000, m_eeprom));
    expect_unnoticed("-wv image.hex", m_lower + m_upper, m_altered_eeprom);
    m_device.set_gate({});
    expect_noticed("-v image.hex", "data mismatch starting at address 0x00001000");
}

TEST_F(ToolUnnoticed, AnAnswerToAReadIsAltered)
{
    m_device.memory().preset(0x80, m_upper);
    m_device.set_reply_filter([this](const Command& command, const QByteArray& answer) {
        const bool is_row = small_digits(command.payload) == read_flash(0x80);
        const QByteArray altered = frame(read_flash(0x80).c_str(), m_altered_upper);
        return std::vector<Delivery>{{is_row ? altered : answer}};
    });
    EXPECT_EQ(operate("-r out.hex").status, 0);
    EXPECT_EQ(file("out.hex"), saved_file({{0x40, QByteArray(0x40, '\xFF')},
                                           {0x80, m_altered_upper + QByteArray(0x60, '\xFF')},
                                           {0x100, QByteArray(0x40, '\xFF')},
                                           {0x1000, QByteArray(0x20, '\xFF')}}));
}

TEST_F(ToolUnnoticed, AReadThatArrivesAsAnEraseIsNoticedByTheVerificationThatSentIt)
{
    m_device.memory().preset(0x80, m_lower + m_upper);
    m_device.memory().preset(0x1000, m_eeprom);
    const std::string read = read_flash(0x80);
    const QByteArray sent = frame(read.c_str());
    const QByteArray arriving = frame(("03" + read.substr(2)).c_str());
    m_device.set_request_filter([this, sent, arriving](const QByteArray& bytes) {
        const bool is_damaged = bytes == sent && m_device.commands().empty();
        return is_damaged ? arriving : bytes;
    });
    expect_noticed("-v image.hex", "data mismatch starting at address 0x00000080");
    EXPECT_EQ(small_digits(m_device.memory().read(0x80, 0x20)), small_digits(m_erased));
}
