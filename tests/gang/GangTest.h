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

/// Words of a command line, separated by spaces.
QStringList words(const char* text);

/// A process of zserial-sim that serves until it is destroyed.
class SimProcess
{
public:
    /// `options` beside the table and the device 0102, which runs its bootloader already.
    SimProcess(const QString& folder, const QStringList& options);
    ~SimProcess();

    const QString& port() const { return m_port; }

    /// Stops it; its summary, printed with --json.
    QJsonObject stop();

private:
    QProcess m_process;
    QString m_port;
};

/// How a run of zserial-gang ended and what it printed.
struct GangResult {
    bool crashed = false;
    int status = 0; ///< exit status, or the number of the signal
    QByteArray out;
    QByteArray err;

    /// The lines of standard output as JSON.
    std::vector<QJsonObject> events() const;
    /// The last event of this kind for a port; empty if there is none.
    QJsonObject last(const char* event, const QString& port = {}) const;
};

std::ostream& operator<<(std::ostream& stream, const GangResult& result);

/// A process of zserial-gang.
class GangProcess
{
public:
    /// `setup`: what a shell does before it becomes the gang.
    GangProcess(const QString& folder, const QStringList& arguments,
                const QString& setup = QStringLiteral(":"));
    ~GangProcess();

    qint64 id() const { return m_process.processId(); }

    /// Waits until this has come out of it.
    bool has_printed(const QByteArray& text);
    /// How often this has come out of it.
    int count(const QByteArray& text);
    void send(int signal);
    GangResult result();

private:
    void read();

    QProcess m_process;
    QByteArray m_out;
};

/// Runs real processes in a folder that has a table, an image and whatever a test adds.
class GangTest : public testing::Test
{
protected:
    GangTest();

    QString path(const QString& name) const { return m_folder.filePath(name); }

    QString folder() const { return m_folder.path(); }

    void put_file(const QString& name, const QByteArray& contents) const;
    void give_file(const char* data, const QString& name) const;
    /// A shell script to run in place of the tool, which it finds as $ZSERIAL.
    QString put_tool(const QByteArray& script) const;
    QByteArray file(const QString& name) const;
    /// The lines of a record that are JSON.
    std::vector<QJsonObject> record(const QString& name = QStringLiteral("record.jsonl")) const;

    std::unique_ptr<SimProcess> device(const char* options = "--entry version") const;

    GangResult run(const QStringList& arguments) const;
    /// Runs one port with these arguments of the tool, and of the gang.
    GangResult run(const QString& port, const char* tool_arguments,
                   const char* gang_arguments = "") const;

private:
    QTemporaryDir m_folder;
};

std::string text(const QJsonObject& object, const char* key);

/// The number of the system's processes with this program whose parent is `parent`.
std::vector<qint64> children_of(qint64 parent);

} // namespace test
