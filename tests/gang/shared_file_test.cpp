#include "gang/FileSystem.h"
#include "gang/SharedFile.h"
#include "tests/gang/GangTest.h"
#include "tests/support/SmallDisk.h"

#include <QFile>

using namespace test;

namespace
{

using gang::FileError;
using gang::SharedFile;

class SharedFiles : public GangTest
{
protected:
    QString name() const { return path(QStringLiteral("lines")); }

    void append(const char* line) const
    {
        SharedFile file(name(), SharedFile::Missing::Create);
        const SharedFile::Lock lock(file);
        file.append(line);
    }

    std::string contents() const { return file(QStringLiteral("lines")).toStdString(); }
};

TEST_F(SharedFiles, AppendWholeLines)
{
    append("one");
    append("two");
    EXPECT_EQ(contents(), "one\ntwo\n");
}

TEST_F(SharedFiles, LeaveATornLineToItself)
{
    put_file(QStringLiteral("lines"), "one\ntw");
    append("three");
    EXPECT_EQ(contents(), "one\ntw\nthree\n");
}

TEST_F(SharedFiles, TakeBackWhatADiskDoesNotTake)
{
    append("one");
    {
        const SmallDisk disk(6);
        EXPECT_THROW(append("a long line"), FileError);
    }
    EXPECT_EQ(contents(), "one\n");
}

TEST_F(SharedFiles, AreLockedAgainstOthers)
{
    SharedFile file(name(), SharedFile::Missing::Create);
    QFile other(name());
    ASSERT_TRUE(other.open(QIODevice::ReadWrite));
    {
        const SharedFile::Lock lock(file);
        EXPECT_FALSE(gang::try_lock(other));
    }
    EXPECT_TRUE(gang::try_lock(other));
}

TEST_F(SharedFiles, AreNotWaitedForForever)
{
    SharedFile file(name(), SharedFile::Missing::Create);
    QFile other(name());
    ASSERT_TRUE(other.open(QIODevice::ReadWrite));
    ASSERT_TRUE(gang::try_lock(other));
    try {
        const SharedFile::Lock lock(file);
        ADD_FAILURE() << "somebody else has it";
    } catch (const FileError& error) {
        EXPECT_THAT(error.what(), testing::EndsWith("/lines: another program keeps it locked"));
    }
}

TEST_F(SharedFiles, MayHaveToBeThere)
{
    EXPECT_THROW(SharedFile(name(), SharedFile::Missing::Refuse), FileError);
    EXPECT_FALSE(QFile::exists(name()));
}

TEST_F(SharedFiles, NoticeThatTheyWereReplaced)
{
    SharedFile file(name(), SharedFile::Missing::Create);
    EXPECT_NO_THROW(file.require_same_file());
    ASSERT_TRUE(QFile::rename(name(), path(QStringLiteral("old"))));
    EXPECT_THROW(file.require_same_file(), FileError);
    append("new");
    EXPECT_THROW(file.require_same_file(), FileError);
}

} // namespace
