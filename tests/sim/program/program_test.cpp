#include "sim/device/FrameCodec.h"
#include "sim/device/Names.h"
#include "sim/faults/FaultKind.h"
#include "sim/line/Descriptor.h"
#include "tests/sim/HostPort.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace test;
using sim::Descriptor;
using sim::make_frame;

namespace
{

/// The program zserial-sim in a folder of its own with a table of two devices.
class SimProgram : public testing::Test
{
protected:
    SimProgram()
    {
        QStringList second = sample_fields();
        second[Profile::bootloader_version] = QStringLiteral("v0203:");
        second[Profile::device_name] = QStringLiteral("OTHER");
        QStringList first = sample_fields();
        first[Profile::bootloader_version] = QStringLiteral("v0123:");
        const QChar tab = QLatin1Char('\t');
        write_file("device.txt", (first.join(tab) + QLatin1Char('\n') + second.join(tab)).toUtf8());
        write_file("one.txt", first.join(tab).toUtf8());
        process.setWorkingDirectory(folder.path());
    }

    ~SimProgram() override
    {
        process.kill();
        process.waitForFinished();
    }

    void write_file(const char* name, const QByteArray& content) const
    {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    QByteArray file_content(const char* name) const
    {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    static QProcessEnvironment environment_with(const char* name, const char* value)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(name), QString::fromLatin1(value));
        return environment;
    }

    /// Waits for a condition that no event reports, and pauses between two checks.
    template <typename Predicate>
    bool try_until(Predicate predicate)
    {
        QElapsedTimer clock;
        clock.start();
        while (!predicate() && clock.elapsed() < 20000) {
            process.waitForFinished(1);
        }
        return predicate();
    }

    void start(const char* words)
    {
        process.start(QStringLiteral(ZSERIAL_SIM),
                      QString::fromLatin1(words).split(QLatin1Char(' '), Qt::SkipEmptyParts));
    }

    /// With a line for the shell after the words.
    void start_shell(const QByteArray& words, const char* line)
    {
        process.start(QStringLiteral(ZSERIAL_SIM),
                      QString::fromLatin1(words).split(QLatin1Char(' ')) +
                          QStringList{QStringLiteral("--"), QStringLiteral("/bin/sh"),
                                      QStringLiteral("-c"), QString::fromLatin1(line)});
    }

    QByteArray read_line()
    {
        while (!process.canReadLine() && process.waitForReadyRead()) {
        }
        return process.readLine();
    }

    /// Starts serving and returns the path of the port from the first line.
    QString serve(const char* words)
    {
        start(words);
        const QString line = QString::fromLocal8Bit(read_line());
        EXPECT_TRUE(line.startsWith(QLatin1String("/dev/")) && line.endsWith(QLatin1Char('\n')))
            << line.toStdString() << process.readAllStandardError().toStdString();
        return line.trimmed();
    }

    /// Has the tool write two rows, the second of which, its fourth command, meets the fault, and
    /// then write them again.
    void expect_recovery_from(const char* fault)
    {
        write_file("image.hex", ":0410000001020304E2\n:041040000506070892\n:00000001FF\n");
        const char* const upload = ZSERIAL_PROGRAM " -s {} -e -w image.hex -R";
        const char* const words = "--device 0123 --state state --check image.hex --exec";
        start_shell("--fault " + QByteArray(fault) + " " + words, upload);
        EXPECT_EQ(exit_status(), 3);
        const QByteArray shown = output();
        EXPECT_TRUE(shown.contains("\nunable to write flash row at address 0x00001040\n"))
            << shown.constData();
        EXPECT_TRUE(shown.contains("\nNow writingFailed to write memory, aborting...\n"))
            << shown.constData();
        EXPECT_EQ(file_content("state"),
                  "zserial-sim state of device 0123\n00001000 01020304\nend\n");
        start_shell(words, upload);
        EXPECT_EQ(exit_status(), 0);
        EXPECT_TRUE(
            output().endsWith("\ndevice memory holds image.hex: 8 bytes in flash and EEPROM match\n"
                              "command: ended with status 0\n"));
    }

    int stop_by(int signal)
    {
        // Without a process this would be the signal of a whole group of them.
        EXPECT_GT(process.processId(), 0);
        if (process.processId() > 0) {
            EXPECT_EQ(::kill(static_cast<pid_t>(process.processId()), signal), 0);
        }
        return exit_status();
    }

