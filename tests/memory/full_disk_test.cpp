#include "memory/MemoryMap.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/SmallDisk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace
{

/// A map whose file is several times as long as what is written at once, and a place for the file.
class FullDisk : public testing::Test
{
protected:
    FullDisk()
    {
        map.write(0, QByteArray(0x10000, 'a'));
        map.write(0x20000, QByteArray(0x1000, 'b'));
    }

    QByteArray written() const
    {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

    /// What a disk leaves behind that takes files of this size only.
    QByteArray saved_on_disk_of(int size)
    {
        QFile former(path);
        former.open(QIODevice::WriteOnly);
        former.write("former");
        former.close();
        const SmallDisk disk(static_cast<rlim_t>(size));
        saved = map.save_to_hex_file(path);
        return written();
    }

    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("image.hex"));
    MemoryMap map{0x8000};
    bool saved = false;
};

} // namespace

TEST_F(FullDisk, LeavesTheFormerFileWhereverItEnds)
{
    ASSERT_TRUE(map.save_to_hex_file(path));
    const int size = written().size();
    const QString message = QStringLiteral("\"MemoryMap::save_to_hex_file(): could not open file "
                                           "'%1' for writing\"")
                                .arg(path);
    for (const int room : {0, 1, 0x3FFF, 0x4000, 0x4001, 0x8000, 0x10000, 0x10001, 0x18000,
                           size - 14, size - 13, size - 1}) {
        SCOPED_TRACE(room);
        const DebugMessages messages;
        EXPECT_EQ(saved_on_disk_of(room), "former");
        EXPECT_FALSE(saved);
        EXPECT_EQ(messages.texts(), QStringList(message));
        EXPECT_EQ(files(), QStringList(QStringLiteral("image.hex")));
    }
}

TEST_F(FullDisk, IsNoneWhenTheFileFitsExactly)
{
    ASSERT_TRUE(map.save_to_hex_file(path));
    const QByteArray text = written();
    EXPECT_EQ(saved_on_disk_of(text.size()), text);
    EXPECT_TRUE(saved);
}
