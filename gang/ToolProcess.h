#pragma once

#include "gang/ConsoleText.h"
#include "gang/OutputPipe.h"
#include "gang/ToolResult.h"

#include <QObject>
#include <QProcess>
#include <QTimer>

namespace gang
{

/// A zserial process. Ctrl-C at the terminal does not reach it.
class ToolProcess : public QObject
{
    Q_OBJECT

public:
    ToolProcess();
    /// Kills the process if it is still running.
    ~ToolProcess() override;

    /// Starts zserial in `folder`; `limit_ms` 0 is no time limit. Results arrive as signals.
    void start(const QString& program, const QStringList& arguments, const QString& folder,
               int limit_ms);
    /// Kills the process and all that it has started.
    void stop();

    /// Returns the standard output so far.
    const ConsoleText& out() const { return m_out; }

    const QByteArray& err() const { return m_err; }

Q_SIGNALS:
    void printed();
    /// The process has ended or could not be started.
    void ended(const gang::ToolResult& result);

private:
    /// Puts the process into a process group of its own, which signals of the terminal do not
    /// reach, and resets the signal mask that the gang uses for its own signals.
    class Child : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    void kill(ToolResult::How how, const QString& reason);
    void kill_all();
    void take_output();
    void report_end(int code, QProcess::ExitStatus status);
    void report_error(QProcess::ProcessError error);

    Child m_process;
    OutputPipe m_pipe;
    QTimer m_look; ///< polls the output
    QTimer m_limit;
    ConsoleText m_out;
    QByteArray m_err;
    ToolResult m_result;
};

} // namespace gang
