#include "sim/device/Error.h"
#include "sim/line/PseudoTerminal.h"
#include "sim/program/PortLink.h"
#include "tests/sim/HostPort.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <memory>

using namespace test;
using sim::Error;
using sim::PortLink;
using sim::PseudoTerminal;

namespace
{

class SimPortLink : public testing::Test
{
protected:
    QString target() const { return QFileInfo(path).symLinkTarget(); }

    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("port"));
    PseudoTerminal terminal;
};

} // namespace

TEST_F(SimPortLink, IsThePortUnderAnotherName)
{
    const PortLink link(path, terminal.path());
    EXPECT_EQ(target(), terminal.path());
    QByteArray heard;
    QObject::connect(&terminal, &PseudoTerminal::received,
                     [&heard](const QByteArray& bytes) { heard.append(bytes); });
    HostPort host(path);
    host.send("x");
    EXPECT_TRUE(wait_until([&heard] { return heard == "x"; }));
}

TEST_F(SimPortLink, IsRemovedAtTheEnd)
{
    {
        const PortLink link(path, terminal.path());
    }
    EXPECT_FALSE(QFileInfo(path).isSymLink());
}

TEST_F(SimPortLink, IsRemovedEvenWhenThePortIsGone)
{
    {
        const PortLink link(path, terminal.path());
        terminal.unplug();
    }
    EXPECT_FALSE(QFileInfo(path).isSymLink());
}

TEST_F(SimPortLink, ReplacesStaleLinks)
{
    const PseudoTerminal other;
    for (const QString& old : {QStringLiteral("/dev/nothing-is-here"), other.path()}) {
        ASSERT_TRUE(QFile::link(old, path));
        const PortLink link(path, terminal.path());
        EXPECT_EQ(target(), terminal.path());
    }
}

TEST_F(SimPortLink, RefusesToReplaceAnythingElse)
{
    const QString file_path = folder.filePath(QStringLiteral("file"));
    QFile file(file_path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QString link_to_file = folder.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(file_path, link_to_file));
    for (const QString& there : {file_path, link_to_file, folder.path()}) {
        try {
            const PortLink link(there, terminal.path());
            ADD_FAILURE() << there.toStdString();
        } catch (const Error& error) {
            EXPECT_EQ(error.what(), "--link " + there.toStdString() +
                                        ": the file exists and is not a link to a pseudo-terminal");
        }
    }
    EXPECT_TRUE(QFileInfo(file_path).isFile());
    EXPECT_EQ(QFileInfo(link_to_file).symLinkTarget(), file_path);
}

TEST_F(SimPortLink, RefusesToBeWhereThereIsNoFolder)
{
    const QString nowhere = folder.filePath(QStringLiteral("nowhere/port"));
    try {
        const PortLink link(nowhere, terminal.path());
        ADD_FAILURE();
    } catch (const Error& error) {
        EXPECT_EQ(error.what(), "--link " + nowhere.toStdString() +
                                    ": cannot create the link: No such file or directory");
    }
}

TEST_F(SimPortLink, LeavesALinkAloneThatIsAnothersByNow)
{
    const PseudoTerminal other;
    auto link = std::make_unique<PortLink>(path, terminal.path());
    const PortLink others(path, other.path());
    link.reset();
    EXPECT_EQ(target(), other.path());
}
