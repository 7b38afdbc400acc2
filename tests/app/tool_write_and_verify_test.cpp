#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"

using namespace test;

namespace
{

/// image.hex fills the page at 0x80.
class ToolWriteAndVerify : public QuadTest
{
protected:
    ToolWriteAndVerify() { put_image("image.hex", {{0x80, m_lower + m_upper}}); }

    void load_device() { m_device.memory().preset(0x80, m_lower + m_upper); }

    /// What an upload prints that goes well.
    static ToolResult uploaded(std::initializer_list<int> percentages, const QByteArray& then = {})
    {
        return succeeded("Uploading firmware\n" + progress(percentages) + "\nUploaded!\n" + then);
    }

    const QByteArray m_lower = counting(0x20, 0x10);
    const QByteArray m_upper = counting(0x20, 0x60);
    const Commands m_programming{erase_page(0x80), write_flash(0x80, m_lower), read_flash(0x80),
                                 write_flash(0xA0, m_upper), read_flash(0xA0)};
    const Commands m_comparison{read_flash(0x80), read_flash(0xA0)};
};

} // namespace

TEST_F(ToolWriteAndVerify, ErasesAPageThatDiffersAndReadsEachRowBack)
{
    m_device.memory().preset(0x80, QByteArray(0x40, '\x00'));
    EXPECT_EQ(operate("-wv image.hex"), uploaded({0, 50, 100}));
    EXPECT_EQ(commands_of(m_device), Commands{read_flash(0x80)} + m_programming);
    EXPECT_EQ(m_device.memory().read(0x80, 0x40), m_lower + m_upper);
    EXPECT_EQ(m_device.memory().statistics().cells_programmed_without_erase, 0U);
}

TEST_F(ToolWriteAndVerify, LeavesAPageAloneThatMatches)
{
    load_device();
    EXPECT_EQ(operate("-wv image.hex"), uploaded({0, 100}));
    EXPECT_EQ(commands_of(m_device), m_comparison);
}

TEST_F(ToolWriteAndVerify, WithEraseAllComparesNothing)
{
    load_device();
    EXPECT_EQ(operate("-wv image.hex -e"), uploaded({0, 50, 100}));
    EXPECT_EQ(commands_of(m_device), m_programming);
}

TEST_F(ToolWriteAndVerify, WritesOnlyTheRowsOfAPageThatTheImageHolds)
{
    put_image("image.hex", {{0xA4, m_upper.left(4)}});
    load_device();
    EXPECT_EQ(operate("-wv image.hex"), uploaded({0, 50, 100}));
    const QByteArray row = QByteArray(4, '\xFF') + m_upper.left(4) + QByteArray(0x20 - 8, '\xFF');
    EXPECT_EQ(commands_of(m_device), (Commands{read_flash(0x80), erase_page(0x80),
                                               write_flash(0xA0, row), read_flash(0xA0)}));
    EXPECT_EQ(m_device.memory().read(0x80, 0x40), QByteArray(0x20, '\xFF') + row);
}

TEST_F(ToolWriteAndVerify, RepairsThePageOfAFlippedByteAndNoOther)
{
    const QByteArray image = counting(0x80, 0x10);
    put_image("two_pages.hex", {{0x80, image}});
    m_device.memory().preset(0x80, image);
    m_device.memory().preset(0xE0, QByteArray(1, '\x71'));
    EXPECT_EQ(operate("-v two_pages.hex").status, 1);
    m_device.clear_commands();

    EXPECT_EQ(operate("-wv two_pages.hex"), uploaded({0, 50, 75, 100}));
    EXPECT_EQ(commands_of(m_device),
              (m_comparison + Commands{read_flash(0xC0), read_flash(0xE0), erase_page(0xC0),
                                       write_flash(0xC0, image.mid(0x40, 0x20)), read_flash(0xC0),
                                       write_flash(0xE0, image.mid(0x60)), read_flash(0xE0)}));
    EXPECT_EQ(operate("-v two_pages.hex"),
              succeeded("Verifying firmware\n" + progress({25, 50, 75, 100}) + "\nVerified!\n"));
}

