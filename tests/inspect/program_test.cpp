#include "tests/inspect/InspectTest.h"
#include "tests/inspect/ProcessRun.h"

#include <QDir>

#include <sys/stat.h>

using namespace test;

// Behaviour that only a process shows.

namespace
{

class Program : public InspectTest
{
protected:
    static ProcessResult run(const QStringList& words)
    {
        return run_process(QStringLiteral(INSPECT_PROGRAM), words);
    }

    /// A shell's command line with the program in place of $1 and the folder of the test in $2.
    ProcessResult shell(const QString& script) const
    {
        return run_process(QStringLiteral("/bin/sh"),
                           {QStringLiteral("-c"), script, QStringLiteral("sh"),
                            QStringLiteral(INSPECT_PROGRAM), path(QString())});
    }
};

} // namespace

TEST_F(Program, EndsWithTheStatusOfItsReport)
{
    EXPECT_EQ(run({QStringLiteral("table"), QStringLiteral("examples/device.txt")}).status, 0);
    EXPECT_EQ(run({QStringLiteral("image"), QStringLiteral("tests/memory/data/empty.hex")}).status,
              1);
    EXPECT_EQ(run({QStringLiteral("image"), QStringLiteral("no_such.hex")}).status, 2);
    EXPECT_EQ(run({}).status, 2);
}

TEST_F(Program, LooksForTheTableInItsFolder)
{
    EXPECT_EQ(shell(QStringLiteral("cd examples && exec \"$1\" table")).status, 0);
}

TEST_F(Program, SaysItsNameAndVersion)
{
    const ProcessResult result = run({QStringLiteral("--version")});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.toStdString(), "zserial-inspect 2.0\n");
}

TEST_F(Program, KeepsDiagnosticsOfTheLibraryToItself)
{
    const ProcessResult result =
        run({QStringLiteral("image"), QStringLiteral("tests/memory/data/bad_checksum.hex")});
    EXPECT_EQ(result.err.toStdString(), "");
}

TEST_F(Program, HasNoColourInAFile)
{
    EXPECT_FALSE(
        run({QStringLiteral("image"), QStringLiteral("examples/blink.hex")}).out.contains('\033'));
}

TEST_F(Program, HasColourOnATerminalUnlessItIsNotWanted)
{
    const QString line =
        QStringLiteral("script -qec \"$1 image examples/blink.hex\" /dev/null </dev/null");
    EXPECT_TRUE(shell(QStringLiteral("unset NO_COLOR; ") + line).out.contains('\033'));
    EXPECT_FALSE(
        shell(QStringLiteral("NO_COLOR=1; export NO_COLOR; ") + line).out.contains('\033'));
}

TEST_F(Program, RunsWithItsStandardStreamsClosed)
{
    EXPECT_EQ(shell(QStringLiteral("exec \"$1\" image examples/blink.hex --svg \"$2/a.svg\" "
                                   "<&- >&- 2>&-"))
                  .status,
              0);
    EXPECT_TRUE(file(QStringLiteral("a.svg")).startsWith("<svg "));
    EXPECT_TRUE(file(QStringLiteral("a.svg")).endsWith("</svg>\n"));
}

TEST_F(Program, CannotReportToAFullDisk)
{
    const ProcessResult result =
        shell(QStringLiteral("exec \"$1\" table examples/device.txt >/dev/full"));
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err.toStdString(), "zserial-inspect: cannot write to standard output\n");
}

TEST_F(Program, CannotDrawOntoAFullDisk)
{
    const ProcessResult result =
        shell(QStringLiteral("exec \"$1\" image examples/blink.hex --svg /dev/full"));
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.err.startsWith("zserial-inspect: cannot write /dev/full: "))
        << result.err.constData();
}

TEST_F(Program, EndsQuietlyWhenItsReaderHasGone)
{
    const ProcessResult result =
        shell(QStringLiteral("{ \"$1\" table examples/device.txt; echo status $? >&2; } | true"));
    EXPECT_TRUE(result.err == "status 2\n" || result.err == "status 0\n") << result.err.constData();
}

TEST_F(Program, LeavesFilesAlone)
{
    const QString image = put_file(QStringLiteral("a.hex"), hex_record(0, 0, "a") + end_record);
    run({QStringLiteral("image"), image, QStringLiteral("no_such.hex")});
    run({QStringLiteral("table"), path(QStringLiteral("no_such.txt"))});
    EXPECT_EQ(QDir(path(QString())).entryList(QDir::Files), QStringList(QStringLiteral("a.hex")));
    EXPECT_FALSE(QFile::exists(QStringLiteral("no_such.hex")));
}

TEST_F(Program, DoesNotWaitForAPipeOrReadADeviceWithoutEnd)
{
    const QByteArray pipe = path(QStringLiteral("pipe")).toLocal8Bit();
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    for (const QString& file :
         {QString::fromLocal8Bit(pipe), QStringLiteral("/dev/zero"), QStringLiteral("examples")}) {
        for (const char* subcommand : {"table", "image", "log"}) {
            const ProcessResult result = run({QString::fromLatin1(subcommand), file});
            EXPECT_EQ(result.status, 2) << file.toStdString();
            EXPECT_TRUE(result.out.contains("it is not a regular file")) << result.out.constData();
        }
    }
}

TEST_F(Program, LooksAtFilesThatAreNoText)
{
    QByteArray binary;
    for (int i = 0; i < 4096; ++i) {
        binary += static_cast<char>(i * 7 + i / 256);
    }
    const QString file = put_file(QStringLiteral("binary"), binary);
    EXPECT_EQ(run({QStringLiteral("table"), file}).status, 1);
    EXPECT_EQ(run({QStringLiteral("image"), file}).status, 1);
    EXPECT_EQ(run({QStringLiteral("log"), file}).status, 1);
}

TEST_F(Program, FindsNoTableInAHugeFile)
{
    const QString name = put_file(QStringLiteral("huge"), "x");
    ASSERT_TRUE(QFile::resize(name, qint64{1} << 32));
    const ProcessResult result = run({QStringLiteral("table"), name});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.out.contains("it has more than 16 MiB")) << result.out.constData();
}
