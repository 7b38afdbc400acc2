#include "memory/MemoryMap.h"
#include "tests/app/QuadTest.h"
#include "tests/support/Bytes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

using namespace test;

namespace
{

/// What happens to the file that a device is read into.
class ToolReadFile : public QuadTest
{
protected:
    ToolReadFile() { m_device.memory().preset(0x80, m_row); }

    /// Calls `act` when the device has received the command with this sequence number, before it
    /// answers.
    template <typename Act>
    void at_command(unsigned int sequence, Act act)
    {
        QObject::connect(&m_device, &sim::SimulatedDevice::command_received, &m_device,
                         [sequence, act](const sim::Command& command) {
                             if (command.sequence == sequence) {
                                 act();
                             }
                         });
    }

    void rename(const char* from, const char* to) const
    {
        EXPECT_TRUE(
            QDir().rename(m_tool.path(QLatin1String(from)), m_tool.path(QLatin1String(to))));
    }

    void make_folder(const char* name) const
    {
        EXPECT_TRUE(QDir().mkdir(m_tool.path(QLatin1String(name))));
    }

    const QByteArray m_row = counting(0x20, 0x30);
    const std::string m_saved = saved_file({{0x80, m_row}});
};

const char* const cannot_save = "MemoryMap::save_to_hex_file(): could not open file ";

/// The `count` bytes from `address` on in an image file.
QByteArray loaded(const QString& path, unsigned int address, unsigned int count)
{
    MemoryMap map(MemoryMap::default_chunk_size);
    EXPECT_TRUE(map.load_from_hex_file(path, {}));
    QByteArray bytes;
    EXPECT_TRUE(map.read(address, count, bytes));
    return bytes;
}

} // namespace

TEST_F(ToolReadFile, IsReplacedAsAWhole)
{
    m_tool.put_file(QStringLiteral("out.hex"), QByteArray::fromStdString(m_saved).repeated(3));
    EXPECT_EQ(operate("-l 0x80 0xA0 out.hex"), succeeded("Memory range read!\n"));
    EXPECT_EQ(file("out.hex"), m_saved);
    EXPECT_EQ(m_tool.files(), words("device.txt out.hex"));
}

TEST_F(ToolReadFile, StaysTheSameFileWithAllItsNames)
{
    m_tool.put_file(QStringLiteral("out.hex"), "former");
    const QByteArray name = QFile::encodeName(m_tool.path(QStringLiteral("out.hex")));
    const QByteArray other = QFile::encodeName(m_tool.path(QStringLiteral("other.hex")));
    ASSERT_EQ(::link(name.constData(), other.constData()), 0);
    EXPECT_EQ(operate("-l 0x80 0xA0 out.hex"), succeeded("Memory range read!\n"));
    EXPECT_EQ(file("other.hex"), m_saved);
}

TEST_F(ToolReadFile, IsMadeWhereADanglingLinkLeads)
{
    ASSERT_TRUE(QFile::link(QStringLiteral("out.hex"), m_tool.path(QStringLiteral("link"))));
    EXPECT_EQ(operate("-l 0x80 0xA0 link"), succeeded("Memory range read!\n"));
    EXPECT_EQ(file("out.hex"), m_saved);
    EXPECT_TRUE(QFileInfo(m_tool.path(QStringLiteral("link"))).isSymLink());
}

TEST_F(ToolReadFile, StaysAsItWasUntilEverythingIsRead)
{
    m_tool.put_file(QStringLiteral("out.hex"), "kept");
    std::string meanwhile;
    at_command(9, [&] { meanwhile = file("out.hex"); });
    EXPECT_EQ(operate("-r out.hex"), succeeded("Memory read!\n"));
    EXPECT_EQ(meanwhile, "kept");
}

TEST_F(ToolReadFile, StaysAsItWasWhenTheReadFails)
{
    m_tool.put_file(QStringLiteral("out.hex"), "kept");
    reply_from(1, frame("02"));
    EXPECT_EQ(operate("-r out.hex -R"),
              failed(given_up_on_wrong_answers() + "read() at 00000060 could not be performed\n"
                                                   "Failed to read memory, aborting...\n"));
    EXPECT_EQ(file("out.hex"), "kept");
    EXPECT_EQ(m_tool.files(), words("device.txt out.hex"));
}

TEST_F(ToolReadFile, StaysEmptyWhenItIsNewAndTheReadFails)
{
    reply_from(9, frame("02"));
    EXPECT_EQ(operate("-r out.hex"), failed(given_up_on_wrong_answers() +
                                            "eeprom read() at 00001010 could not be performed\n"
                                            "Failed to read memory, aborting...\n"));
    EXPECT_EQ(file("out.hex"), "");
    EXPECT_EQ(m_tool.files(), words("device.txt out.hex"));
}

