#pragma once

#include "sim/rig/CommandEnd.h"

#include <QObject>
#include <QProcess>
#include <QStringList>

namespace sim
{

/// Runs the user's command on the port. Its input and output are those of this program.
class CommandRunner : public QObject
{
    Q_OBJECT

public:
    /// `command` is the program and its arguments; every {} in them stands for the port's path.
    CommandRunner(const QStringList& command, const QString& port_path);

    void start();
    /// Asks the command to end; the second call kills it.
    void stop();

Q_SIGNALS:
    /// Emitted once, when the command has ended or failed to start; `complaint` says why.
    void ended(const sim::CommandEnd& end, const QString& complaint);

private:
    /// A child with the signal settings that programs expect, whatever those of this process are.
    class Process : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    void report_end(int code, QProcess::ExitStatus status);
    void report_error(QProcess::ProcessError error);

    Process m_process;
    bool m_asked = false;
};

} // namespace sim
