#include "tests/gang/GangTest.h"
#include "tests/support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace test;

namespace
{

/// The process environment of a gang: standard streams, limits, signals, pipes and file names.
class GangSurroundings : public GangTest
{
protected:
    /// Creates a named pipe and returns its encoded path.
    QByteArray put_pipe(const char* name) const
    {
        QByteArray pipe = QFile::encodeName(path(QLatin1String(name)));
        EXPECT_EQ(::mkfifo(pipe.constData(), 0600), 0);
        return pipe;
    }

    static QStringList upload(const QString& port)
    {
        return QStringList{port} + words("-- -B 0102 -wv image.hex");
    }
};

TEST_F(GangSurroundings, EventsGoIntoNoFileIfStandardOutputIsClosed)
{
    put_file(QStringLiteral("numbers"), "1\n");
    const auto simulated = device();
    GangProcess gang(folder(),
                     words("--record record.jsonl --serial-at 0xE0 --serial-size 4 "
                           "--serial-file numbers") +
                         upload(simulated->port()),
                     QStringLiteral("exec <&- >&- 2>&-"));
    EXPECT_EQ(gang.result().status, 0);
    EXPECT_EQ(record().size(), 1U);
    EXPECT_EQ(file(QStringLiteral("record.jsonl")).count('\n'), 1);
    EXPECT_EQ(file(QStringLiteral("numbers")).count('\n'), 2);
    EXPECT_FALSE(file(QStringLiteral("numbers")).contains("started"));
}

TEST_F(GangSurroundings, AFileSizeLimitIsAFullDisk)
{
    constexpr int limit = 8192;
    put_file(QStringLiteral("record.jsonl"), QByteArray(limit - 1, ' ') + '\n');
    const auto simulated = device();
    GangProcess gang(folder(), words("--json --record record.jsonl") + upload(simulated->port()),
                     QStringLiteral("ulimit -f 8"));
    const GangResult result = gang.result();
    EXPECT_FALSE(result.crashed) << result;
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(text(result.last("end"), "verdict"), "failed");
    EXPECT_EQ(file(QStringLiteral("record.jsonl")).size(), limit);
}

TEST_F(GangSurroundings, AReaderWhoHasStoppedStopsNoUpload)
{
    const QByteArray pipe = put_pipe("events");
    const int reader = ::open(pipe.constData(), O_RDWR | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    std::array<char, 4096> some{};
    while (::write(reader, some.data(), some.size()) > 0) {
    }
    const auto simulated = device();
    GangProcess gang(folder(), words("--json --record record.jsonl") + upload(simulated->port()),
                     QStringLiteral("exec >events"));
    EXPECT_TRUE(wait_until([this] {
        return QFile::exists(path(QStringLiteral("record.jsonl"))) && record().size() == 1;
    }));
    QByteArray events;
    EXPECT_TRUE(wait_until([&] {
        const ssize_t count = ::read(reader, some.data(), some.size());
        events.append(some.data(), count > 0 ? static_cast<int>(count) : 0);
        return events.contains("\"summary\"");
    }));
    ::close(reader);
    EXPECT_EQ(gang.result().status, 0);
    EXPECT_TRUE(events.contains("\"start\""));
}

TEST_F(GangSurroundings, AnInterruptEndsTheWaitForAFile)
{
    const QByteArray pipe = put_pipe("table");
    GangProcess gang(folder(), words("--table table /dev/a -- -e"));
    const int writer = ::open(pipe.constData(), O_WRONLY); // blocks until the gang opens it
    gang.send(SIGINT);
    const GangResult result = gang.result();
    ::close(writer);
    EXPECT_TRUE(result.crashed) << result;
    EXPECT_EQ(result.status, SIGINT);
}

TEST_F(GangSurroundings, TableAndImageMayComeOutOfPipes)
{
    const auto simulated = device();
    GangProcess gang(folder(),
                     words("--table /dev/fd/3") + QStringList{simulated->port()} +
                         words("-- -B 0102 -wv /dev/fd/4"),
                     QStringLiteral("exec 3< <(cat device.txt) 4< <(cat image.hex)"));
    EXPECT_EQ(gang.result().status, 0);
}

TEST_F(GangSurroundings, TheEndOfAToolIsSeenWhateverTheParentDidToItsSignals)
{
    const auto simulated = device();
    GangProcess gang(folder(), upload(simulated->port()),
                     QStringLiteral("exec env --ignore-signal=CHLD --block-signal=CHLD "
                                    "\"$0\" \"$@\""));
    EXPECT_EQ(gang.result().status, 0);
}

TEST_F(GangSurroundings, ASecondInterruptEndsWhatAScriptRuns)
{
    const QString tool = put_tool("sleep 1000 &\necho $! > ../../running\nwait\n");
    const auto simulated = device();
    GangProcess gang(folder(),
                     QStringList{QStringLiteral("--zserial"), tool} + upload(simulated->port()));
    int process = 0;
    ASSERT_TRUE(wait_until([&] {
        const QString name = path(QStringLiteral("running"));
        process = QFile::exists(name) ? file(QStringLiteral("running")).trimmed().toInt() : 0;
        return process != 0;
    }));
    gang.send(SIGINT);
    gang.send(SIGHUP);
    EXPECT_EQ(gang.result().status, 3);
    EXPECT_TRUE(wait_until([process] { return ::kill(process, 0) != 0; }));
}

TEST_F(GangSurroundings, ACrashIsTriedAgain)
{
    const QString tool = put_tool("[ -e ../../crashed ] || { : > ../../crashed; kill -SEGV $$; }\n"
                                  "exec \"$ZSERIAL\" \"$@\"");
    const auto simulated = device();
    const GangResult result =
        run(QStringList{QStringLiteral("--json"), QStringLiteral("--zserial"), tool} +
            words("--tries 2 --pause 0") + upload(simulated->port()));
    EXPECT_EQ(text(result.last("retry"), "verdict"), "crashed") << result;
    EXPECT_EQ(text(result.last("end"), "verdict"), "ok") << result;
    EXPECT_EQ(result.last("end").value(QStringLiteral("tries")).toInt(), 2);
}

TEST_F(GangSurroundings, FilesMayHaveAnyName)
{
    for (const QString& name :
         {QString(255, QLatin1Char('l')), QStringLiteral("\n%1 \"'Verified!\n.hex")}) {
        put_file(name, file(QStringLiteral("image.hex")));
        const auto simulated = device();
        const GangResult result =
            run(QStringList{simulated->port()} + words("-- -B 0102 -wv") + QStringList{name});
        EXPECT_EQ(result.status, 0) << result;
    }
}

TEST_F(GangSurroundings, AFolderOfAFileMayBeALink)
{
    ASSERT_TRUE(QDir(folder()).mkpath(QStringLiteral("far/away")));
    put_file(QStringLiteral("far/image.hex"), file(QStringLiteral("image.hex")));
    ASSERT_TRUE(QFile::remove(path(QStringLiteral("image.hex"))));
    ASSERT_TRUE(QFile::link(QStringLiteral("far/away"), path(QStringLiteral("link"))));
    const auto simulated = device();
    EXPECT_EQ(run(simulated->port(), "-B 0102 -wv link/../image.hex").status, 0);
}

TEST_F(GangSurroundings, AToolThatCannotBeStartedIsNotOk)
{
    const QString tool = path(QStringLiteral("tool.sh"));
    put_file(QStringLiteral("tool.sh"), "#!/no/such/shell\n");
    ASSERT_TRUE(QFile::setPermissions(tool, QFile::ReadOwner | QFile::ExeOwner));
    const GangResult result =
        run(words("--json --zserial") + QStringList{tool} + upload(QStringLiteral("/dev/no-such")));
    EXPECT_EQ(text(result.last("end"), "verdict"), "failed") << result;
    EXPECT_THAT(text(result.last("end"), "message"),
                testing::StartsWith("cannot start " + tool.toStdString() + ": "));
    EXPECT_EQ(result.status, 1);
}

TEST_F(GangSurroundings, APhaseOfItsOwnShowsInTheProgress)
{
    const QString tool = put_tool("printf 'Verifying firmware\\n\\rProgress 37%%'\n"
                                  "until [ -e ../../seen ]; do sleep 0.05; done\nexit 1\n");
    GangProcess gang(folder(), words("--json --zserial") + QStringList{tool} +
                                   words("/dev/no-such-port -- -B 0102 -w image.hex -v image.hex"));
    EXPECT_TRUE(gang.has_printed("\"phase\":\"verify\""));
    put_file(QStringLiteral("seen"), {});
    const QJsonObject progress = gang.result().last("progress");
    EXPECT_EQ(text(progress, "phase"), "verify");
    EXPECT_EQ(progress.value(QStringLiteral("percent")).toInt(), 30);
}

/// The tool is not beside the program, and is looked for where a shell would.
class GangElsewhere : public GangSurroundings
{
protected:
    GangResult run_elsewhere(const QString& search_path) const
    {
        const QString gang = path(QStringLiteral("zserial-gang"));
        EXPECT_TRUE(QFile::copy(QStringLiteral(ZSERIAL_GANG_PROGRAM), gang));
        // Without --zserial and its value.
        return GangProcess(folder(), upload(QStringLiteral("/dev/no-such-port")),
                           QStringLiteral("shift 2; PATH=%1 exec ./zserial-gang --json \"$@\"")
                               .arg(search_path))
            .result();
    }
};

TEST_F(GangElsewhere, FindsTheToolInThePath)
{
    const GangResult result =
        run_elsewhere(QFileInfo(QStringLiteral(ZSERIAL_PROGRAM)).absolutePath());
    EXPECT_EQ(text(result.last("end"), "verdict"), "port") << result;
}

TEST_F(GangElsewhere, AsksForAToolThatIsNowhere)
{
    const GangResult result = run_elsewhere(folder());
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err.toStdString(),
              "zserial-gang: there is no zserial beside this program or on the PATH; name it with "
              "--zserial\n");
}

TEST_F(GangSurroundings, NothingIsStartedWithoutAPlaceForScratchFiles)
{
    const GangResult result = GangProcess(folder(), upload(QStringLiteral("/dev/a")),
                                          QStringLiteral("export TMPDIR=/proc"))
                                  .result();
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err.toStdString(),
                testing::StartsWith("zserial-gang: cannot create a temporary folder: "));
}

