#include "sim/rig/WholeFile.h"
#include "tests/support/SmallDisk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <system_error>
#include <unistd.h>

using namespace test;

namespace
{

const QByteArray former = "the former content, which is longer";

/// More than is buffered before it is written to the disk.
const QByteArray large(0x10000, 'a');

/// A folder and the file in it that is written.
class WholeFile : public testing::Test
{
protected:
    void put(const QByteArray& content) const
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    QByteArray content() const
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    bool write(const QByteArray& content) const { return sim::write_whole_file(path, content); }

    /// Everything in the folder, what is hidden included.
    QStringList files() const
    {
        return QDir(folder.path())
            .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("file"));
    const QStringList the_file_alone{QStringLiteral("file")};
};

/// A pipe in the place of the file, open at both ends, so that no one waits for the other.
class WholeFileIntoAPipe : public WholeFile
{
protected:
    WholeFileIntoAPipe()
    {
        const QByteArray name = QFile::encodeName(path);
        if (::mkfifo(name.constData(), 0600) != 0) {
            throw std::system_error(errno, std::generic_category(), "no pipe");
        }
        m_pipe = ::open(name.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    }

    ~WholeFileIntoAPipe() override { ::close(m_pipe); }

    QByteArray received() const
    {
        QByteArray bytes(1000, '\0');
        const auto count = ::read(m_pipe, bytes.data(), static_cast<std::size_t>(bytes.size()));
        return bytes.left(static_cast<int>(count > 0 ? count : 0));
    }

    bool is_still_there() const
    {
        struct stat information {
        };

        return ::lstat(QFile::encodeName(path).constData(), &information) == 0 &&
               S_ISFIFO(information.st_mode);
    }

private:
    int m_pipe = -1;
};

} // namespace

TEST_F(WholeFile, IsMadeWhereNoneWas)
{
    EXPECT_TRUE(write("content"));
    EXPECT_EQ(content(), "content");
    EXPECT_EQ(files(), the_file_alone);
}

TEST_F(WholeFile, ReplacesALongerOne)
{
    put(former);
    EXPECT_TRUE(write("content"));
    EXPECT_EQ(content(), "content");
    EXPECT_EQ(files(), the_file_alone);
}

TEST_F(WholeFile, IsNotMadeOnAFullDisk)
{
    const SmallDisk disk(static_cast<rlim_t>(large.size() - 1));
    EXPECT_FALSE(write(large));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(WholeFile, StaysAsItWasOnAFullDisk)
{
    put(former);
    for (const QByteArray& bytes : {QByteArray(100, 'a'), large}) {
        SCOPED_TRACE(bytes.size());
        const SmallDisk disk(static_cast<rlim_t>(bytes.size() - 1));
        EXPECT_FALSE(write(bytes));
        EXPECT_EQ(content(), former);
        EXPECT_EQ(files(), the_file_alone);
    }
}

TEST_F(WholeFile, IsNotMadeInAMissingFolder)
{
    EXPECT_FALSE(sim::write_whole_file(folder.filePath(QStringLiteral("none/file")), "content"));
    EXPECT_EQ(files(), QStringList());
}

TEST_F(WholeFile, NeverTakesThePlaceOfAFolder)
{
    ASSERT_TRUE(QDir().mkdir(path));
    EXPECT_FALSE(write("content"));
    EXPECT_TRUE(QDir(path).exists());
    EXPECT_EQ(files(), the_file_alone);
}

TEST_F(WholeFileIntoAPipe, GoesThrough)
{
    EXPECT_TRUE(write("content"));
    EXPECT_EQ(received(), "content");
    EXPECT_TRUE(is_still_there());
}

TEST_F(WholeFileIntoAPipe, GoesThroughALink)
{
    const QString link = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(path, link));
    EXPECT_TRUE(sim::write_whole_file(link, "content"));
    EXPECT_EQ(received(), "content");
    EXPECT_TRUE(is_still_there());
    EXPECT_EQ(QFile::symLinkTarget(link), path);
}

// A node of its own, so that no fault can put a file in the place of the system's.
TEST_F(WholeFile, GoesIntoADeviceThatStays)
{
    const QByteArray name = QFile::encodeName(path);
    if (::mknod(name.constData(), S_IFCHR | 0600, makedev(1, 7)) != 0) {
        GTEST_SKIP() << "this user may not make device nodes";
    }
    EXPECT_FALSE(write("content")); // this device is always full

    struct stat information {
    };

    ASSERT_EQ(::lstat(name.constData(), &information), 0);
    EXPECT_TRUE(S_ISCHR(information.st_mode));
    EXPECT_EQ(files(), the_file_alone);
}