    int exit_status()
    {
        EXPECT_TRUE(process.waitForFinished(60000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return process.exitCode();
    }

    QByteArray output() { return process.readAllStandardOutput(); }

    QByteArray errors() { return process.readAllStandardError(); }

    QTemporaryDir folder;
    QProcess process;
};

const QByteArray idle_summary =
    "commands: 0 probe, 0 version, 0 reset, 0 read, 0 write, 0 erase, 0 unknown; 0 refused, "
    "0 repeated\n"
    "line: 0 bytes from the host, 0 to the host, 0 frames dropped\n"
    "flash: 0 pages erased, 0 rows programmed, 0 cells programmed without erase\n"
    "EEPROM: 0 writes\n";

/// 01 02 03 04 at 0x1000.
const QByteArray image = ":0410000001020304E2\n:00000001FF\n";

} // namespace

TEST_F(SimProgram, ServesUntilItIsTerminatedAndSumsUp)
{
    HostPort host(serve("--device 0123"));
    EXPECT_EQ(host.ask(bytes("55"), bytes("51 56 01 23")), bytes("51 56 01 23"));
    host.set_baud(57600);
    EXPECT_EQ(host.ask(make_frame(bytes("03 02 00 08 00")), make_frame(bytes("03"))),
              make_frame(bytes("03")));
    const QByteArray row = bytes("02 01 00 08 00") + QByteArray(0x40, '\x11');
    host.ask(make_frame(row), make_frame(bytes("02")));
    const QByteArray other_row = bytes("02 01 00 08 00") + QByteArray(0x40, '\x22');
    host.ask(make_frame(other_row), make_frame(bytes("02")));
    host.ask(make_frame(bytes("05 10 00 00 00") + QByteArray(0x10, '\x33')),
             make_frame(bytes("05")));
    const QByteArray read = bytes("04 01 00 00 00");
    EXPECT_EQ(host.ask(make_frame(read), make_frame(read + '\x33')), make_frame(read + '\x33'));

    EXPECT_EQ(stop_by(SIGTERM), 0);
    EXPECT_EQ(output(),
              "commands: 1 probe, 0 version, 0 reset, 1 read, 3 write, 1 erase, 0 unknown; "
              "0 refused, 0 repeated\n"
              "line: 192 bytes from the host, 36 to the host, 0 frames dropped\n"
              "flash: 2 pages erased, 2 rows programmed, 64 cells programmed without erase\n"
              "EEPROM: 1 writes\n");
    EXPECT_EQ(errors(), "");
}

TEST_F(SimProgram, StopsAtAnInterruptToo)
{
    serve("--device 0x0203");
    EXPECT_EQ(stop_by(SIGINT), 0);
    EXPECT_EQ(output(), idle_summary);
}

TEST_F(SimProgram, StopsWhenItsTerminalIsClosed)
{
    serve("--table one.txt --link port");
    EXPECT_EQ(stop_by(SIGHUP), 0);
    EXPECT_EQ(output(), idle_summary);
    EXPECT_FALSE(QFileInfo(folder.filePath(QStringLiteral("port"))).isSymLink());
}

TEST_F(SimProgram, OutlivesItsTerminalUnderNohup)
{
    process.start(QStringLiteral("nohup"), {QStringLiteral(ZSERIAL_SIM), QStringLiteral("--table"),
                                            QStringLiteral("one.txt")});
    HostPort host(QString::fromLocal8Bit(read_line()).trimmed());
    EXPECT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGHUP), 0);
    EXPECT_EQ(host.ask(bytes("55"), bytes("51 56 01 23")), bytes("51 56 01 23"));
    EXPECT_EQ(stop_by(SIGTERM), 0);
}

TEST_F(SimProgram, TakesTheOnlyDeviceOfATable)
{
    HostPort host(serve("--table one.txt"));
    EXPECT_EQ(host.ask(bytes("55"), bytes("51 56 01 23")), bytes("51 56 01 23"));
    EXPECT_EQ(stop_by(SIGTERM), 0);
}

TEST_F(SimProgram, EchoesOnAHalfDuplexLine)
{
    HostPort host(serve("--table one.txt --entry version --echo"), 57600);
    const QByteArray request = make_frame(bytes("00 02"));
    const QByteArray answer = make_frame(bytes("00 02 01 23"));
    EXPECT_EQ(host.ask(request, request + answer), request + answer);
    EXPECT_EQ(stop_by(SIGTERM), 0);
}

TEST_F(SimProgram, SavesWhatItsMemoryHolds)
{
    write_file("image.hex", image);
    serve("--table one.txt --memory image.hex --save saved.hex");
    EXPECT_EQ(stop_by(SIGTERM), 0);
    EXPECT_EQ(file_content("saved.hex"), image);
}

