#include "sim/program/FileClash.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <unistd.h>

using sim::find_clash;
using Use = sim::NamedFile::Use;

namespace
{

/// A folder with the file "file", the folder "below" and links to both.
class SimFileClash : public testing::Test
{
protected:
    SimFileClash()
    {
        QFile file(path("file"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("below")));
        EXPECT_TRUE(QFile::link(QStringLiteral("below"), path("link to below")));
        EXPECT_TRUE(QFile::link(QStringLiteral("file"), path("link to file")));
        EXPECT_TRUE(QFile::link(QStringLiteral("link to file"), path("link to link")));
        EXPECT_TRUE(QFile::link(QStringLiteral("nothing"), path("link to nothing")));
        EXPECT_TRUE(QFile::link(QStringLiteral("circle"), path("circle")));
        EXPECT_EQ(::link(QFile::encodeName(path("file")).constData(),
                         QFile::encodeName(path("hard link")).constData()),
                  0);
    }

    QString path(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }

    bool clash(const QString& one, Use use, const QString& other, Use other_use) const
    {
        const bool clash = find_clash({{{}, one, use}, {{}, other, other_use}}).has_value();
        EXPECT_EQ(find_clash({{{}, other, other_use}, {{}, one, use}}).has_value(), clash);
        return clash;
    }

    bool clash(const char* one, Use use, const char* other, Use other_use) const
    {
        return clash(path(one), use, path(other), other_use);
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(SimFileClash, IsBetweenAFileThatIsWrittenAndAnyOther)
{
    EXPECT_TRUE(clash("file", Use::Written, "file", Use::Read));
    EXPECT_TRUE(clash("file", Use::Written, "file", Use::Written));
    EXPECT_TRUE(clash("file", Use::Linked, "file", Use::Read));
    EXPECT_FALSE(clash("file", Use::Read, "file", Use::Read));
    EXPECT_FALSE(clash("file", Use::Written, "other", Use::Read));
}

TEST_F(SimFileClash, IsFoundUnderAnyName)
{
    for (const char* name : {"below/../file", "link to below/../file", "link to file",
                             "link to link", "hard link", "./file"}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(clash("file", Use::Read, name, Use::Written));
    }
}

TEST_F(SimFileClash, IsFoundBeforeTheFileIsThere)
{
    EXPECT_TRUE(clash("new", Use::Written, "./new", Use::Written));
    EXPECT_TRUE(clash("below/new", Use::Written, "link to below/new", Use::Written));
    EXPECT_TRUE(clash("nothing", Use::Written, "link to nothing", Use::Written));
    EXPECT_TRUE(clash("no folder/new", Use::Written, "no folder/new", Use::Written));
    EXPECT_FALSE(clash("new", Use::Written, "below/new", Use::Written));
}

TEST_F(SimFileClash, IsFoundBetweenRelativeAndAbsoluteNames)
{
    const QString relative = QDir::current().relativeFilePath(path("new"));
    EXPECT_TRUE(clash(relative, Use::Written, path("new"), Use::Written));
}

TEST_F(SimFileClash, OfALinkIsAboutItsNameAndNotWhatItLeadsTo)
{
    EXPECT_TRUE(clash("link to nothing", Use::Linked, "link to nothing", Use::Written));
    EXPECT_TRUE(clash("link to file", Use::Linked, "link to link", Use::Written));
    EXPECT_FALSE(clash("link to file", Use::Linked, "file", Use::Written));
}

TEST_F(SimFileClash, IsNotBetweenFilesThatAreNotGiven)
{
    EXPECT_FALSE(clash(QString(), Use::Written, QString(), Use::Written));
    EXPECT_FALSE(clash(QString(), Use::Written, path("file"), Use::Read));
}

TEST_F(SimFileClash, IsNotBetweenFilesThatKeepNothing)
{
    const QString null = QStringLiteral("/dev/null");
    EXPECT_FALSE(clash(null, Use::Written, null, Use::Written));
}

TEST_F(SimFileClash, EndsItsSearchWhereLinksLeadInACircle)
{
    EXPECT_TRUE(clash("circle", Use::Written, "circle", Use::Written));
    EXPECT_FALSE(clash("circle", Use::Written, "file", Use::Written));
}

TEST_F(SimFileClash, NamesTheOptions)
{
    const auto clash = find_clash({{QStringLiteral("--one"), path("other"), Use::Read},
                                   {QStringLiteral("--two"), path("file"), Use::Read},
                                   {QStringLiteral("--three"), path("file"), Use::Written}});
    ASSERT_TRUE(clash.has_value());
    EXPECT_EQ(clash->option, QStringLiteral("--two"));
    EXPECT_EQ(clash->other_option, QStringLiteral("--three"));
}
