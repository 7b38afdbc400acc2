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
    /// Asks the command to end; when asked for the second time, makes it end.
    void stop();

Q_SIGNALS:
    /// Comes once, when the command has ended or turned out not to start; `complaint` says why not.
    void ended(const sim::CommandEnd& end, const QString& complaint);

private:
    /// A child that has its signals as programs expect them, whatever this process does with its
    /// own.
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
