#include "sim/device/DeviceMemory.h"
#include "sim/device/Error.h"
#include "sim/program/StateFile.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"
#include "tests/support/SmallDisk.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace test;
using sim::DeviceMemory;
using sim::Error;
using sim::StateFile;

namespace
{

class SimStateFile : public testing::Test
{
protected:
    QByteArray content() const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void write(const QByteArray& content) const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    std::string complaint_about(const QByteArray& content) const
    {
        write(content);
        DeviceMemory memory(*profile);
        try {
            state.load(memory);
        } catch (const Error& error) {
            return QString::fromUtf8(error.what()).remove(folder.path()).toStdString();
        }
        return "nothing thrown";
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("state"));
    /// Its EEPROM lies where no Intel HEX file of this family reaches.
    std::unique_ptr<const Profile> profile = sample_profile(
        {{Profile::eeprom_start_address, "0xF00000"}, {Profile::eeprom_end_address, "0xF00100"}});
    StateFile state{path, 0x0123};
};

const QByteArray whole = "zserial-sim state of device 0123\n"
                         "00000010 01\n"
                         "00001000 111111111111111111111111111111AA\n"
                         "00001010 22\n"
                         "00F00002 0304\n"
                         "end\n";

} // namespace

TEST_F(SimStateFile, HoldsWhatIsNotErased)
{
    DeviceMemory memory(*profile);
    memory.preset(0x10, bytes("01"));
    memory.preset(0x1000, QByteArray(15, '\x11') + bytes("AA 22"));
    memory.preset(0xF00002, bytes("03 04"));
    state.save(memory);
    EXPECT_EQ(content(), whole);
}

TEST_F(SimStateFile, BringsTheMemoryBack)
{
    write(whole);
    DeviceMemory memory(*profile);
    state.load(memory);
    EXPECT_EQ(memory.read(0x0F, 3), bytes("FF 01 FF"));
    EXPECT_EQ(memory.read(0x1000, 18), QByteArray(15, '\x11') + bytes("AA 22 FF"));
    EXPECT_EQ(memory.read(0xF00001, 4), bytes("FF 03 04 FF"));
    EXPECT_EQ(memory.statistics().flash_rows_programmed, 0U);
}

TEST_F(SimStateFile, IsThatOfAFreshDeviceWhereThereIsNone)
{
    DeviceMemory memory(*profile);
    state.load(memory);
    EXPECT_TRUE(memory.programmed_ranges().empty());
    state.save(memory);
    EXPECT_EQ(content(), "zserial-sim state of device 0123\nend\n");
    state.load(memory);
    EXPECT_TRUE(memory.programmed_ranges().empty());
}

TEST_F(SimStateFile, IsRefusedUnlessItIsWholeAndThisDevices)
{
    const std::string complaint = "the state /state is damaged, or of another device than 0123";
    const std::vector<std::pair<const char*, QByteArray>> contents = {
        {"empty", ""},
        {"cut at the end", whole.chopped(1)},
        {"cut in a line", whole.left(60)},
        {"cut between lines", whole.left(whole.indexOf("00F0"))},
        {"without title", whole.mid(whole.indexOf('\n') + 1)},
        {"another device's", QByteArray(whole).replace("device 0123", "device 0124")},
        {"bad address", QByteArray(whole).replace("00000010", "0000001G")},
        {"odd digits", QByteArray(whole).replace("0304", "030")},
        {"bad digit", QByteArray(whole).replace("0304", "03G4")},
        {"no bytes", QByteArray(whole).replace("0304", "")},
        {"out of the device", QByteArray(whole).replace("00F00002", "00F00100")},
    };
    for (const auto& [name, content] : contents) {
        EXPECT_EQ(complaint_about(content), complaint) << name;
    }
}

TEST_F(SimStateFile, IsNotWrittenWhereThereIsNoFolder)
{
    const StateFile nowhere(folder.filePath(QStringLiteral("nowhere/state")), 0x0123);
    const DeviceMemory memory(*profile);
    EXPECT_THROW(nowhere.save(memory), Error);
}

TEST_F(SimStateFile, StaysAsItWasWhenTheDiskIsFull)
{
    write(whole);
    DeviceMemory memory(*profile);
    memory.preset(0, QByteArray(0x1000, 'a'));
    const SmallDisk disk(1000);
    EXPECT_THROW(state.save(memory), Error);
    EXPECT_EQ(content(), whole);
}

TEST_F(SimStateFile, IsRefusedWhenItCannotBeRead)
{
    const StateFile is_folder(folder.path(), 0x0123);
    DeviceMemory memory(*profile);
    EXPECT_THROW(is_folder.load(memory), Error);
}
