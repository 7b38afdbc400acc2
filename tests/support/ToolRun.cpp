#include "tests/support/ToolRun.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTimer>
#include <gtest/gtest.h>

#include <tuple>
#include <utility>

namespace
{

constexpr int longest_run_ms = 60'000;

/// The caller's environment without what would change the tool's output.
QProcessEnvironment environment()
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_LOGGING_RULES", "QT_LOGGING_CONF", "QT_MESSAGE_PATTERN"}) {
        variables.remove(QLatin1String(name));
    }
    variables.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    variables.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    // An instrumented tool that aborts must die of the signal as the plain one does.
    const QString name = QStringLiteral("ASAN_OPTIONS");
    variables.insert(name, variables.value(name) + QStringLiteral(":handle_abort=0"));
    return variables;
}

void prepare(QProcess& process, const QString& folder)
{
    process.setWorkingDirectory(folder);
    process.setProcessEnvironment(environment());
    process.setStandardInputFile(QProcess::nullDevice());
}

ToolResult ending_of(QProcess& process, const QByteArray& out)
{
    EXPECT_NE(process.error(), QProcess::FailedToStart) << ZSERIAL_PROGRAM;
    return {process.exitStatus() == QProcess::CrashExit, process.exitCode(),
            out + process.readAllStandardOutput(), process.readAllStandardError()};
}

QByteArray escaped(const QByteArray& text)
{
    QByteArray shown;
    for (const char c : text) {
        shown += c == '\r' ? QByteArray("\\r") : c == '\n' ? QByteArray("\\n\n") : QByteArray(1, c);
    }
    return shown;
}

} // namespace

ToolResult exited(int status, const QByteArray& out)
{
    return {false, status, out, {}};
}

ToolResult killed(int signal, const QByteArray& out)
{
    return {true, signal, out, {}};
}

bool operator==(const ToolResult& left, const ToolResult& right)
{
    return std::tie(left.crashed, left.status, left.out) ==
           std::tie(right.crashed, right.status, right.out);
}

std::ostream& operator<<(std::ostream& stream, const ToolResult& result)
{
    stream << (result.crashed ? "killed by signal " : "exited with status ") << result.status
           << ", standard output:\n"
           << escaped(result.out).constData() << "<end>";
    if (!result.err.isEmpty()) {
        stream << "\nstandard error:\n" << result.err.constData() << "<end>";
    }
    return stream;
}

ToolRun::ToolRun()
{
    EXPECT_TRUE(m_folder.isValid()) << m_folder.errorString().toStdString();
}

QString ToolRun::path(const QString& name) const
{
    return m_folder.filePath(name);
}

void ToolRun::put_file(const QString& name, const QByteArray& contents)
{
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    ASSERT_EQ(file.write(contents), contents.size());
}

QByteArray ToolRun::file(const QString& name) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << "no file " << name.toStdString();
    return file.isOpen() ? file.readAll() : QByteArray();
}

QStringList ToolRun::files() const
{
    return QDir(m_folder.path()).entryList(QDir::Files | QDir::System, QDir::Name);
}

void ToolRun::once_printed(const QByteArray& text, std::function<void(qint64 process)> look)
{
    m_awaited = text;
    m_look = std::move(look);
}

ToolResult ToolRun::run(const QStringList& arguments) const
{
    QProcess process;
    QEventLoop loop;
    QTimer watchdog;
    QByteArray out;
    QObject::connect(&process, &QProcess::stateChanged, &loop, [&](QProcess::ProcessState state) {
        if (state == QProcess::NotRunning) {
            loop.quit();
        }
    });
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &loop, [&] {
        const bool awaited = !out.contains(m_awaited);
        out += process.readAllStandardOutput();
        if (awaited && out.contains(m_awaited)) {
            m_look(process.processId());
        }
    });
    QObject::connect(&watchdog, &QTimer::timeout, &loop, [&] {
        ADD_FAILURE() << "zserial did not end by itself";
        process.kill();
    });
    prepare(process, m_folder.path());
    process.start(QStringLiteral(ZSERIAL_PROGRAM), arguments, QIODevice::ReadOnly);
    watchdog.start(longest_run_ms);
    if (process.state() != QProcess::NotRunning) {
        loop.exec();
    }
    return ending_of(process, out);
}
