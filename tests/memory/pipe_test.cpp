#include "memory/MemoryMap.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <thread>

// A pipe cannot be replaced by a file: what reads at its other end would never see the image.
TEST(HexPipe, TakesTheTextInPlace)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    QByteArray received;
    std::thread reader([&] {
        QFile pipe(path);
        pipe.open(QIODevice::ReadOnly);
        received = pipe.readAll();
    });
    MemoryMap map(MemoryMap::default_chunk_size);
    map.write(0, QByteArray("\x01\x02\x03\x04", 4));
    EXPECT_TRUE(map.save_to_hex_file(path));
    reader.join();
    EXPECT_EQ(received, ":020000040000FA\n:0400000001020304F2\n:00000001FF\n");

    struct stat information {
    };

    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &information), 0);
    EXPECT_TRUE(S_ISFIFO(information.st_mode));
}
