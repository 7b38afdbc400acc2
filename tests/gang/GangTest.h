#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <vector>

namespace test
{

/// Splits a command line at spaces.
QStringList words(const char* text);

/// A zserial-sim process that runs until the object is destroyed.
class SimProcess
{
public:
    /// Starts zserial-sim with `options` and --json, and waits until it prints its port.
    SimProcess(const QString& folder, const QStringList& options);
    ~SimProcess();

    const QString& port() const { return m_port; }

    /// Stops the simulator and returns its summary.
    QJsonObject stop();

private:
    QProcess m_process;
    QString m_port;
};

/// How a zserial-gang process ended, and what it printed.
struct GangResult {
    bool crashed = false;
    int status = 0; ///< exit status, or the number of the signal
    QByteArray out;
    QByteArray err;

    /// Returns the lines of standard output that are JSON objects.
    std::vector<QJsonObject> events() const;
    /// Returns the last event of this kind, for `port` or for any port if that is empty; an empty
    /// object if there is none.
    QJsonObject last(const char* event, const QString& port = {}) const;
};

std::ostream& operator<<(std::ostream& stream, const GangResult& result);

/// A zserial-gang process.
class GangProcess
{
public:
    /// `setup` is what a shell runs before the gang replaces it.
    GangProcess(const QString& folder, const QStringList& arguments,
                const QString& setup = QStringLiteral(":"));
    ~GangProcess();

    qint64 id() const { return m_process.processId(); }

    /// Waits until `text` is on standard output; false on a timeout.
    bool has_printed(const QByteArray& text);
    /// Returns how often `text` has appeared on standard output so far.
    int count(const QByteArray& text);
    void send(int signal);
    GangResult result();

private:
    void read();

    QProcess m_process;
    QByteArray m_out;
};

/// Runs real processes in a folder with a table, an image and whatever files a test adds.
class GangTest : public testing::Test
{
protected:
    GangTest();

    QString path(const QString& name) const { return m_folder.filePath(name); }

    QString folder() const { return m_folder.path(); }

    void put_file(const QString& name, const QByteArray& contents) const;
    void give_file(const char* data, const QString& name) const;
    /// Creates a shell script to run in place of zserial, which it finds as $ZSERIAL. Returns its
    /// path.
    QString put_tool(const QByteArray& script) const;
    QByteArray file(const QString& name) const;
    /// Returns the lines of a record that are JSON objects.
    std::vector<QJsonObject> record(const QString& name = QStringLiteral("record.jsonl")) const;

    std::unique_ptr<SimProcess> device(const char* options = "--entry version") const;

    GangResult run(const QStringList& arguments) const;
    /// Runs a gang on one port, with these arguments for zserial and for the gang.
    GangResult run(const QString& port, const char* tool_arguments,
                   const char* gang_arguments = "") const;

private:
    QTemporaryDir m_folder;
};

std::string text(const QJsonObject& object, const char* key);

/// Returns the ids of the child processes of `parent`.
std::vector<qint64> children_of(qint64 parent);

} // namespace test