TEST_F(SimProgram, ReportsWhenTheMemoryHoldsTheImage)
{
    write_file("image.hex", image);
    serve("--table one.txt --memory image.hex --check image.hex");
    EXPECT_EQ(stop_by(SIGTERM), 0);
    EXPECT_EQ(output(),
              idle_summary + "device memory holds image.hex: 4 bytes in flash and EEPROM match\n");
}

TEST_F(SimProgram, ReportsWhenTheMemoryDiffersFromTheImage)
{
    write_file("image.hex", image);
    serve("--table one.txt --check image.hex");
    EXPECT_EQ(stop_by(SIGTERM), 1);
    EXPECT_EQ(output(), idle_summary + "device memory differs from image.hex at address "
                                       "0x00001000: memory 0xFF, image 0x01\n");
}

TEST_F(SimProgram, FailsWhenTheImageIsForALargerDevice)
{
    // Two bytes at 0x20000 beside the four at 0x1000.
    write_file("image.hex", ":0410000001020304E2\n:020000040002F8\n:020000001122CB\n:00000001FF\n");
    const QByteArray complaint =
        "device memory holds image.hex: 4 bytes in flash and EEPROM match\n"
        "image: 2 bytes lie outside of the device's flash and EEPROM\n";
    serve("--table one.txt --memory image.hex --check image.hex");
    EXPECT_EQ(stop_by(SIGTERM), 1);
    EXPECT_EQ(output(), idle_summary + complaint);
    serve("--table one.txt --memory image.hex --check image.hex --ignore-outside");
    EXPECT_EQ(stop_by(SIGTERM), 0);
    EXPECT_EQ(output(), idle_summary + complaint);
    serve("--table one.txt --check image.hex --ignore-outside");
    EXPECT_EQ(stop_by(SIGTERM), 1);
}

TEST_F(SimProgram, KeepsTheSummaryApartFromWhatItsCommandPrints)
{
    start_shell("--table one.txt --summary summary --exec", "echo mine");
    EXPECT_EQ(exit_status(), 0);
    const QList<QByteArray> lines = output().split('\n');
    EXPECT_EQ(lines.mid(1).join('\n'), "mine\n");
    EXPECT_EQ(file_content("summary"), idle_summary + "command: ended with status 0\n");
    start_shell("--table one.txt --json --summary summary --exec", "exit 2");
    EXPECT_EQ(exit_status(), 3);
    const QJsonObject summary = QJsonDocument::fromJson(file_content("summary")).object();
    EXPECT_EQ(summary.value(QStringLiteral("command")).toObject().value(QStringLiteral("status")),
              2);
}

TEST_F(SimProgram, FailsWhenItsSummaryCannotBeWritten)
{
    serve("--table one.txt --summary nowhere/summary");
    EXPECT_EQ(stop_by(SIGTERM), 1);
    EXPECT_EQ(output(), "");
    EXPECT_EQ(errors(), "zserial-sim: cannot write the summary nowhere/summary\n");
}

TEST_F(SimProgram, ReportsWhatOfAnImageHasNoPlace)
{
    write_file("image.hex", ":020000040001F9\n:020000001122CB\n:00000001FF\n");
    serve("--table one.txt --memory image.hex");
    EXPECT_EQ(stop_by(SIGTERM), 0);
    EXPECT_EQ(errors(), "zserial-sim: image.hex: 2 bytes lie outside of the device's memory and "
                        "are left out\n");
}

TEST_F(SimProgram, CannotSaveWhereThereIsNoFolder)
{
    serve("--table one.txt --save nowhere/saved.hex");
    EXPECT_EQ(stop_by(SIGTERM), 1);
    EXPECT_EQ(errors(), "zserial-sim: cannot write the image nowhere/saved.hex\n");
}

TEST_F(SimProgram, KeepsItsMemoryFromOneRunToTheNext)
{
    write_file("image.hex", image);
    serve("--table one.txt --state state --memory image.hex");
    EXPECT_EQ(stop_by(SIGTERM), 0);
    serve("--table one.txt --state state --check image.hex");
    EXPECT_EQ(stop_by(SIGTERM), 0);
    EXPECT_EQ(file_content("state"), "zserial-sim state of device 0123\n00001000 01020304\nend\n");
}