TEST_F(ToolReadFile, ThatHasGoneAwayStopsNeitherTheReadNorTheRun)
{
    make_folder("folder");
    at_command(0, [this] { rename("folder", "gone"); });
    const ToolResult result = operate("-e -xu -r folder/out.hex -R");
    EXPECT_EQ(result, succeeded("Erased all flash!\n"
                                "Could not open file to read data into!Memory read!\n"
                                "Resetting device\n"));
    EXPECT_TRUE(result.err.contains(QByteArray(cannot_save) + "'folder/out.hex' for writing"));
    EXPECT_EQ(commands_of(m_device),
              (Commands{erase_page(0x40), erase_page(0x100), read_flash(0x40), read_flash(0x60),
                        read_flash(0x100), read_flash(0x120), read_eeprom(0x1000),
                        read_eeprom(0x1010), reset}));
    EXPECT_EQ(file("gone/out.hex"), "");
}

TEST_F(ToolReadFile, ThatHasGoneAwayStopsNoRangedReadEither)
{
    make_folder("folder");
    at_command(0, [this] { rename("folder", "gone"); });
    EXPECT_EQ(operate("-e -l 0x80 0xA0 folder/out.hex"),
              succeeded("Erased all flash!\n"
                        "Could not open file to read data into!Memory range read!\n"));
    EXPECT_EQ(commands_of(m_device), (Commands{"0304400000", read_flash(0x80)}));
}

TEST_F(ToolReadFile, ThatHasGoneAwayIsReportedBeforeAReadFails)
{
    make_folder("folder");
    at_command(0, [this] { rename("folder", "gone"); });
    reply_from(1, frame("02"));
    EXPECT_EQ(operate("-e -r folder/out.hex"),
              failed(given_up_on_wrong_answers() + "read() at 00000040 could not be performed\n"
                                                   "Erased all flash!\n"
                                                   "Could not open file to read data into!"
                                                   "Failed to read memory, aborting...\n"));
}

TEST_F(ToolReadFile, ThatHasBecomeAFolderStaysAFolder)
{
    at_command(0, [this] {
        EXPECT_TRUE(QFile::remove(m_tool.path(QStringLiteral("out.hex"))));
        make_folder("out.hex");
    });
    const ToolResult result = operate("-e -l 0x80 0xA0 out.hex");
    EXPECT_EQ(result, succeeded("Erased all flash!\n"
                                "Could not open file to read data into!Memory range read!\n"));
    EXPECT_TRUE(result.err.contains(cannot_save));
    EXPECT_TRUE(QDir(m_tool.path(QStringLiteral("out.hex"))).isEmpty());
}

TEST_F(ToolReadFile, IsSavedWhenItsFolderIsBackInTime)
{
    make_folder("folder");
    at_command(0, [this] { rename("folder", "gone"); });
    at_command(1, [this] { rename("gone", "folder"); });
    EXPECT_EQ(operate("-e -l 0x80 0xA0 folder/out.hex"),
              succeeded("Erased all flash!\n"
                        "Could not open file to read data into!Memory range read!\n"));
    EXPECT_EQ(file("folder/out.hex"), saved_file({{0x80, QByteArray(0x20, '\xFF')}}));
}

TEST_F(ToolReadFile, OnAFullDiskDoesNotFailTheRun)
{
    const ToolResult result = operate("-r /dev/full");
    EXPECT_EQ(result, succeeded("Memory read!\n"));
    EXPECT_TRUE(result.err.contains(QByteArray(cannot_save) + "'/dev/full' for writing"));
    EXPECT_EQ(commands_of(m_device), read_everything());
}

TEST_F(ToolReadFile, OfARangeOnAFullDiskDoesNotFailTheRun)
{
    const ToolResult result = operate("-l 0x80 0xA0 /dev/full");
    EXPECT_EQ(result, succeeded("Memory range read!\n"));
    EXPECT_TRUE(result.err.contains(QByteArray(cannot_save) + "'/dev/full' for writing"));
}

TEST_F(ToolReadFile, HoldsWhatWasWritten)
{
    const QByteArray flash = counting(0x4C, 0x07);
    const QByteArray eeprom = counting(0x0B, 0xA0);
    put_image("image.hex", {{0x66, flash}, {0x1010, eeprom}});
    operate("-e -w image.hex");
    operate("-r out.hex");
    const QString path = m_tool.path(QStringLiteral("out.hex"));
    EXPECT_EQ(loaded(path, 0x40, 0x100),
              QByteArray(0x26, '\xFF') + flash + QByteArray(0x100 - 0x26 - 0x4C, '\xFF'));
    EXPECT_EQ(loaded(path, 0x1000, 0x20),
              QByteArray(0x10, '\xFF') + eeprom + QByteArray(0x10 - 0x0B, '\xFF'));
}

TEST_F(ToolReadFile, BringsAnotherDeviceToTheSameState)
{
    m_device.memory().preset(0x1010, counting(0x08, 0x90));
    operate("-r out.hex");
    sim::SimulatedDevice another(quad());
    const QByteArray rows = progress({11, 22, 33, 44, 55, 66, 77, 88, 94, 100});
    EXPECT_EQ(run(another, "-B 0708 -w out.hex -v out.hex"),
              succeeded(progress({0}) + rows +
                        "Now writingMemory written!\n"
                        "Verifying firmware\n" +
                        rows + "\nVerified!\n"));
    EXPECT_EQ(another.memory().read(0x40, 0x100), m_device.memory().read(0x40, 0x100));
    EXPECT_EQ(another.memory().read(0x1000, 0x20), m_device.memory().read(0x1000, 0x20));
}
