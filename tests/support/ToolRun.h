#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <ostream>

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
    void once_printed(const QByteArray& text, std::function<void(qint64 process)> look);

    /// Runs the tool to its end. One that does not end within a minute is killed and fails the
    /// test.
    ToolResult run(const QStringList& arguments) const;

private:
    QTemporaryDir m_folder;
    QByteArray m_awaited;
    std::function<void(qint64)> m_look;
};
