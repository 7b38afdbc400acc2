#include "gang/ReadFileCheck.h"
#include "tests/gang/GangTest.h"

#include <QFile>

using namespace test;

namespace
{

using gang::ReadFileCheck;

/// What a read leaves in its file, and what is said of it.
class FileThatWasRead : public GangTest
{
protected:
    QString name() const { return path(QStringLiteral("out.hex")); }

    void put(const QByteArray& contents) const { put_file(QStringLiteral("out.hex"), contents); }

    std::string problem(const ReadFileCheck& check) const
    {
        return check.problem().remove(folder()).toStdString();
    }

    std::string problem_of(const QByteArray& read) const
    {
        QFile::remove(name());
        const ReadFileCheck check(name());
        put(read);
        return problem(check);
    }
};

const QByteArray data = ":02000000AABB99\n";
const QByteArray end = ":00000001FF\n";

TEST_F(FileThatWasRead, IsWholeUpToItsEndRecord)
{
    EXPECT_EQ(problem_of(data + end), "");
}

TEST_F(FileThatWasRead, IsNotMissedWhereNothingIsRead)
{
    EXPECT_EQ(problem(ReadFileCheck()), "");
    EXPECT_EQ(problem(ReadFileCheck(QString())), "");
}

TEST_F(FileThatWasRead, IsIncompleteIfItIsCutShort)
{
    for (const QByteArray& read :
         {QByteArray(), data, end.mid(1), data + end.chopped(1), QByteArray("\n") + end}) {
        EXPECT_EQ(problem_of(read), "/out.hex is incomplete: it does not end with an end record")
            << read.constData();
    }
}

TEST_F(FileThatWasRead, IsNotTheOneThatWasThereBefore)
{
    put(data + end);
    const ReadFileCheck check(name());
    EXPECT_EQ(problem(check), "/out.hex has not changed, so what was read is not saved");
    ASSERT_TRUE(QFile::remove(name()));
    put(data + data + end);
    EXPECT_EQ(problem(check), "");
}

TEST_F(FileThatWasRead, IsOneThatKeepsItsContents)
{
    EXPECT_EQ(problem(ReadFileCheck(name())),
              "/out.hex is missing or not a regular file, so what was read is not saved");
    EXPECT_EQ(problem(ReadFileCheck(QStringLiteral("/dev/null"))),
              "/dev/null is missing or not a regular file, so what was read is not saved");
}

} // namespace