TEST_F(SimProgram, KeepsItsMemoryWhenNobodyReadsTheSummary)
{
    write_file("image.hex", image);
    const char* const stop_after_the_first_line =
        "{ \"$0\" --table one.txt --state state --memory image.hex & echo $! > pid; wait; } | "
        "{ read -r port; exec <&-; until [ -s pid ]; do :; done; kill -TERM $(cat pid); }";
    process.start(QStringLiteral("/bin/sh"),
                  {QStringLiteral("-c"), QString::fromLatin1(stop_after_the_first_line),
                   QStringLiteral(ZSERIAL_SIM)});
    EXPECT_EQ(exit_status(), 0);
    EXPECT_EQ(file_content("state"), "zserial-sim state of device 0123\n00001000 01020304\nend\n");
}

TEST_F(SimProgram, CannotKeepItsMemoryWhereThereIsNoFolderButSavesTheImage)
{
    write_file("image.hex", image);
    serve("--table one.txt --memory image.hex --state nowhere/state --save saved.hex");
    EXPECT_EQ(stop_by(SIGTERM), 1);
    EXPECT_EQ(errors(), "zserial-sim: cannot write the state nowhere/state\n");
    EXPECT_EQ(file_content("saved.hex"), image);
}

TEST_F(SimProgram, GivesItsPortANameOfTheUsersChoice)
{
    const QString link = folder.filePath(QStringLiteral("port"));
    const QString port = serve("--table one.txt --link port");
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), port);
    HostPort host(link);
    EXPECT_EQ(host.ask(bytes("55"), bytes("51 56 01 23")), bytes("51 56 01 23"));
    EXPECT_EQ(stop_by(SIGTERM), 0);
    EXPECT_FALSE(QFileInfo(link).isSymLink());
}

TEST_F(SimProgram, TracesWhatItIsAsked)
{
    HostPort host(serve("--table one.txt --trace trace"));
    host.ask(bytes("55"), bytes("51 56 01 23"));
    EXPECT_TRUE(file_content("trace").endsWith(
        " #1 9600 probe request=1 answer=version sent=4 faults=none payload=55\n"));
    EXPECT_EQ(stop_by(SIGTERM), 0);
}

TEST_F(SimProgram, FailsWhenItsTraceIsNotWhole)
{
    HostPort host(serve("--table one.txt --trace /dev/full"));
    host.ask(bytes("55"), bytes("51 56 01 23"));
    EXPECT_EQ(stop_by(SIGTERM), 1);
    EXPECT_EQ(errors(),
              "zserial-sim: the trace /dev/full is incomplete: not all lines could be written\n");
}

TEST_F(SimProgram, LetsFaultsHappenAndSumsThemUp)
{
    HostPort host(serve("--table one.txt --entry version --fault lose-response@1 --seed 5"), 57600);
    host.send(make_frame(bytes("03 01 00 08 00")));
    EXPECT_EQ(host.ask(make_frame(bytes("00 02")), make_frame(bytes("00 02 01 23"))),
              make_frame(bytes("00 02 01 23")));
    EXPECT_EQ(stop_by(SIGTERM), 0);
    EXPECT_TRUE(output().contains("\nfaults with seed 5: 1 lose-response\n"));
}

TEST_F(SimProgram, AnswersFromALog)
{
    write_file("log", "\nTX:" + make_frame(bytes("00 02")).toHex() + "\nRX:616263");
    HostPort host(serve("--table one.txt --entry version --replay log"), 57600);
    host.send(make_frame(bytes("00 00")));
    EXPECT_EQ(host.ask(make_frame(bytes("00 02")), "abc"), "abc");
    EXPECT_EQ(stop_by(SIGTERM), 0);
    EXPECT_TRUE(output().endsWith("\nreplay: 1 of 1 recorded frames came\n"
                                  "replay: not in the rest of the log, 1 times: 00 00\n"));
}

TEST_F(SimProgram, SumsUpInJson)
{
    write_file("image.hex", image);
    serve("--table one.txt --json --pace --memory image.hex --check image.hex");
    EXPECT_EQ(stop_by(SIGTERM), 0);
    const QJsonObject summary = QJsonDocument::fromJson(output()).object();
    EXPECT_EQ(summary.value(QStringLiteral("commands")).toObject().size(), 7);
    EXPECT_TRUE(summary.contains(QStringLiteral("pace")));
    EXPECT_TRUE(summary.value(QStringLiteral("check"))
                    .toObject()
                    .value(QStringLiteral("matches"))
                    .toBool());
}

