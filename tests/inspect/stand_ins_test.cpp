#include "inspect/FileOutlook.h"
#include "inspect/StandIns.h"
#include "inspect/UsageError.h"
#include "tests/inspect/InspectTest.h"
#include "tests/support/SmallDisk.h"

#include <QDir>

using namespace test;

namespace
{

class StandInFor : public InspectTest
{
protected:
    QByteArray content_of(const QString& name)
    {
        QFile stand_in(m_files.copy_of(name));
        EXPECT_TRUE(stand_in.open(QIODevice::ReadOnly));
        return stand_in.readAll();
    }

    void write_to_stand_in_of(const QString& name, const QByteArray& text)
    {
        QFile stand_in(m_files.copy_of(name));
        EXPECT_TRUE(stand_in.open(QIODevice::WriteOnly));
        EXPECT_EQ(stand_in.write(text), text.size());
    }

    inspect::StandIns m_files;
};

} // namespace

TEST_F(StandInFor, AFileBeginsWithItsContent)
{
    const QByteArray large(3000000, 'x');
    EXPECT_EQ(content_of(put_file(QStringLiteral("image.hex"), large)), large);
}

TEST_F(StandInFor, AMissingFileIsEmptyAndLeavesItMissing)
{
    EXPECT_EQ(content_of(path(QStringLiteral("missing.hex"))), QByteArray());
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("missing.hex"))));
}

TEST_F(StandInFor, AFileThatIsOnlyWrittenToIsEmpty)
{
    const QString log = put_file(QStringLiteral("frames.log"), "before");
    QFile stand_in(m_files.empty_for(log));
    ASSERT_TRUE(stand_in.open(QIODevice::ReadOnly));
    EXPECT_EQ(stand_in.readAll(), QByteArray());
    EXPECT_EQ(m_files.empty_for(QString()), QString());
}

TEST_F(StandInFor, AFileThatIsReadFirstHasItsContentForAWriterToo)
{
    const QString image = put_file(QStringLiteral("image.hex"), "before");
    EXPECT_EQ(content_of(image), QByteArray("before"));
    EXPECT_EQ(m_files.empty_for(image), m_files.copy_of(image));
    EXPECT_EQ(content_of(image), QByteArray("before"));
}

TEST_F(StandInFor, AFileTakesWhatIsWrittenInItsPlace)
{
    const QString image = put_file(QStringLiteral("image.hex"), "before");
    write_to_stand_in_of(image, "after");
    EXPECT_EQ(content_of(image), QByteArray("after"));
    EXPECT_EQ(file(QStringLiteral("image.hex")), QByteArray("before"));
}

TEST_F(StandInFor, TwoNamesOfOneFileIsTheSame)
{
    const QString image = put_file(QStringLiteral("image.hex"), "text");
    const QString link = path(QStringLiteral("link.hex"));
    ASSERT_TRUE(QFile::link(QStringLiteral("image.hex"), link));
    EXPECT_EQ(m_files.copy_of(image), m_files.copy_of(link));
    EXPECT_EQ(m_files.copy_of(path(QStringLiteral("new.hex"))),
              m_files.copy_of(path(QStringLiteral("./new.hex"))));
    EXPECT_NE(m_files.copy_of(image), m_files.copy_of(path(QStringLiteral("new.hex"))));
}

TEST_F(StandInFor, AFileThatMemoryDoesNotHoldCannotBeMade)
{
    const QString image = put_file(QStringLiteral("image.hex"), QByteArray(5000, 'x'));
    const SmallDisk disk(4096);
    EXPECT_THROW(m_files.copy_of(image), inspect::UsageError);
}

TEST_F(StandInFor, NothingIsNothing)
{
    EXPECT_EQ(m_files.copy_of(QString()), QString());
}

TEST_F(StandInFor, AFileIsNamedByTheFileInAText)
{
    const QString image = path(QStringLiteral("image.hex"));
    const QString text = QStringLiteral("cannot load ") + m_files.copy_of(image);
    EXPECT_EQ(m_files.with_files(text), QStringLiteral("cannot load ") + image);
}

namespace
{

/// The outlook must be what opening the file really comes to.
class FileThatIsOpened : public InspectTest
{
protected:
    static bool opens(const QString& name, QIODevice::OpenMode mode)
    {
        QFile file(name);
        return file.open(mode);
    }

    static void expect_as_foreseen(const QString& name)
    {
        const bool could_open = inspect::could_open(name);
        const bool could_append = inspect::could_append(name);
        EXPECT_EQ(could_append, opens(name, QIODevice::Append)) << name.toStdString();
        EXPECT_EQ(could_open, opens(name, QIODevice::ReadWrite)) << name.toStdString();
    }
};

} // namespace

TEST_F(FileThatIsOpened, IsForeseen)
{
    put_file(QStringLiteral("image.hex"), "text");
    ASSERT_TRUE(QDir(path(QString())).mkdir(QStringLiteral("folder")));
    const auto link = [this](const char* name, const char* target) {
        ASSERT_TRUE(QFile::link(QLatin1String(target), path(QLatin1String(name))));
    };
    link("to_file", "image.hex");
    link("to_nothing", "nothing.hex");
    link("to_a_folder", "folder");
    link("to_no_folder", "none/nothing.hex");
    link("to_a_link", "to_nothing_else");
    link("to_nothing_else", "else.hex");
    link("to_itself", "to_itself");
    for (const char* name : {"image.hex", "new.hex", "folder", "folder/", "folder/new.hex",
                             "none/new.hex", "image.hex/new.hex", "to_file", "to_nothing",
                             "to_a_folder", "to_no_folder", "to_a_link", "to_itself"}) {
        expect_as_foreseen(path(QLatin1String(name)));
    }
    expect_as_foreseen(path(QString(255, QLatin1Char('a'))));
    expect_as_foreseen(path(QString(256, QLatin1Char('a'))));
    expect_as_foreseen(QString());
    expect_as_foreseen(QStringLiteral("/dev/null"));
}
