#include "gang/CopiedFile.h"
#include "tests/gang/GangTest.h"

#include <QCryptographicHash>

using namespace test;

namespace
{

using gang::CopiedFile;

class CopiedFiles : public GangTest
{
protected:
    std::string refusal(const QString& file, const QString& copy) const
    {
        try {
            const CopiedFile copied(path(file), path(copy));
        } catch (const gang::FileError& error) {
            return QString::fromStdString(error.what()).remove(folder()).toStdString();
        }
        return "none";
    }
};

TEST_F(CopiedFiles, AreWhatTheyWereWhenTheyWereTaken)
{
    const QByteArray image = file(QStringLiteral("image.hex"));
    const CopiedFile copied(path(QStringLiteral("image.hex")), path(QStringLiteral("copy")));
    put_file(QStringLiteral("image.hex"), "changed");
    EXPECT_EQ(copied.contents(), image);
    EXPECT_EQ(file(QStringLiteral("copy")), image);
    EXPECT_EQ(copied.sha256().toLatin1(),
              QCryptographicHash::hash(image, QCryptographicHash::Sha256).toHex());
}

TEST_F(CopiedFiles, MustBeThereAndBeTaken)
{
    EXPECT_EQ(refusal(QStringLiteral("missing"), QStringLiteral("copy")),
              "/missing: No such file or directory");
    EXPECT_EQ(refusal(QStringLiteral("image.hex"), QStringLiteral("missing/copy")),
              "/image.hex: cannot copy it to the temporary file /missing/copy");
}

} // namespace