TEST_F(SimProgram, RunsACommandOnItsPortAndEndsWithIt)
{
    start_shell("--table one.txt --exec", "echo {} is {}; echo oops >&2; exit 7");
    EXPECT_EQ(exit_status(), 3);
    const QList<QByteArray> lines = output().split('\n');
    EXPECT_TRUE(lines[0].startsWith("/dev/"));
    EXPECT_EQ(lines[1], lines[0] + " is " + lines[0]);
    EXPECT_EQ(lines.mid(2).join('\n'), idle_summary + "command: ended with status 7\n");
    EXPECT_EQ(errors(), "oops\n");
}

TEST_F(SimProgram, HearsTheLastWordOfACommand)
{
    start_shell("--table one.txt --entry silent --json --exec", "printf 12345 > {}");
    EXPECT_EQ(exit_status(), 0);
    EXPECT_TRUE(output().contains("\"bytes_from_host\":5,"));
}

TEST_F(SimProgram, HearsTheLastWordOfACommandOnAPacedLineToo)
{
    start_shell("--table one.txt --entry silent --json --pace --exec",
                "stty -F {} 300; printf 12345 > {}");
    EXPECT_EQ(exit_status(), 0);
    EXPECT_TRUE(output().contains("\"bytes_from_host\":5,"));
}

TEST_F(SimProgram, DoesNotWaitForAllOfAFloodOnAPacedLine)
{
    // A minute's worth.
    start_shell("--table one.txt --entry silent --json --pace --exec",
                "stty -F {} 9600; head -c 60000 /dev/zero > {}");
    ASSERT_TRUE(process.waitForFinished(30000));
    EXPECT_EQ(process.exitCode(), 0);
    EXPECT_EQ(
        errors(),
        "zserial-sim: the command has ended with bytes still on the line; they are discarded\n");
}

TEST_F(SimProgram, ThatLosesPowerUnderTheToolIsProgrammedInTheNextRun)
{
    expect_recovery_from("power-loss@4");
}

TEST_F(SimProgram, WhosePortVanishesUnderTheToolIsProgrammedInTheNextRun)
{
    expect_recovery_from("unplug@4");
}

TEST_F(SimProgram, FailsWithACommandThatASignalKilled)
{
    start_shell("--table one.txt --exec", "kill -KILL $$");
    EXPECT_EQ(exit_status(), 3);
    EXPECT_TRUE(output().endsWith("\ncommand: killed by signal 9\n"));
    start_shell("--table one.txt --exec", "kill -TERM $$; sleep 60");
    EXPECT_EQ(exit_status(), 3);
    EXPECT_TRUE(output().endsWith("\ncommand: killed by signal 15\n"));
}

TEST_F(SimProgram, StopsItsCommandWhenItIsStopped)
{
    start_shell("--table one.txt --exec", "echo ready; exec sleep 60");
    read_line();
    EXPECT_EQ(read_line(), "ready\n");
    EXPECT_EQ(stop_by(SIGINT), 3);
    EXPECT_EQ(output(), idle_summary + "command: killed by signal 15\n");
}

TEST_F(SimProgram, MakesAStubbornCommandEndAtTheSecondTime)
{
    start_shell("--table one.txt --exec",
                "trap 'echo no' TERM; echo ready; for i in 1 2 3; do sleep 5 & wait; done");
    read_line();
    EXPECT_EQ(read_line(), "ready\n");
    EXPECT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGTERM), 0);
    EXPECT_EQ(read_line(), "no\n");
    EXPECT_EQ(stop_by(SIGTERM), 3);
    EXPECT_TRUE(output().endsWith("\ncommand: killed by signal 9\n"));
}

TEST_F(SimProgram, FailsWhenItsCommandCannotBeStarted)
{
    start("--table one.txt --exec -- ./no-such-tool {}");
    EXPECT_EQ(exit_status(), 3);
    EXPECT_TRUE(errors().startsWith("zserial-sim: cannot start ./no-such-tool: "));
    EXPECT_TRUE(output().endsWith(idle_summary + "command: not started\n"));
}

TEST_F(SimProgram, FailsWhenTheCommandIsFineButTheCheckIsNot)
{
    write_file("image.hex", image);
    start_shell("--table one.txt --check image.hex --exec", "exit 0");
    EXPECT_EQ(exit_status(), 1);
    start_shell("--table one.txt --check image.hex --exec", "exit 1");
    EXPECT_EQ(exit_status(), 3);
    start_shell("--table one.txt --memory image.hex --check image.hex --exec", "exit 0");
    EXPECT_EQ(exit_status(), 0);
}

