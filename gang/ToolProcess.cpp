#include "gang/ToolProcess.h"

#include "process/ProcessSetup.h"

#include <QProcessEnvironment>

#include <csignal>
#include <unistd.h>

namespace gang
{

namespace
{

constexpr int look_ms = 200;

/// Returns the environment without settings that change the format or the target of Qt's debug
/// output, which is judged.
QProcessEnvironment environment()
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.remove(QStringLiteral("QT_LOGGING_CONF"));
    variables.remove(QStringLiteral("QT_MESSAGE_PATTERN"));
    variables.insert(QStringLiteral("QT_LOGGING_RULES"), QStringLiteral("default.debug=true"));
    variables.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    return variables;
}

} // namespace

void ToolProcess::Child::setupChildProcess()
{
    Platform::restore_signals();
    ::setpgid(0, 0);
}

ToolProcess::ToolProcess()
{
    m_process.setProcessEnvironment(environment());
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(m_pipe.writer());
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] {
        kill(ToolResult::How::TimedOut,
             QStringLiteral("did not end within %1 s").arg(m_limit.interval() / 1000.0));
    });
    connect(&m_look, &QTimer::timeout, this, &ToolProcess::take_output);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &ToolProcess::report_end);
    connect(&m_process, &QProcess::errorOccurred, this, &ToolProcess::report_error);
}

ToolProcess::~ToolProcess()
{
    m_process.disconnect(this);
    kill_all();
    m_process.waitForFinished();
}

void ToolProcess::start(const QString& program, const QStringList& arguments, const QString& folder,
                        int limit_ms)
{
    m_process.setWorkingDirectory(folder);
    m_look.start(look_ms);
    m_process.start(program, arguments, QIODevice::ReadOnly);
    m_pipe.close_writer();
    if (limit_ms > 0) {
        m_limit.start(limit_ms);
    }
}

void ToolProcess::stop()
{
    kill(ToolResult::How::Stopped, QStringLiteral("ended by the user"));
}

/// Kills the whole group, because zserial may be started by a script, and the process itself,
/// because the group does not exist yet right after the start.
void ToolProcess::kill_all()
{
    if (m_process.processId() > 0) {
        ::kill(static_cast<pid_t>(-m_process.processId()), SIGKILL);
    }
    m_process.kill();
}

/// A process that ends before the signal reaches it is judged by its own status.
void ToolProcess::kill(ToolResult::How how, const QString& reason)
{
    m_result.how = how;
    m_result.reason = reason;
    kill_all();
}

void ToolProcess::take_output()
{
    const QByteArray printed_now = m_pipe.take();
    m_err += m_process.readAllStandardError();
    if (!printed_now.isEmpty()) {
        m_out.add(printed_now);
        Q_EMIT printed();
    }
}

void ToolProcess::report_end(int code, QProcess::ExitStatus status)
{
    m_limit.stop();
    m_look.stop();
    take_output();
    m_result.code = code;
    m_result.out = m_out.text();
    m_result.err = m_err;
    if (status == QProcess::NormalExit) {
        m_result.how = ToolResult::How::Exited;
    } else if (m_result.how == ToolResult::How::Exited || code != SIGKILL) {
        m_result.how = ToolResult::How::Signalled;
    }
    Q_EMIT ended(m_result);
}

void ToolProcess::report_error(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart) {
        m_limit.stop();
        m_look.stop();
        m_result.how = ToolResult::How::NotStarted;
        m_result.reason =
            QStringLiteral("cannot start %1: %2").arg(m_process.program(), m_process.errorString());
        Q_EMIT ended(m_result);
    }
}

} // namespace gang
