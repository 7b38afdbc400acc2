#include "tests/gang/GangTest.h"
#include "tests/support/Waiting.h"

#include <QFile>

#include <csignal>

using namespace test;

namespace
{

class GangWatch : public GangTest
{
protected:
    /// Plugs a device in: a link to its port appears.
    std::unique_ptr<SimProcess> plug_in(const char* name) const
    {
        const QByteArray options =
            "--entry version --link " + path(QString::fromLatin1(name)).toUtf8();
        return device(options.constData());
    }

    GangProcess watch() const
    {
        return GangProcess(folder(),
                           QStringList{QStringLiteral("--watch"), path(QStringLiteral("tty*"))} +
                               words("--record record.jsonl -- -B 0102 -w image.hex"));
    }
};

TEST_F(GangWatch, ProgramsWhatIsThereAndWhatAppears)
{
    const auto first = plug_in("ttyA");
    auto gang = watch();
    ASSERT_TRUE(gang.has_printed("ttyA: ok"));
    const auto second = plug_in("ttyB");
    ASSERT_TRUE(gang.has_printed("ttyB: ok"));
    gang.send(SIGINT);
    EXPECT_EQ(gang.result().status, 0);
    EXPECT_EQ(record().size(), 2U);
}

TEST_F(GangWatch, TakesTheNextDeviceOnceThePortHasBeenAway)
{
    auto gang = watch();
    {
        const auto first = plug_in("ttyA");
        ASSERT_TRUE(gang.has_printed("ttyA: ok"));
    }
    ASSERT_FALSE(QFile::exists(path(QStringLiteral("ttyA"))));
    const auto bystander = plug_in("ttyB");
    ASSERT_TRUE(gang.has_printed("ttyB: ok")) << "by now the first is known to be away";
    const auto next = plug_in("ttyA");
    ASSERT_TRUE(wait_until([&gang] { return gang.count("ttyA: ok") == 2; }));
    gang.send(SIGINT);
    EXPECT_EQ(gang.result().status, 0);
    EXPECT_EQ(record().size(), 3U) << "a port that stays is programmed once";
}

} // namespace
