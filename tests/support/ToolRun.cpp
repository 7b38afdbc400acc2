#include "tests/support/ToolRun.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QProcessEnvironment>
#include <gtest/gtest.h>

#include <tuple>
#include <utility>

namespace test
{

namespace
{

constexpr int longest_run_ms = ZSERIAL_LONGEST_RUN_S * 1000;

/// The caller's environment without what would change the tool's output.
QProcessEnvironment environment()
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_LOGGING_RULES", "QT_LOGGING_CONF", "QT_MESSAGE_PATTERN"}) {
        variables.remove(QLatin1String(name));
    }
    variables.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    variables.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    // An instrumented tool that aborts must end by the signal, as the plain one does.
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

RunningTool::RunningTool(const QString& folder, const QStringList& arguments, QByteArray awaited,
                         Look look)
    : RunningTool(folder, QStringLiteral(ZSERIAL_PROGRAM), arguments, std::move(awaited),
                  std::move(look))
{
}

RunningTool::RunningTool(const QString& folder, const QString& program,
                         const QStringList& arguments, QByteArray awaited, Look look)
    : m_awaited(std::move(awaited)),
      m_look(std::move(look))
{
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, [this] { take_output(); });
    QObject::connect(&m_watchdog, &QTimer::timeout, [this] {
        ADD_FAILURE() << "zserial did not exit";
        m_process.kill();
    });
    prepare(m_process, folder);
    m_process.start(program, arguments, QIODevice::ReadOnly);
    m_watchdog.start(longest_run_ms);
}

void RunningTool::take_output()
{
    const bool awaited = m_look && !m_out.contains(m_awaited);
    m_out += m_process.readAllStandardOutput();
    if (awaited && m_out.contains(m_awaited)) {
        m_look(process());
    }
}

ToolResult RunningTool::result()
{
    QEventLoop loop;
    QObject::connect(&m_process, &QProcess::stateChanged, &loop, &QEventLoop::quit);
    while (!has_ended()) {
        loop.exec();
    }
    m_watchdog.stop();
    EXPECT_NE(m_process.error(), QProcess::FailedToStart) << ZSERIAL_PROGRAM;
    return {m_process.exitStatus() == QProcess::CrashExit, m_process.exitCode(),
            m_out + m_process.readAllStandardOutput(), m_process.readAllStandardError()};
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

void ToolRun::once_printed(const QByteArray& text, RunningTool::Look look)
{
    m_awaited = text;
    m_look = std::move(look);
}

std::unique_ptr<RunningTool> ToolRun::start(const QStringList& arguments) const
{
    return std::make_unique<RunningTool>(m_folder.path(), arguments, m_awaited, m_look);
}

ToolResult ToolRun::run(const QStringList& arguments) const
{
    return start(arguments)->result();
}

ToolResult ToolRun::run_in_shell(const QString& script, const QStringList& arguments) const
{
    return RunningTool(m_folder.path(), QStringLiteral("/bin/sh"),
                       QStringList{QStringLiteral("-c"), script, QStringLiteral("sh"),
                                   QStringLiteral(ZSERIAL_PROGRAM)} +
                           arguments,
                       {}, {})
        .result();
}

std::size_t ToolRun::most_at_once()
{
    return ZSERIAL_RUNS_AT_ONCE;
}

} // namespace test
