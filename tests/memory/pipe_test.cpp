#include "memory/MemoryMap.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

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

// Whoever writes into it may keep it open: nothing more is to come, and nothing is waited for.
TEST(HexPipe, IsNotAskedForMoreBehindTheEndRecord)
{
    const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("pipe")));
    ASSERT_EQ(::mkfifo(path.constData(), 0600), 0);
    const int both_ends = ::open(path.constData(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(both_ends, 0);
    // As much as is read from a file at a time, which a pipe holds.
    const QByteArray lines(":0100000001FE\n:00000001FF\n");
    const QByteArray text = QByteArray(65536 - lines.size(), '\n') + lines;
    ASSERT_EQ(::write(both_ends, text.constData(), static_cast<std::size_t>(text.size())),
              text.size());
    MemoryMap map(MemoryMap::default_chunk_size);
    EXPECT_TRUE(map.load_from_hex_file(QFile::decodeName(path), {}));
    EXPECT_EQ(map.size(), 1U);
    ::close(both_ends);
}
