#include "gang/ReadProof.h"
#include "tests/gang/GangTest.h"

using namespace test;

namespace
{

using gang::ReadProof;

class ReadProofs : public GangTest
{
protected:
    QString name() const { return path(QStringLiteral("read.hex")); }

    void put(const QByteArray& contents) const { put_file(QStringLiteral("read.hex"), contents); }

    /// Without the folder.
    std::string problem(const ReadProof& proof) const
    {
        return proof.problem().remove(folder() + QLatin1Char('/')).toStdString();
    }
};

const QByteArray whole = ":0100000001FE\n:00000001FF\n";

TEST_F(ReadProofs, AreNotAskedForWithoutARead)
{
    EXPECT_EQ(problem(ReadProof()), "");
}

TEST_F(ReadProofs, AreWholeFiles)
{
    const ReadProof proof(name());
    put(whole);
    EXPECT_EQ(problem(proof), "");
}

TEST_F(ReadProofs, AreNotThereWithoutAFile)
{
    EXPECT_EQ(problem(ReadProof(name())),
              "read.hex is missing or not a regular file, so what was read is not saved");
}

TEST_F(ReadProofs, AreNotFilesFromBefore)
{
    put(whole);
    EXPECT_EQ(problem(ReadProof(name())),
              "read.hex has not changed, so what was read is not saved");
}

TEST_F(ReadProofs, AreNotFilesThatWereCutShort)
{
    const ReadProof proof(name());
    for (const QByteArray& contents : {QByteArray(), whole.chopped(1), whole.left(20)}) {
        put(contents);
        EXPECT_EQ(problem(proof), "read.hex is incomplete: it does not end with an end record")
            << contents.constData();
    }
}

} // namespace
