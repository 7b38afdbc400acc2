#include "tests/gang/GangTest.h"

#include <QRegularExpression>

using namespace test;

namespace
{

/// What people read where standard output is no terminal.
class GangText : public GangTest
{
protected:
    /// All of it, with all durations alike.
    std::string printed(const QStringList& arguments) const
    {
        const GangResult result = run(arguments);
        EXPECT_EQ(result.status, 1) << result;
        return QString::fromLocal8Bit(result.out)
            .replace(QRegularExpression(QStringLiteral("\\d+\\.\\d s")), QStringLiteral("TIME"))
            .toStdString();
    }
};

TEST_F(GangText, HasALineForEachTry)
{
    EXPECT_EQ(printed(words("--tries 2 --pause 0 /dev/no-such-port -- -e")),
              "no-such-port: started\n"
              "no-such-port: try 1: port, Port /dev/no-such-port cannot be opened. Aborting...\n"
              "no-such-port: port, TIME, 2 tries, Port /dev/no-such-port cannot be opened. "
              "Aborting...\n"
              "1 run: 1 port, TIME\n");
}

TEST_F(GangText, CountsWhatWasNotStarted)
{
    put_file(QStringLiteral("numbers"), "255\n");
    EXPECT_EQ(printed(words("--jobs 1 --serial-at 0xE0 --serial-size 1 --serial-file numbers "
                            "/dev/no-such-a /dev/no-such-b -- -B 0102 -w image.hex")),
              "no-such-a: started\n"
              "no-such-a: port, TIME, number 255, Port /dev/no-such-a cannot be opened. "
              "Aborting...\n"
              "no-such-b: started\n"
              "1 run: 1 port, 1 not started, TIME\n");
}

TEST_F(GangText, IsHelpIfThatIsAskedFor)
{
    const GangResult result = run(words("--help"));
    EXPECT_EQ(result.status, 0) << result;
    EXPECT_EQ(result.err.toStdString(), "");
    const std::string out = result.out.toStdString();
    EXPECT_THAT(out, testing::StartsWith("Usage: "));
    EXPECT_THAT(out,
                testing::HasSubstr("zserial-gang [options] port... -- zserial-arguments...\n"));
    EXPECT_THAT(out, testing::HasSubstr("\n  --serial-format <format>"));
}

TEST_F(GangText, IsTheVersionIfThatIsAskedFor)
{
    const GangResult result = run(words("--version"));
    EXPECT_EQ(result.status, 0) << result;
    EXPECT_EQ(result.out.toStdString(), "zserial-gang 2.0\n");
}

} // namespace