TEST_F(SimProgram, StaysSmallUnderAFloodThatReadsNoAnswer)
{
    // Half a kilobyte is read with each.
    write_file("flood", make_frame(bytes("01 ff 00 00 00")).repeated(300000));
    process.setProcessEnvironment(environment_with("ASAN_OPTIONS", "quarantine_size_mb=1"));
    start_shell("--table one.txt --entry version --json --exec",
                "stty -F {} 57600 && cat flood > {}; grep VmHWM /proc/$PPID/status");
    EXPECT_EQ(exit_status(), 0);
    const QList<QByteArray> lines = output().split('\n');
    const int most_kib = lines.at(1).mid(7).trimmed().split(' ').first().toInt();
    EXPECT_GT(most_kib, 0) << lines.at(1).constData();
    EXPECT_LT(most_kib, 100 * 1024);
    const QJsonObject summary = QJsonDocument::fromJson(lines.at(2)).object();
    EXPECT_GT(summary.value(QStringLiteral("bytes_lost")).toInt(), 0);
    EXPECT_EQ(summary.value(QStringLiteral("commands")).toObject().value(QStringLiteral("read")),
              300000);
}

TEST_F(SimProgram, KeepsItsMemoryWhenItsTraceMeetsASizeLimit)
{
    write_file("image.hex", image);
    write_file("flood", make_frame(bytes("00 02")).repeated(100));
    process.start(
        QStringLiteral("/bin/sh"),
        {QStringLiteral("-c"),
         QStringLiteral("ulimit -f 4; exec \"$0\" --table one.txt --entry version --state "
                        "state --memory image.hex --trace trace --exec -- /bin/sh -c "
                        "'stty -F {} 57600 && cat flood > {}'"),
         QStringLiteral(ZSERIAL_SIM)});
    EXPECT_EQ(exit_status(), 1);
    EXPECT_EQ(errors(),
              "zserial-sim: the trace trace is incomplete: not all lines could be written\n");
    EXPECT_EQ(file_content("state"), "zserial-sim state of device 0123\n00001000 01020304\nend\n");
}

TEST_F(SimProgram, GivesItsCommandTheSignalsThatProgramsExpect)
{
    start_shell("--table one.txt --exec", "grep -E 'Sig(Blk|Ign)' /proc/self/status");
    EXPECT_EQ(exit_status(), 0);
    const QByteArray shown = output();
    EXPECT_TRUE(shown.contains("\nSigBlk:\t0000000000000000\n")) << shown.constData();
    EXPECT_TRUE(shown.contains("\nSigIgn:\t0000000000000000\n")) << shown.constData();
}

TEST_F(SimProgram, NoticesTheEndOfItsCommandWhateverItsParentBlocked)
{
    class Process : public QProcess
    {
        void setupChildProcess() override
        {
            sigset_t children;
            sigemptyset(&children);
            sigaddset(&children, SIGCHLD);
            ::pthread_sigmask(SIG_BLOCK, &children, nullptr);
        }
    };

    Process blocked;
    blocked.setWorkingDirectory(folder.path());
    blocked.start(QStringLiteral(ZSERIAL_SIM),
                  {QStringLiteral("--table"), QStringLiteral("one.txt"), QStringLiteral("--exec"),
                   QStringLiteral("--"), QStringLiteral("true")});
    EXPECT_TRUE(blocked.waitForFinished(20000));
    EXPECT_EQ(blocked.exitCode(), 0);
}

