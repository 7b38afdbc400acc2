#include "gang/PortWatch.h"
#include "tests/gang/GangTest.h"
#include "tests/support/OtherUser.h"
#include "tests/support/Waiting.h"

#include <QFile>

#include <optional>

using namespace test;

namespace
{

/// Files in the place of ports, seen by a user who is not root.
class PortWatches : public GangTest
{
protected:
    PortWatches()
    {
        EXPECT_TRUE(QFile::setPermissions(folder(), open));
        QObject::connect(&m_watch, &gang::PortWatch::appeared, &m_watch,
                         [this](const QString& port) { m_announced << port.right(1); });
    }

    void start() { m_watch.start(); }

    /// Makes a port that has its permissions from the beginning.
    void put(const char* name, QFile::Permissions permissions)
    {
        const QString hidden = QStringLiteral("hidden");
        m_user.reset();
        put_file(hidden, {});
        EXPECT_TRUE(QFile::setPermissions(path(hidden), permissions));
        EXPECT_TRUE(QFile::rename(path(hidden), port(name)));
        m_user.emplace();
    }

    void permit(const char* name)
    {
        m_user.reset();
        EXPECT_TRUE(QFile::setPermissions(port(name), open));
        m_user.emplace();
    }

    void remove(const char* name)
    {
        m_user.reset();
        EXPECT_TRUE(QFile::remove(port(name)));
        m_user.emplace();
    }

    QString port(const char* name) const
    {
        return path(QStringLiteral("tty%1").arg(QLatin1String(name)));
    }

    /// The last letters of the ports that have been announced, in this order.
    std::string announced() const { return m_announced.join(QString()).toStdString(); }

    bool waits_for(const char* letters) const
    {
        return wait_until([&] { return announced() == letters; });
    }

    static constexpr QFile::Permissions open{0x7777};
    static constexpr QFile::Permissions closed{};

private:
    gang::PortWatch m_watch{path(QStringLiteral("tty*"))};
    QStringList m_announced;
    std::optional<OtherUser> m_user;
};

TEST_F(PortWatches, AnnounceWhatIsThereAndWhatComes)
{
    put("A", open);
    start();
    EXPECT_EQ(announced(), "A");
    put("B", open);
    EXPECT_TRUE(waits_for("AB")) << announced();
}

TEST_F(PortWatches, WaitUntilANewPortHasItsPermissions)
{
    put("A", closed);
    start();
    EXPECT_EQ(announced(), "");
    permit("A");
    EXPECT_TRUE(waits_for("A")) << announced();
}

TEST_F(PortWatches, AnnounceAPortThatStaysClosedSoThatItsRunSaysSo)
{
    put("A", closed);
    start();
    EXPECT_EQ(announced(), "");
    EXPECT_TRUE(waits_for("A")) << announced();
}

TEST_F(PortWatches, WaitAnewForAPortThatHasGoneAndComeBack)
{
    put("A", closed);
    put("Z", closed);
    start();
    remove("A");
    ASSERT_TRUE(waits_for("Z")) << "by now both would have been waited for";
    put("A", closed);
    put("B", open);
    EXPECT_TRUE(waits_for("ZBA")) << announced();
}

} // namespace
