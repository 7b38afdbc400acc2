#include "sim/device/DeviceMemory.h"
#include "sim/device/Error.h"
#include "sim/line/Descriptor.h"
#include "sim/rig/MemoryImage.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"
#include "tests/support/SmallDisk.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace test;
using sim::DeviceMemory;
using sim::Error;
using sim::MemoryImage;
using sim::save_memory;

namespace
{

class SimMemoryImage : public testing::Test
{
protected:
    QString path(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }

    QString write_file(const char* name, const char* content) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    /// What saving the memory writes, with the folder's name left out of messages.
    QByteArray saved() const
    {
        save_memory(memory, path("saved.hex"));
        QFile file(path("saved.hex"));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    QTemporaryDir folder;
    DeviceMemory memory{*sample_profile()};
};

/// 01 02 03 04 at 0x1000 and AA at 0x400000.
const char* const flash_and_eeprom = ":0410000001020304E2\n"
                                     ":020000040040BA\n"
                                     ":01000000AA55\n"
                                     ":00000001FF\n";

std::string what_of(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Error& error) {
        return error.what();
    }
    return "nothing thrown";
}

} // namespace

TEST_F(SimMemoryImage, FillsTheMemory)
{
    const MemoryImage image(write_file("image.hex", flash_and_eeprom));
    EXPECT_EQ(image.fill(memory), 0U);
    EXPECT_EQ(memory.read(0x1000, 4), bytes("01 02 03 04"));
    EXPECT_EQ(memory.read(0x400000, 1), bytes("AA"));
}

TEST_F(SimMemoryImage, CountsWhatTheDeviceHasNoPlaceFor)
{
    const MemoryImage image(
        write_file("outside.hex", ":020000040001F9\n:020000001122CB\n:00000001FF\n"));
    EXPECT_EQ(image.fill(memory), 2U);
}

TEST_F(SimMemoryImage, MatchesAMemoryThatHoldsIt)
{
    const QString name = write_file("image.hex", flash_and_eeprom);
    memory.preset(0x1000, bytes("01 02 03 04 05"));
    memory.preset(0x400000, bytes("AA"));
    const MemoryImage::Comparison comparison = MemoryImage(name).compare(memory);
    EXPECT_TRUE(comparison.matches);
    EXPECT_EQ(
        comparison.report,
        QStringLiteral("device memory holds %1: 5 bytes in flash and EEPROM match").arg(name));
}

TEST_F(SimMemoryImage, ReportsTheFirstDifference)
{
    const QString name = write_file("image.hex", flash_and_eeprom);
    memory.preset(0x1000, bytes("01 02 F3 F4"));
    const MemoryImage::Comparison comparison = MemoryImage(name).compare(memory);
    EXPECT_FALSE(comparison.matches);
    EXPECT_EQ(comparison.report,
              QStringLiteral("device memory differs from %1 at address 0x00001002: "
                             "memory 0xF3, image 0x03")
                  .arg(name));
}

TEST_F(SimMemoryImage, SeesADifferenceInEeprom)
{
    const MemoryImage image(write_file("image.hex", flash_and_eeprom));
    memory.preset(0x1000, bytes("01 02 03 04"));
    EXPECT_FALSE(image.compare(memory).matches);
}

TEST_F(SimMemoryImage, ComparesNothingThatAHostCannotWrite)
{
    // Two bytes in the bootloader's part, two just beyond it, two beyond flash.
    const QString name = write_file("image.hex", ":0407FE0011223344"
                                                 "4D\n"
                                                 ":020000040001F9\n"
                                                 ":020000001122CB\n"
                                                 ":00000001FF\n");
    memory.preset(0x800, bytes("33 44"));
    const MemoryImage::Comparison comparison = MemoryImage(name).compare(memory);
    EXPECT_TRUE(comparison.matches);
    EXPECT_EQ(
        comparison.report,
        QStringLiteral("device memory holds %1: 2 bytes in flash and EEPROM match").arg(name));
    EXPECT_EQ(comparison.outside_bytes, 2U);
}

