#include "memory/MemoryMap.h"
#include "tests/memory/Images.h"

#include <QDir>
#include <QTemporaryDir>

#include <cerrno>
#include <functional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace test;

namespace
{

constexpr uid_t somebody = 1234;
constexpr uid_t somebody_else = 65534;

/// Exit statuses of a child that saves.
enum : int { has_saved, has_failed, could_not_prepare };

/// Runs the action in a process of its own, whose user and mounts it may change; returns what the
/// action returned.
int in_child(const std::function<int()>& action)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(action());
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Keeps the mounts of this process to itself. That is impossible in a root folder that has been
/// changed, because it is not a mount point: there they can be seen until they are unmounted.
bool make_mounts_private()
{
    return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 || errno == EINVAL;
}

/// A file that is there, with content that is longer than what is saved into it.
class ExistingFile : public testing::Test
{
protected:
    ExistingFile()
    {
        map.write(0, QByteArray("\x01\x02\x03\x04", 4));
        write_file(path, QByteArray(1000, 'x'));
    }

    struct stat information() const
    {
        struct stat found {
        };

        EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &found), 0);
        return found;
    }

    QStringList files() const { return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden); }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("image.hex"));
    MemoryMap map{MemoryMap::default_chunk_size};
    const QByteArray text = ":020000040000FA\n:0400000001020304F2\n:00000001FF\n";
};

/// A symbolic link to a file that is not there yet.
class DanglingLink : public ExistingFile
{
protected:
    QString link_to(const QString& target) const
    {
        QString link = folder.filePath(QStringLiteral("link"));
        EXPECT_TRUE(QFile::link(target, link));
        return link;
    }
};

} // namespace

TEST_F(ExistingFile, HoldsNothingButTheImageAfterwards)
{
    EXPECT_TRUE(map.save_to_hex_file(path));
    EXPECT_EQ(file_content(path), text);
    EXPECT_EQ(files(), QStringList(QStringLiteral("image.hex")));
}

TEST_F(ExistingFile, StaysTheSameFileOfTheSameOwnerAndMode)
{
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0640), 0);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(QFile::encodeName(path).constData(), somebody, somebody), 0);
    }
    const struct stat before = information();
    EXPECT_TRUE(map.save_to_hex_file(path));
    const struct stat after = information();
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    EXPECT_EQ(file_content(path), text);
}

TEST_F(ExistingFile, KeepsItsOtherName)
{
    const QString other = folder.filePath(QStringLiteral("other.hex"));
    ASSERT_EQ(::link(QFile::encodeName(path).constData(), QFile::encodeName(other).constData()), 0);
    EXPECT_TRUE(map.save_to_hex_file(path));
    EXPECT_EQ(file_content(other), text);
    EXPECT_EQ(information().st_nlink, 2U);
}

TEST_F(ExistingFile, IsFoundThroughASymbolicLinkThatStays)
{
    const QString link = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(path, link));
    EXPECT_TRUE(map.save_to_hex_file(link));
    EXPECT_EQ(QFile::symLinkTarget(link), path);
    EXPECT_EQ(file_content(path), text);
}

TEST_F(DanglingLink, LeadsToTheFileThatIsMade)
{
    const QString target = folder.filePath(QStringLiteral("target.hex"));
    const QString link = link_to(target);
    EXPECT_TRUE(map.save_to_hex_file(link));
    EXPECT_EQ(QFile::symLinkTarget(link), target);
    EXPECT_EQ(file_content(target), text);
}

TEST_F(DanglingLink, IntoAMissingFolderFailsTheSaveAndStays)
{
    const QString target = folder.filePath(QStringLiteral("missing/target.hex"));
    const QString link = link_to(target);
    const DebugMessages messages;
    EXPECT_FALSE(map.save_to_hex_file(link));
    EXPECT_EQ(lines_of(messages),
              std::vector<std::string>{"\"MemoryMap::save_to_hex_file(): could not open file '" +
                                       link.toStdString() + "' for writing\""});
    EXPECT_EQ(QFile::symLinkTarget(link), target);
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("missing"))));
}

TEST_F(DanglingLink, ToItselfFailsTheSave)
{
    const QString link = link_to(folder.filePath(QStringLiteral("link")));
    EXPECT_FALSE(map.save_to_hex_file(link));
}

TEST_F(ExistingFile, MayHaveAsLongANameAsTheSystemTakes)
{
    for (const int length : {248, 249, 254, 255}) {
        SCOPED_TRACE(length);
        const QString name = folder.filePath(QString(length, QLatin1Char('n')));
        write_file(name, "former");
        EXPECT_TRUE(map.save_to_hex_file(name));
        EXPECT_EQ(file_content(name), text);
    }
}

// A single file that is passed into a container is a mount point: no other file can replace it.
TEST_F(ExistingFile, MayBeAMountOfItsOwn)
{
    const QString mounted = folder.filePath(QStringLiteral("mounted.hex"));
    write_file(mounted, "below the mount");
    EXPECT_EQ(in_child([&] {
                  const QByteArray mount_point = QFile::encodeName(mounted);
                  const int own_user = ::geteuid() == 0 ? 0 : CLONE_NEWUSER;
                  if (::unshare(CLONE_NEWNS | own_user) != 0 || !make_mounts_private() ||
                      ::mount(QFile::encodeName(path).constData(), mount_point.constData(), nullptr,
                              MS_BIND, nullptr) != 0) {
                      return could_not_prepare;
                  }
                  const bool saved = map.save_to_hex_file(mounted);
                  ::umount(mount_point.constData());
                  return saved ? has_saved : has_failed;
              }),
              has_saved);
    EXPECT_EQ(file_content(path), text);
    EXPECT_EQ(file_content(mounted), "below the mount");
}

// In a folder like /tmp, users cannot move or replace the files of others.
TEST_F(ExistingFile, MayBelongToAnotherUserInAStickyFolder)
{
    ASSERT_EQ(::geteuid(), 0U) << "only root can give a file to another user";
    const QByteArray name = QFile::encodeName(path);
    const QByteArray folder_name = QFile::encodeName(folder.path());
    ASSERT_EQ(::chown(name.constData(), somebody, somebody), 0);
    ASSERT_EQ(::chmod(name.constData(), 0666), 0);
    ASSERT_EQ(::chown(folder_name.constData(), somebody, somebody), 0);
    ASSERT_EQ(::chmod(folder_name.constData(), 01777), 0);
    EXPECT_EQ(in_child([&] {
                  if (::setgid(somebody_else) != 0 || ::setuid(somebody_else) != 0) {
                      return could_not_prepare;
                  }
                  return map.save_to_hex_file(path) ? has_saved : has_failed;
              }),
              has_saved);
    EXPECT_EQ(file_content(path), text);
}
