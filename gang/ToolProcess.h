#pragma once

#include "gang/ConsoleText.h"
#include "gang/OutputPipe.h"
#include "gang/ToolEnd.h"

#include <QObject>
#include <QProcess>
#include <QTimer>

namespace gang
{

/// One process of the tool. Ctrl-C at the terminal does not reach it.
class ToolProcess : public QObject
{
    Q_OBJECT

public:
    ToolProcess();
    /// Kills the process if it still runs.
    ~ToolProcess() override;

    /// Starts the tool in a folder; `limit_ms` 0 is no limit. Everything else comes as signals.
    void start(const QString& program, const QStringList& arguments, const QString& folder,
               int limit_ms);
    /// Ends it at once.
    void stop();

    /// What has come from it so far.
    const ConsoleText& out() const { return m_out; }

    const QByteArray& err() const { return m_err; }

Q_SIGNALS:
    void printed();
    /// It has ended, or could not be started.
    void ended(const gang::ToolEnd& end);

private:
    /// Takes the process out of the reach of the terminal's signals, and of the mask that the gang
    /// receives its own with.
    class Child : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    void kill(ToolEnd::How how, const QString& reason);
    void kill_all();
    void take_output();
    void report_end(int code, QProcess::ExitStatus status);
    void report_error(QProcess::ProcessError error);

    Child m_process;
    OutputPipe m_pipe;
    QTimer m_look; ///< at what it has printed
    QTimer m_limit;
    ConsoleText m_out;
    QByteArray m_err;
    ToolEnd m_end;
};

} // namespace gang
