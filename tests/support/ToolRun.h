#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>

#include <functional>
#include <memory>
#include <ostream>

namespace test
{

/// How a run of the tool ended, and its output.
struct ToolResult {
    bool crashed = false; ///< ended by a signal
    int status = 0;       ///< exit status, or the number of that signal
    QByteArray out;
    QByteArray err;
};

/// The expected result of a run that exits. Standard error has only diagnostics for developers and
/// is not compared.
ToolResult exited(int status, const QByteArray& out);
/// The expected result of a run that a signal ends.
ToolResult killed(int signal, const QByteArray& out);

bool operator==(const ToolResult& left, const ToolResult& right);
std::ostream& operator<<(std::ostream& stream, const ToolResult& result);

/// A run of the tool that continues while the caller's event loop runs. One that has not exited
/// after a minute is killed and fails the test.
class RunningTool
{
public:
    using Look = std::function<void(qint64 process)>;

    /// Starts it in this folder; calls `look` once, as soon as it has printed `awaited`.
    RunningTool(const QString& folder, const QStringList& arguments, QByteArray awaited = {},
                Look look = {});
    /// Starts any command line.
    RunningTool(const QString& folder, const QString& program, const QStringList& arguments,
                QByteArray awaited, Look look);

    bool has_ended() const { return m_process.state() == QProcess::NotRunning; }

    qint64 process() const { return m_process.processId(); }

    /// Waits for its end.
    ToolResult result();

private:
    void take_output();

    QByteArray m_awaited;
    Look m_look;
    QByteArray m_out;
    QProcess m_process;
    QTimer m_watchdog;
};

/// Runs the real `zserial` in a folder of its own while the caller's event loop continues, so that
/// a simulated device of the same test can answer it.
class ToolRun
{
public:
    ToolRun();

    QString path(const QString& name) const;
    void put_file(const QString& name, const QByteArray& contents);
    /// The contents of a file in the folder; a missing file fails the test.
    QByteArray file(const QString& name) const;
    /// The names of all files in the folder, sorted.
    QStringList files() const;

    /// In each run that follows, calls `look` with its process once, as soon as it has printed
    /// `text`.
    void once_printed(const QByteArray& text, RunningTool::Look look);

    std::unique_ptr<RunningTool> start(const QStringList& arguments) const;
    /// Runs the tool to its end.
    ToolResult run(const QStringList& arguments) const;
    /// Runs a shell script in the folder, for which "$@" is the tool with these arguments.
    ToolResult run_in_shell(const QString& script, const QStringList& arguments) const;

    /// How many runs may go on at once.
    static std::size_t most_at_once();

private:
    QTemporaryDir m_folder;
    QByteArray m_awaited;
    RunningTool::Look m_look;
};

} // namespace test
