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

/// How a run of the tool ended and what it left on its two streams.
struct ToolResult {
    bool crashed = false; ///< ended by a signal
    int status = 0;       ///< exit status, or the number of that signal
    QByteArray out;
    QByteArray err;
};

/// What a run that ends by itself is expected to come to. Standard error carries diagnostics for
/// developers only and takes no part in comparisons.
ToolResult exited(int status, const QByteArray& out);
/// What a run is expected to come to that a signal ends.
ToolResult killed(int signal, const QByteArray& out);

bool operator==(const ToolResult& left, const ToolResult& right);
std::ostream& operator<<(std::ostream& stream, const ToolResult& result);

/// A run of the tool that goes on while the caller's event loop does. One that has not ended by
/// itself after a minute is killed and fails the test.
class RunningTool
{
public:
    using Look = std::function<void(qint64 process)>;

    /// Starts it in this folder; calls `look` once, as soon as `awaited` has come out of it.
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

/// Runs the real `zserial` in a folder of its own while the caller's event loop goes on, so that a
/// simulated device of the same test can serve it.
class ToolRun
{
public:
    ToolRun();

    QString path(const QString& name) const;
    void put_file(const QString& name, const QByteArray& contents);
    /// The contents of a file in the folder; a file that is not there fails the test.
    QByteArray file(const QString& name) const;
    /// The names of all files in the folder, sorted.
    QStringList files() const;

    /// Calls `look` with the process of each run that follows, once, as soon as `text` has come
    /// out of it.
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
