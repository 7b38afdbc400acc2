#include "process/FileNames.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <unistd.h>

namespace
{

using Platform::file_key;

/// A folder with a file, a subfolder and links to both, a dangling link and a circular one.
class FileNames : public testing::Test
{
protected:
    FileNames()
    {
        QFile file(path("file"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_TRUE(QDir(m_folder.path()).mkdir(QStringLiteral("below")));
        EXPECT_TRUE(QFile::link(QStringLiteral("below"), path("link to below")));
        EXPECT_TRUE(QFile::link(QStringLiteral("file"), path("link to file")));
        EXPECT_TRUE(QFile::link(QStringLiteral("nothing"), path("link to nothing")));
        EXPECT_TRUE(QFile::link(QStringLiteral("circle"), path("circle")));
        EXPECT_EQ(::link(QFile::encodeName(path("file")).constData(),
                         QFile::encodeName(path("hard link")).constData()),
                  0);
    }

    QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    QTemporaryDir m_folder;
};

TEST_F(FileNames, OfOneFileHaveOneKey)
{
    EXPECT_EQ(file_key(path("link to file")), file_key(path("file")));
    EXPECT_EQ(file_key(path("hard link")), file_key(path("file")));
    EXPECT_EQ(file_key(path("below/../file")), file_key(path("file")));
    EXPECT_NE(file_key(path("below")), file_key(path("file")));
}

TEST_F(FileNames, OfAFileThatIsNotThereYetHaveOneKey)
{
    EXPECT_EQ(file_key(path("link to nothing")), file_key(path("nothing")));
    EXPECT_EQ(file_key(path("link to below/new")), file_key(path("below/new")));
    EXPECT_NE(file_key(path("below/new")), file_key(path("new")));
}

TEST_F(FileNames, MayLeadInACircle)
{
    EXPECT_NE(file_key(path("circle")), file_key(path("file")));
    EXPECT_LT(Platform::link_chain(path("circle")).size(), 100);
}

TEST_F(FileNames, AreAChainOfPlaces)
{
    EXPECT_EQ(Platform::link_chain(path("link to below/../file")).size(), 1);
    EXPECT_TRUE(Platform::link_chain(path("link to nothing"))
                    .contains(Platform::place_of(path("nothing"))));
}

} // namespace