TEST_F(SimProgram, CanBeStoppedWhileItReadsAPipe)
{
    const QByteArray pipe = QFile::encodeName(folder.filePath(QStringLiteral("pipe")));
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    for (const char* option : {"--table pipe", "--table one.txt --memory pipe",
                               "--table one.txt --check pipe", "--table one.txt --replay pipe"}) {
        SCOPED_TRACE(option);
        start(option);
        // Can be opened without waiting when the program has opened its end.
        int writer = -1;
        ASSERT_TRUE(try_until([&] {
            writer = ::open(pipe.constData(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            return writer >= 0 || process.state() == QProcess::NotRunning;
        }));
        const Descriptor open_end(writer);
        process.terminate();
        ASSERT_TRUE(process.waitForFinished(20000));
        EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
        EXPECT_EQ(process.exitCode(), SIGTERM);
    }
}

TEST_F(SimProgram, CanBeStoppedWhileItWaitsToSaveIntoAPipe)
{
    write_file("image.hex", image);
    const QByteArray pipe = QFile::encodeName(folder.filePath(QStringLiteral("pipe")));
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    serve("--table one.txt --memory image.hex --state state --save pipe");
    EXPECT_TRUE(try_until([this] {
        process.terminate();
        return process.state() == QProcess::NotRunning;
    }));
    EXPECT_EQ(process.exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(file_content("state"), "zserial-sim state of device 0123\n00001000 01020304\nend\n");
}

TEST_F(SimProgram, WaitsForNoReaderOfItsTrace)
{
    write_file("image.hex", image);
    write_file("flood", make_frame(bytes("00 02")).repeated(2000));
    const QByteArray pipe = QFile::encodeName(folder.filePath(QStringLiteral("pipe")));
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    start("--table one.txt --trace pipe");
    EXPECT_EQ(exit_status(), 2);
    EXPECT_EQ(errors(), "zserial-sim: --trace pipe: cannot be opened for writing\n");
    // A reader that does not read.
    const Descriptor reader(::open(pipe.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    ASSERT_TRUE(reader.is_open());
    start_shell("--table one.txt --entry version --trace pipe --state state --memory image.hex "
                "--exec",
                "stty -F {} 57600 && cat flood > {}");
    EXPECT_EQ(exit_status(), 1);
    EXPECT_EQ(errors(),
              "zserial-sim: the trace pipe is incomplete: not all lines could be written\n");
    EXPECT_EQ(file_content("state"), "zserial-sim state of device 0123\n00001000 01020304\nend\n");
}

TEST_F(SimProgram, PrintsNothingIntoItsPortWhenItsStandardStreamsAreClosed)
{
    process.start(QStringLiteral("/bin/sh"),
                  {QStringLiteral("-c"),
                   QStringLiteral("exec \"$0\" --table one.txt --link port <&- >&- 2>&-"),
                   QStringLiteral(ZSERIAL_SIM)});
    const QString link = folder.filePath(QStringLiteral("port"));
    ASSERT_TRUE(
        try_until([&] { return QFile::exists(link) || process.state() == QProcess::NotRunning; }));
    HostPort host(link);
    EXPECT_EQ(host.ask(bytes("55"), bytes("51 56 01 23")), bytes("51 56 01 23"));
    EXPECT_EQ(stop_by(SIGTERM), 0);
}

TEST_F(SimProgram, RefusesToWriteAFileThatItNeedsForSomethingElse)
{
    write_file("image.hex", image);
    ASSERT_TRUE(QFile::link(QStringLiteral("image.hex"), folder.filePath(QStringLiteral("soft"))));
    ASSERT_EQ(::link(QFile::encodeName(folder.filePath(QStringLiteral("image.hex"))).constData(),
                     QFile::encodeName(folder.filePath(QStringLiteral("hard"))).constData()),
              0);
    const std::vector<std::pair<const char*, QByteArray>> refusals = {
        {"--check image.hex --trace image.hex", "--check and --trace name the same file"},
        {"--check image.hex --trace hard", "--check and --trace name the same file"},
        {"--memory soft --trace image.hex", "--memory and --trace name the same file"},
        {"--trace one.txt", "--table and --trace name the same file"},
        {"--memory image.hex --save ./image.hex", "--memory and --save name the same file"},
        {"--state new --trace ./new", "--state and --trace name the same file"},
        {"--summary image.hex --check image.hex", "--check and --summary name the same file"},
        {"--link new --trace new", "--trace and --link name the same file"},
    };
    for (const auto& [words, complaint] : refusals) {
        SCOPED_TRACE(words);
        start(QByteArray("--table one.txt ") + words);
        EXPECT_EQ(exit_status(), 2);
        EXPECT_EQ(errors(), "zserial-sim: " + complaint + "\n");
        EXPECT_EQ(output(), "");
        EXPECT_EQ(file_content("image.hex"), image);
        EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("new"))));
    }
}

TEST_F(SimProgram, EmptiesItsTraceOnlyWhenAllElseIsFine)
{
    for (const char* words : {"--check missing.hex", "--memory missing.hex", "--replay missing",
                              "--state device.txt", "--link device.txt"}) {
        SCOPED_TRACE(words);
        write_file("trace", "of before");
        start(QByteArray("--table one.txt --trace trace ") + words);
        EXPECT_EQ(exit_status(), 2);
        EXPECT_EQ(file_content("trace"), "of before");
    }
}

TEST_F(SimProgram, ListsTheDevices)
{
    start("--list");
    EXPECT_EQ(exit_status(), 0);
    EXPECT_EQ(output(), "0123 SAMPLE\n0203 OTHER\n");
}

TEST_F(SimProgram, PrintsItsVersion)
{
    start("--version");
    EXPECT_EQ(exit_status(), 0);
    EXPECT_EQ(output(), "zserial-sim " ZSERIAL_VERSION "\n");
}

TEST_F(SimProgram, ExplainsItself)
{
    start("--help");
    EXPECT_EQ(exit_status(), 0);
    const QByteArray help = output();
    EXPECT_TRUE(help.startsWith("Usage: "));
    for (const auto& kind : sim::fault_kinds) {
        EXPECT_TRUE(help.contains(QByteArray("\n  ") + kind.name)) << kind.name;
    }
    for (const char* word : {"\"probe\"", "\"version\"", "\"silent\"", "\"together\""}) {
        EXPECT_TRUE(help.contains(word)) << word;
    }
    const QByteArray words = help.simplified();
    for (const auto& kind : sim::command_kinds) {
        EXPECT_TRUE(words.contains(kind.help)) << kind.name;
    }
    for (const QByteArray& line : help.split('\n')) {
        EXPECT_LE(line.size(), 80) << line.constData();
    }
    EXPECT_EQ(errors(), "");
}

TEST_F(SimProgram, RefusesWhatItCannotDo)
{
    const std::vector<std::pair<const char*, QByteArray>> refusals = {
        {"--unknown", "zserial-sim: Unknown option 'unknown'.\n"},
        {"--fault noise=2", "zserial-sim: --fault noise=2: '2' is not a probability from 0 to 1\n"},
        {"--exec", "zserial-sim: --exec needs a command: --exec -- COMMAND {} ...\n"},
        {"--table one.txt --fault stuck-bits:0x10000:1:1",
         "zserial-sim: --fault stuck-bits: the device has no memory at 0x00010000\n"},
        {"--table one.txt --link device.txt", "zserial-sim: --link device.txt: the file exists and "
                                              "is not a link to a pseudo-terminal\n"},
        {"--table one.txt --trace nowhere/trace",
         "zserial-sim: --trace nowhere/trace: cannot be opened for writing\n"},
        {"--table one.txt --replay missing",
         "zserial-sim: --replay missing: cannot read the log: No such file or directory\n"},
        {"--table one.txt --state device.txt",
         "zserial-sim: the state device.txt is damaged, or of another device than 0123\n"},
        {"--table one.txt --state /dev/zero",
         "zserial-sim: the state /dev/zero is not a regular file\n"},
        {"--entry loud", "zserial-sim: --entry must be probe, version or silent, not 'loud'\n"},
        {"", "zserial-sim: the table ./device.txt has several devices: choose one with --device "
             "(--list shows them)\n"},
        {"--device 0999", "zserial-sim: the table ./device.txt has no device with version 0999\n"},
        {"--table missing.txt",
         "zserial-sim: cannot read the table missing.txt: No such file or directory\n"},
    };
    for (const auto& [words, complaint] : refusals) {
        SCOPED_TRACE(words);
        start(words);
        EXPECT_EQ(exit_status(), 2);
        EXPECT_EQ(errors(), complaint);
        EXPECT_EQ(output(), "");
    }
}

TEST_F(SimProgram, ReadsNoDevices)
{
    for (const char* words : {"--table /dev/zero --list", "--table one.txt --memory /dev/zero",
                              "--table one.txt --check /dev/zero"}) {
        SCOPED_TRACE(words);
        start(words);
        ASSERT_TRUE(process.waitForFinished(20000));
        EXPECT_EQ(process.exitCode(), 2);
        EXPECT_EQ(errors(), "zserial-sim: /dev/zero is a device, not a file or a pipe\n");
    }
    start("--table one.txt --replay /dev/zero");
    ASSERT_TRUE(process.waitForFinished(20000));
    EXPECT_EQ(process.exitCode(), 2);
    EXPECT_EQ(errors(), "zserial-sim: --replay /dev/zero is a device, not a file or a pipe\n");
}

TEST_F(SimProgram, RefusesImagesThatAreNoneBeforeItServes)
{
    for (const char* words :
         {"--table one.txt --memory missing.hex", "--table one.txt --check missing.hex"}) {
        SCOPED_TRACE(words);
        start(words);
        EXPECT_EQ(exit_status(), 2);
        EXPECT_TRUE(errors().endsWith("zserial-sim: cannot load the image missing.hex\n"));
        EXPECT_EQ(output(), "");
    }
}
