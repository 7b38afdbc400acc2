#include "gang/ToolProcess.h"

#include <QProcessEnvironment>

#include <csignal>
#include <unistd.h>

namespace gang
{

namespace
{

/// Without the settings that make Qt's debug channel look different, or go elsewhere.
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
    sigset_t none;
    sigemptyset(&none);
    ::pthread_sigmask(SIG_SETMASK, &none, nullptr);
    ::setpgid(0, 0);
}

ToolProcess::ToolProcess()
{
    m_process.setProcessEnvironment(environment());
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_limit.setSingleShot(true);
    connect(&m_limit, &QTimer::timeout, this, [this] {
        kill(ToolEnd::How::TimedOut,
             QStringLiteral("did not end within %1 s").arg(m_limit.interval() / 1000.0));
    });
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &ToolProcess::take_output);
    connect(&m_process, &QProcess::readyReadStandardError, this, &ToolProcess::take_output);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &ToolProcess::report_end);
    connect(&m_process, &QProcess::errorOccurred, this, &ToolProcess::report_error);
}

ToolProcess::~ToolProcess()
{
    m_process.disconnect(this);
    m_process.kill();
    m_process.waitForFinished();
}

void ToolProcess::start(const QString& program, const QStringList& arguments, const QString& folder,
                        int limit_ms)
{
    m_process.setWorkingDirectory(folder);
    m_process.start(program, arguments, QIODevice::ReadOnly);
    if (limit_ms > 0) {
        m_limit.start(limit_ms);
    }
}

void ToolProcess::stop()
{
    kill(ToolEnd::How::Stopped, QStringLiteral("ended by the user"));
}

/// A process that has ended before the signal reaches it is judged by its own end.
void ToolProcess::kill(ToolEnd::How how, const QString& reason)
{
    m_end.how = how;
    m_end.reason = reason;
    m_process.kill();
}

void ToolProcess::take_output()
{
    m_out.add(m_process.readAllStandardOutput());
    m_err += m_process.readAllStandardError();
    Q_EMIT printed();
}

void ToolProcess::report_end(int code, QProcess::ExitStatus status)
{
    m_limit.stop();
    take_output();
    m_end.code = code;
    m_end.out = m_out.text();
    m_end.err = m_err;
    if (status == QProcess::NormalExit) {
        m_end.how = ToolEnd::How::Exited;
    } else if (m_end.how == ToolEnd::How::Exited || code != SIGKILL) {
        m_end.how = ToolEnd::How::Signalled;
    }
    Q_EMIT ended(m_end);
}

void ToolProcess::report_error(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart) {
        m_limit.stop();
        m_end.how = ToolEnd::How::NotStarted;
        m_end.reason =
            QStringLiteral("cannot start %1: %2").arg(m_process.program(), m_process.errorString());
        Q_EMIT ended(m_end);
    }
}

} // namespace gang
