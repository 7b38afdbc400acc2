#include "gang/ArgumentError.h"
#include "gang/ToolCommand.h"
#include "tests/gang/GangTest.h"

#include <QDir>

using namespace test;

namespace
{

using gang::ArgumentError;
using gang::ToolCommand;

const gang::PortNames port = gang::names_of(QStringLiteral("/dev/ttyUSB0"), 3);

ToolCommand command(const char* arguments)
{
    return ToolCommand(words(arguments), port);
}

std::string joined(const QStringList& list)
{
    QStringList relative = list;
    relative.replaceInStrings(QDir::currentPath() + QLatin1Char('/'), QStringLiteral("./"));
    return relative.join(QLatin1Char(' ')).toStdString();
}

TEST(PortNames, AreFitForFiles)
{
    EXPECT_EQ(port.name, QStringLiteral("ttyUSB0"));
    EXPECT_EQ(gang::names_of(QStringLiteral("/dev/pts/3"), 1).name, QStringLiteral("pts_3"));
    EXPECT_EQ(gang::names_of(QStringLiteral("/tmp/line/left"), 1).name, QStringLiteral("left"));
    EXPECT_EQ(gang::names_of(QStringLiteral("ttyS1"), 1).path, QStringLiteral("ttyS1"));
    EXPECT_EQ(gang::names_of(QStringLiteral("./left"), 1).path,
              QDir::current().absoluteFilePath(QStringLiteral("left")));
    EXPECT_EQ(gang::file_of_port(QStringLiteral(".hidden")), QStringLiteral("/dev/.hidden"));
}

TEST(PortNames, AreReplacedOnce)
{
    EXPECT_EQ(gang::expand(QStringLiteral("{port} {name}-{n}{n} {other}"), port),
              QStringLiteral("/dev/ttyUSB0 ttyUSB0-33 {other}"));
    const gang::PortNames odd{QStringLiteral("{name}"), QStringLiteral("{n}"), 1};
    EXPECT_EQ(gang::expand(QStringLiteral("{port}{name}"), odd), QStringLiteral("{name}{n}"));
}

TEST(ToolCommand, PutsThePortFirstAndMakesFilesAbsolute)
{
    EXPECT_EQ(joined(command("-w a.hex -r {name}.hex -x {n}.log -R").words({})),
              "-s /dev/ttyUSB0 -w ./a.hex -r ./ttyUSB0.hex -x ./3.log -R");
    EXPECT_EQ(joined(command("-W 0 0x10 a.hex -l 0 0x10 b.hex").words({})),
              "-s /dev/ttyUSB0 -W 0 0x10 ./a.hex -l 0 0x10 ./b.hex");
}

TEST(ToolCommand, KnowsAFileByAPathThatLeavesALink)
{
    EXPECT_EQ(joined(command("-w link/../a.hex -r ././b.hex").words({})),
              "-s /dev/ttyUSB0 -w ./link/../a.hex -r ./b.hex");
}

TEST(ToolCommand, KnowsOptionsThatComeOfPlaceholders)
{
    const gang::PortNames odd{QStringLiteral("/dev/-e"), QStringLiteral("-e"), 1};
    const ToolCommand erase(words("{name}"), odd);
    EXPECT_TRUE(erase.settings().erase_all_wanted);
    EXPECT_TRUE(erase.suspicious_arguments().isEmpty());
}

TEST(ToolCommand, UsesCopiesOfImages)
{
    const ToolCommand same = command("-w a.hex -v a.hex -R");
    const QString image = same.written_image();
    EXPECT_EQ(joined(same.images()), "./a.hex");
    EXPECT_EQ(joined(same.words({{image, QStringLiteral("copy")}})),
              "-s /dev/ttyUSB0 -w copy -v copy -R");
    EXPECT_EQ(joined(same.words_without_reset({{image, QStringLiteral("copy")}})),
              "-s /dev/ttyUSB0 -w copy -v copy");
}

TEST(ToolCommand, CertifiesByTheSameAreas)
{
    EXPECT_EQ(joined(command("-B 110 -h -xe -xu -e -w a.hex -R").words_to_certify({})),
              "-s /dev/ttyUSB0 -v ./a.hex -h -xe -xu -R");
    EXPECT_EQ(joined(command("-wv a.hex").words_to_certify({})), "-s /dev/ttyUSB0 -v ./a.hex");
}

TEST(ToolCommand, CertifiesIntoTheSameFrameLog)
{
    EXPECT_EQ(joined(command("-w a.hex -x {n}.log").words_to_certify({})),
              "-s /dev/ttyUSB0 -v ./a.hex -x ./3.log");
}

TEST(ToolCommand, AFileThatIsReadAndThenVerifiedIsNoImage)
{
    const ToolCommand both = command("-r a.hex -v a.hex");
    EXPECT_TRUE(both.images().isEmpty());
    EXPECT_EQ(joined(both.outputs()), "./a.hex");
}

TEST(ToolCommand, DoubtsWhatTheToolPassesOver)
{
    EXPECT_EQ(joined(command("-vw a.hex").suspicious_arguments()),
              "zserial ignores the word \"-vw\", which is not an option "
              "zserial ignores the word \"a.hex\", which is not an option");
    EXPECT_EQ(joined(command("-wv a.hex -r b.hex").suspicious_arguments()),
              "with -wv, zserial does not carry out -E, -w, -W, -r, -l or -v");
    EXPECT_EQ(joined(command("-V").suspicious_arguments()),
              "with -V but without -B, every run fails: leave out -V");
    EXPECT_EQ(joined(command("-B 110 -e -w a.hex -v a.hex -R").suspicious_arguments()), "");
}

TEST(ToolCommand, RefusesWhatTheToolWouldRefuse)
{
    EXPECT_THROW(command("-w"), ArgumentError);
    EXPECT_THROW(command("-w a -w b"), ArgumentError);
    EXPECT_THROW(command("-e -E 1 2"), ArgumentError);
    EXPECT_THROW(command("-V -b"), ArgumentError);
    EXPECT_THROW(command("-s /dev/other"), ArgumentError);
}

} // namespace
