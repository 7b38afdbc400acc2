#include "tests/device/OperationFaults.h"
#include "tests/device/ReadBench.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/RowName.h"
#include "tests/support/SmallDisk.h"

#include <gmock/gmock.h>

using namespace test;
using testing::IsEmpty;

namespace
{

/// On the debug channel, where texts are in quotes.
QStringList not_written(const QString& path)
{
    return {QStringLiteral("\"MemoryMap::save_to_hex_file(): could not open file '%1' for "
                           "writing\"")
                .arg(path)};
}

/// How the caller has opened the file before it is handed over.
struct OpenMode {
    const char* name;
    QIODevice::OpenMode mode;
};

const OpenMode open_modes[] = {
    {"Closed", QIODevice::NotOpen},
    {"OpenForReadingAndWriting", QIODevice::ReadWrite},
    {"OpenForReading", QIODevice::ReadOnly},
};

class ReadFile : public testing::TestWithParam<OpenMode>
{
};

const QByteArray former_content = QByteArray(100000, 'x');

} // namespace

TEST_P(ReadFile, ReplacesAllThatWasThere)
{
    ReadBench bench("small");
    bench.target.preset(former_content);
    if (GetParam().mode != QIODevice::NotOpen) {
        ASSERT_TRUE(bench.target.file.open(GetParam().mode));
    }
    EXPECT_TRUE(bench.read());
    bench.target.file.close();
    EXPECT_EQ(bench.target.content(), content_of({{0x100, 0x200}, {0x1000, 0x30}}));
    EXPECT_EQ(bench.target.neighbours(), QStringList(QStringLiteral("read.hex")));
}

INSTANTIATE_TEST_SUITE_P(, ReadFile, testing::ValuesIn(open_modes), row_name);

TEST(ReadFileIsKept, WhenAReadFails)
{
    ReadBench bench("small");
    bench.target.preset("what was there");
    bench.line.simulated.set_reply_filter(unreadable_from(9));
    EXPECT_FALSE(bench.read());
    EXPECT_EQ(bench.target.text(), "what was there");
}

TEST(ReadFileIsKept, WhenAReadOfARangeFails)
{
    ReadBench bench("small");
    bench.target.preset("what was there");
    bench.line.simulated.set_reply_filter(unreadable_from(1));
    EXPECT_FALSE(bench.read_range(0x2C0, 0x1010));
    EXPECT_EQ(bench.target.text(), "what was there");
}

TEST(ReadFileIsKept, WhenTheReadIsAborted)
{
    ReadBench bench("small");
    bench.target.preset("what was there");
    QObject::connect(&bench.line.device, &ZarnSerialDevice::sig_encoded_response,
                     [&] { bench.abort = true; });
    EXPECT_FALSE(bench.read());
    EXPECT_EQ(bench.target.text(), "what was there");
}

TEST(ReadFileIsKept, WhenThereIsNothingToRead)
{
    ReadBench bench("no-memory");
    bench.target.preset("what was there");
    EXPECT_FALSE(bench.read());
    EXPECT_EQ(bench.target.text(), "what was there");
}

TEST(ReadFileIsKept, WhenTheRangeIsEmpty)
{
    ReadBench bench("small");
    bench.target.preset("what was there");
    EXPECT_FALSE(bench.read_range(0x300, 0x1000));
    EXPECT_EQ(bench.target.text(), "what was there");
}

TEST(ReadFileOnAFullDisk, IsReportedAndHoldsWhatFitted)
{
    ReadBench bench("small");
    bench.target.preset("what was there");
    const DebugMessages messages;
    {
        const SmallDisk disk(1000);
        EXPECT_TRUE(bench.read());
    }
    EXPECT_EQ(messages.texts(), not_written(bench.target.file.fileName()));
    EXPECT_THAT(bench.line.recorder.operation(), IsEmpty());
    EXPECT_EQ(bench.target.text().size(), 1000);
    EXPECT_TRUE(bench.target.text().startsWith(":020000040000FA\n:10010000"));
    EXPECT_EQ(bench.target.neighbours(), QStringList(QStringLiteral("read.hex")));
}

TEST(ReadFileOnAFullDisk, IsReportedForARange)
{
    ReadBench bench("small");
    const DebugMessages messages;
    {
        const SmallDisk disk(1000);
        EXPECT_TRUE(bench.read_range(0x100, 0x300));
    }
    EXPECT_EQ(messages.texts(), not_written(bench.target.file.fileName()));
    EXPECT_THAT(bench.line.recorder.operation(), IsEmpty());
    EXPECT_EQ(bench.target.text().size(), 1000);
}

namespace
{

/// A place where no file can be made, even by a superuser.
struct BadPlace {
    const char* name;
    const char* path; ///< relative ones in a folder that holds nothing
};

const BadPlace bad_places[] = {
    {"MissingFolder", "missing/read.hex"},
    {"FolderOfThatName", "."},
    {"FolderThatTakesNoFiles", "/proc/read.hex"},
    {"DeviceThatIsFull", "/dev/full"},
};

class ReadFileInABadPlace : public testing::TestWithParam<BadPlace>
{
protected:
    ReadFileInABadPlace() { bench.target.file.setFileName(path); }

    ReadBench bench{"small"};
    QTemporaryDir folder;
    QString path = QDir(folder.path()).absoluteFilePath(QString::fromUtf8(GetParam().path));
};

} // namespace

TEST_P(ReadFileInABadPlace, IsReportedOnTheDebugChannelByAReadThatSucceeds)
{
    const DebugMessages messages;
    EXPECT_TRUE(bench.read());
    EXPECT_EQ(messages.texts(), not_written(path));
    EXPECT_THAT(bench.line.recorder.operation(), IsEmpty());
}

TEST_P(ReadFileInABadPlace, IsReportedOnTheDebugChannelByAReadOfARangeThatSucceeds)
{
    const DebugMessages messages;
    EXPECT_TRUE(bench.read_range(0x1000, 0x1010));
    EXPECT_EQ(messages.texts(), not_written(path));
    EXPECT_THAT(bench.line.recorder.operation(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, ReadFileInABadPlace, testing::ValuesIn(bad_places), row_name);
