#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"
#include "tests/support/SmallDisk.h"

#include <QDir>
#include <QTemporaryDir>

using namespace test;

namespace
{

/// A map whose file is several times as long as a single write, and an existing file to replace.
class FullDisk : public testing::Test
{
protected:
    FullDisk()
    {
        map.write(0, QByteArray(0x10000, 'a'));
        map.write(0x20000, QByteArray(0x1000, 'b'));
        EXPECT_TRUE(map.save_to_hex_file(path));
        text = file_content(path);
        write_file(path, "former");
    }

    /// The content of the file after a save on a disk that only takes files of this size.
    QByteArray saved_on_disk_of(int size)
    {
        const SmallDisk disk(static_cast<rlim_t>(size));
        saved = map.save_to_hex_file(path);
        return file_content(path);
    }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("image.hex"));
    MemoryMap map{0x8000};
    QByteArray text;
    bool saved = false;
};

} // namespace

TEST_F(FullDisk, IsReportedWhereverTheFileEnds)
{
    const std::string message = "\"MemoryMap::save_to_hex_file(): could not open file '" +
                                path.toStdString() + "' for writing\"";
    for (const int room : {0, 1, 0x3FFF, 0x4000, 0x4001, 0x8000, 0x10000, 0x10001, 0x18000,
                           text.size() - 14, text.size() - 13, text.size() - 1}) {
        SCOPED_TRACE(room);
        write_file(path, "former");
        const DebugMessages messages;
        EXPECT_EQ(saved_on_disk_of(room), text.left(room));
        EXPECT_FALSE(saved);
        EXPECT_EQ(lines_of(messages), std::vector<std::string>{message});
    }
}

TEST_F(FullDisk, IsNoneWhenTheFileFitsExactly)
{
    EXPECT_EQ(saved_on_disk_of(text.size()), text);
    EXPECT_TRUE(saved);
}
