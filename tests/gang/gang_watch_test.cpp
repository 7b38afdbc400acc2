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
    /// Plugs in a device by creating a link to its port.
    std::unique_ptr<SimProcess> plug_in(const char* name,
                                        const QByteArray& options = "--entry version") const
    {
        return device(
            (options + " --link " + path(QString::fromLatin1(name)).toUtf8()).constData());
    }

    GangProcess watch(const char* arguments = "-B 0102 -w image.hex") const
    {
        return GangProcess(folder(),
                           QStringList{QStringLiteral("--watch"), path(QStringLiteral("tty*"))} +
                               words("--record record.jsonl --") + words(arguments));
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

TEST_F(GangWatch, TakesADeviceWithTwoNamesOnce)
{
    const auto first = plug_in("ttyA");
    ASSERT_TRUE(QFile::link(first->port(), path(QStringLiteral("ttyB"))));
    auto gang = watch();
    ASSERT_TRUE(gang.has_printed("ttyA: ok"));
    const auto bystander = plug_in("ttyC");
    ASSERT_TRUE(gang.has_printed("ttyC: ok"));
    gang.send(SIGINT);
    EXPECT_EQ(gang.result().status, 0);
    EXPECT_EQ(record().size(), 2U);
}

TEST_F(GangWatch, TakesADeviceThatCameWhileTheOneBeforeWasStillTried)
{
    auto gang = watch("-wv image.hex");
    {
        const auto silent = plug_in("ttyA", "--entry silent");
        ASSERT_TRUE(gang.has_printed("ttyA: started"));
    }
    const auto bystander = plug_in("ttyB");
    ASSERT_TRUE(gang.has_printed("ttyB: ok")) << "by now the first is known to be away";
    EXPECT_EQ(gang.count("ttyA: started"), 1) << "one run on a port at a time";
    const auto next = plug_in("ttyA");
    ASSERT_TRUE(gang.has_printed("ttyA: ok"));
    gang.send(SIGTERM);
    EXPECT_EQ(gang.result().status, 1) << "the first was not ok";
    EXPECT_EQ(record().size(), 3U);
}

TEST_F(GangWatch, TakesNoFurtherPortOnceTheNumbersHaveRunOut)
{
    put_file(QStringLiteral("numbers"), "255\n");
    const auto busy = plug_in("ttyA", "--entry silent");
    GangProcess gang(
        folder(),
        QStringList{QStringLiteral("--watch"), path(QStringLiteral("tty*"))} +
            words("--serial-at 0xE0 --serial-size 1 --serial-file numbers -- -w image.hex"));
    ASSERT_TRUE(gang.has_printed("ttyA: started"));
    const auto without_a_number = plug_in("ttyB");
    ASSERT_TRUE(gang.has_printed("ttyB: started"));
    const auto late = plug_in("ttyC");
    const GangResult result = gang.result();
    EXPECT_EQ(result.status, 1) << result;
    EXPECT_TRUE(result.err.contains("the serial number 256 does not fit into 1 bytes")) << result;
    EXPECT_TRUE(result.out.contains("ttyA: silent")) << result;
    EXPECT_FALSE(result.out.contains("ttyC")) << result;
}

} // namespace
