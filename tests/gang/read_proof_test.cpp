#include "gang/ReadProof.h"
#include "tests/gang/GangTest.h"

#include <QFile>

using namespace test;

namespace
{

using gang::ReadProof;

/// What a read leaves in its file, and what is said of it.
class ReadProofs : public GangTest
{
protected:
    QString name() const { return path(QStringLiteral("out.hex")); }

    void put(const QByteArray& contents) const { put_file(QStringLiteral("out.hex"), contents); }

    std::string problem(const ReadProof& proof) const
    {
        return proof.problem().remove(folder()).toStdString();
    }

    std::string problem_of(const QByteArray& read) const
    {
        QFile::remove(name());
        const ReadProof proof(name());
        put(read);
        return problem(proof);
    }
};

const QByteArray data = ":02000000AABB99\n";
const QByteArray end = ":00000001FF\n";

TEST_F(ReadProofs, AreARecordUpToTheLast)
{
    EXPECT_EQ(problem_of(data + end), "");
}

TEST_F(ReadProofs, AreNotNeededWhereNothingIsRead)
{
    EXPECT_EQ(problem(ReadProof()), "");
    EXPECT_EQ(problem(ReadProof(QString())), "");
}

TEST_F(ReadProofs, AreNoneOfAFileThatIsCutShort)
{
    for (const QByteArray& read :
         {QByteArray(), data, end.mid(1), data + end.chopped(1), QByteArray("\n") + end}) {
        EXPECT_EQ(problem_of(read), "/out.hex is incomplete: it does not end with an end record")
            << read.constData();
    }
}

TEST_F(ReadProofs, AreNoneOfTheFileThatWasThereBefore)
{
    put(data + end);
    const ReadProof proof(name());
    EXPECT_EQ(problem(proof), "/out.hex has not changed, so what was read is not saved");
    ASSERT_TRUE(QFile::remove(name()));
    put(data + data + end);
    EXPECT_EQ(problem(proof), "");
}

TEST_F(ReadProofs, AreNoneOfWhatKeepsNothing)
{
    EXPECT_EQ(problem(ReadProof(name())),
              "/out.hex is missing or not a regular file, so what was read is not saved");
    EXPECT_EQ(problem(ReadProof(QStringLiteral("/dev/null"))),
              "/dev/null is missing or not a regular file, so what was read is not saved");
}

} // namespace