TEST_F(ToolWriteAndVerify, WritesEepromWithoutReadingItBack)
{
    const QByteArray eeprom = counting(0x10, 0xE0);
    put_image("image.hex", {{0x1008, eeprom}});
    EXPECT_EQ(operate("-wv image.hex"), uploaded({0, 50, 100}));
    EXPECT_EQ(commands_of(m_device),
              (Commands{write_eeprom(0x1000, QByteArray(8, '\xFF') + eeprom.left(8)),
                        write_eeprom(0x1010, eeprom.mid(8) + QByteArray(8, '\xFF'))}));
}

TEST_F(ToolWriteAndVerify, WarnsDevelopersOfBytesOutsideTheDevice)
{
    put_image("image.hex", {{0x2000, counting(8)}});
    const ToolResult result = operate("-wv image.hex");
    EXPECT_EQ(result, uploaded({0}));
    EXPECT_EQ(heard_by(m_device), "");
    EXPECT_TRUE(result.err.contains("Warning, blob at address 0x00002000 with size 00002000"));
}

TEST_F(ToolWriteAndVerify, OfAMissingFileSucceedsAndSendsNothing)
{
    EXPECT_EQ(operate("-wv missing.hex"), uploaded({0}));
    EXPECT_EQ(heard_by(m_device), "");
    EXPECT_EQ(file("missing.hex"), "");
}

TEST_F(ToolWriteAndVerify, OfABadFileSendsNothing)
{
    give_file("bad_checksum.hex");
    EXPECT_EQ(operate("-wv bad_checksum.hex -R"),
              failed("Could not process firmware file bad_checksum.hex as intel hex 32 format "
                     "during write-and-verify, aborting..."));
    EXPECT_EQ(heard_by(m_device), "");
}

// What stands beside "-wv" on the line.

TEST_F(ToolWriteAndVerify, SkipsTheReadSilentlyAndTakesTheEraseForItself)
{
    load_device();
    EXPECT_EQ(operate("-wv image.hex -e -r out.hex"), uploaded({0, 50, 100}));
    EXPECT_EQ(commands_of(m_device), m_programming);
    EXPECT_EQ(file("out.hex"), "");
}

TEST_F(ToolWriteAndVerify, SkipsTheRangedOperationsSilently)
{
    load_device();
    put_image("other.hex", {{0x40, counting(0x20)}});
    EXPECT_EQ(operate("-E 0x40 0x80 -l 0x40 0x80 out.hex -W 0x40 0x60 other.hex -wv image.hex"),
              uploaded({0, 100}));
    EXPECT_EQ(commands_of(m_device), m_comparison);
    EXPECT_EQ(file("out.hex"), "");
}

TEST_F(ToolWriteAndVerify, TakesItsOwnFileWhateverIsNamedLater)
{
    load_device();
    give_file("bad_checksum.hex");
    put_image("other.hex", {{0x40, counting(0x20)}});
    for (const char* later : {"-w other.hex", "-W 0 1 other.hex", "-v other.hex",
                              "-w other.hex -v other.hex", "-v bad_checksum.hex"}) {
        SCOPED_TRACE(later);
        m_device.clear_commands();
        EXPECT_EQ(operate((QByteArray("-wv image.hex ") + later).constData()), uploaded({0, 100}));
        EXPECT_EQ(commands_of(m_device), m_comparison);
    }
}

TEST_F(ToolWriteAndVerify, TakesTheLastOfItsOwnFiles)
{
    load_device();
    put_image("other.hex", {{0x40, counting(0x20)}});
    EXPECT_EQ(operate("-wv other.hex -wv image.hex"), uploaded({0, 100}));
    EXPECT_EQ(commands_of(m_device), m_comparison);
}

TEST_F(ToolWriteAndVerify, IsFollowedByTheReset)
{
    load_device();
    EXPECT_EQ(operate("-R -wv image.hex"), uploaded({0, 100}, "Resetting device\n"));
    EXPECT_EQ(commands_of(m_device), m_comparison + Commands{reset});
}