TEST_F(SimMemoryImage, CountsAllBytesOutsideOfADeviceThatDiffers)
{
    const QString name =
        write_file("image.hex", ":0410000001020304E2\n"
                                ":02FFFF001122CD\n" // its second byte is the first outside
                                ":020000040040BA\n"
                                ":020100001122CA\n" // right after the EEPROM
                                ":00000001FF\n");
    const MemoryImage::Comparison comparison = MemoryImage(name).compare(memory);
    EXPECT_FALSE(comparison.matches);
    EXPECT_EQ(comparison.outside_bytes, 3U);
}

TEST_F(SimMemoryImage, DoesNotMatchWhenItHoldsNothingForTheDevice)
{
    const QString name = write_file("empty.hex", ":00000001FF\n");
    const MemoryImage::Comparison comparison = MemoryImage(name).compare(memory);
    EXPECT_FALSE(comparison.matches);
    EXPECT_EQ(comparison.report,
              QStringLiteral("%1 holds no byte of the device's flash and EEPROM").arg(name));
}

TEST_F(SimMemoryImage, RefusesAFileThatIsNone)
{
    const QString bad = write_file("bad_checksum.hex", ":0410000001020304E3\n:00000001FF\n");
    for (const QString& name : {bad, path("missing.hex")}) {
        EXPECT_EQ(what_of([&name] { MemoryImage image(name); }),
                  QStringLiteral("cannot load the image %1").arg(name).toStdString());
    }
}

TEST_F(SimMemoryImage, SavesAnErasedMemoryAsAnEmptyImage)
{
    EXPECT_EQ(saved(), ":00000001FF\n");
}

TEST_F(SimMemoryImage, SavesWhatIsNotErased)
{
    memory.preset(0x1000, bytes("01 02 FF 04"));
    memory.preset(0x400000, bytes("AA"));
    EXPECT_EQ(saved(), ":021000000102EB\n"
                       ":0110030004E8\n"
                       ":020000040040BA\n"
                       ":01000000AA55\n"
                       ":00000001FF\n");
}

TEST_F(SimMemoryImage, SavesNoRecordAcrossASegment)
{
    const auto profile = sample_profile({{Profile::flash_end_address_bytes, "0x20000"}});
    memory = DeviceMemory(*profile);
    memory.preset(0xFFFE, bytes("01 02 03 04"));
    EXPECT_EQ(saved(), ":02FFFE000102FE\n"
                       ":020000040001F9\n"
                       ":020000000304F7\n"
                       ":00000001FF\n");
}

TEST_F(SimMemoryImage, LoadsWhatItSaved)
{
    memory.preset(0, bytes("00"));
    memory.preset(0xFF0, QByteArray(100, '\x42'));
    memory.preset(0x400000, QByteArray(0x100, '\x24'));
    save_memory(memory, path("saved.hex"));
    DeviceMemory other(*sample_profile());
    EXPECT_EQ(MemoryImage(path("saved.hex")).fill(other), 0U);
    EXPECT_EQ(other.read(0, 0x10000), memory.read(0, 0x10000));
    EXPECT_EQ(other.read(0x400000, 0x100), memory.read(0x400000, 0x100));
}

TEST_F(SimMemoryImage, ReportsWhenItCannotBeSaved)
{
    const QString name = path("no_such_folder/saved.hex");
    EXPECT_EQ(what_of([this, &name] { save_memory(memory, name); }),
              QStringLiteral("cannot write the image %1").arg(name).toStdString());
}

TEST_F(SimMemoryImage, LeavesWhatWasThereWhenTheDiskIsFull)
{
    const QString name = write_file("saved.hex", "former");
    memory.preset(0, QByteArray(0x1000, 'a'));
    const SmallDisk disk(1000);
    EXPECT_EQ(what_of([this, &name] { save_memory(memory, name); }),
              QStringLiteral("cannot write the image %1").arg(name).toStdString());
    QFile file(name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "former");
}

// Such as /dev/null, which every other program needs, too.
TEST_F(SimMemoryImage, IsSavedInPlaceIntoWhatIsNoFile)
{
    const QByteArray pipe = QFile::encodeName(path("pipe"));
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    const sim::Descriptor other_end(::open(pipe.constData(), O_RDWR | O_NONBLOCK));
    save_memory(memory, path("pipe"));
    std::array<char, 100> buffer{};
    const ssize_t count = ::read(other_end.get(), buffer.data(), buffer.size());
    EXPECT_EQ(std::string(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))),
              ":00000001FF\n");
}