/// Somebody tidies the scratch files up between two tries.
class GangScratchFiles : public GangSurroundings
{
protected:
    /// Runs two tries, with a tool that does this in the run's scratch folder and fails.
    QJsonObject end_after(const char* script, const QStringList& arguments) const
    {
        const QString tool = put_tool(QByteArray(script) + "\nexit 1\n");
        const GangResult result =
            run(words("--json --tries 2 --pause 0 --zserial") + QStringList{tool} + arguments +
                upload(QStringLiteral("/dev/no-such-port")));
        EXPECT_EQ(text(result.last("retry"), "verdict"), "failed") << result;
        EXPECT_EQ(result.status, 1);
        return result.last("end");
    }
};

TEST_F(GangScratchFiles, FailTheNextTryIfTheirFolderCannotBeMade)
{
    const QJsonObject end = end_after("rm -r \"$PWD\"; : > \"$PWD\"", {});
    EXPECT_EQ(text(end, "verdict"), "file");
    EXPECT_THAT(text(end, "message"), testing::StartsWith("cannot write to the temporary folder "));
    EXPECT_THAT(text(end, "message"), testing::EndsWith("/port-1"));
}

TEST_F(GangScratchFiles, FailTheNextTryIfANumberedImageCannotBeWritten)
{
    put_file(QStringLiteral("numbers"), "1\n");
    const QJsonObject end =
        end_after("rm image-1; mkdir image-1",
                  words("--serial-at 0xE0 --serial-size 4 --serial-file numbers"));
    EXPECT_EQ(text(end, "verdict"), "file");
    EXPECT_THAT(text(end, "message"), testing::StartsWith("cannot write the temporary file "));
    EXPECT_THAT(text(end, "message"), testing::EndsWith("/port-1/image-1"));
}

} // namespace
