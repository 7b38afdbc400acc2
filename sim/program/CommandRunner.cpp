#include "sim/program/CommandRunner.h"

#include "process/ProcessSetup.h"

namespace sim
{

void CommandRunner::Process::setupChildProcess()
{
    Platform::restore_signals();
}

CommandRunner::CommandRunner(const QStringList& command, const QString& port_path)
{
    QStringList words = command;
    words.replaceInStrings(QStringLiteral("{}"), port_path);
    m_process.setProgram(words.takeFirst());
    m_process.setArguments(words);
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.setInputChannelMode(QProcess::ForwardedInputChannel);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &CommandRunner::report_end);
    connect(&m_process, &QProcess::errorOccurred, this, &CommandRunner::report_error);
}

void CommandRunner::start()
{
    m_process.start();
}

void CommandRunner::stop()
{
    if (m_asked) {
        m_process.kill();
    } else {
        m_process.terminate();
    }
    m_asked = true;
}

/// The code of a process that was killed is the number of the signal.
void CommandRunner::report_end(int code, QProcess::ExitStatus status)
{
    const bool exited = status == QProcess::NormalExit;
    Q_EMIT ended({exited ? CommandEnd::Kind::Exited : CommandEnd::Kind::Killed, code}, {});
}

void CommandRunner::report_error(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart) {
        Q_EMIT ended({}, QStringLiteral("cannot start %1: %2")
                             .arg(m_process.program(), m_process.errorString()));
    }
}

} // namespace sim
