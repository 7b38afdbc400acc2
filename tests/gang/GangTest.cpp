#include "tests/gang/GangTest.h"

#include "tests/support/Waiting.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QProcessEnvironment>

#include <csignal>

namespace test
{

namespace
{

constexpr int longest_run_ms = ZSERIAL_LONGEST_RUN_S * 2000;

/// Puts scratch folders into the test's folder, so that those of killed gangs are removed with it.
QProcessEnvironment environment(const QString& folder)
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    variables.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    variables.insert(QStringLiteral("TMPDIR"), folder);
    // An instrumented zserial that aborts must end by the signal, as the plain one does.
    const QString name = QStringLiteral("ASAN_OPTIONS");
    variables.insert(name, variables.value(name) + QStringLiteral(":handle_abort=0:handle_segv=0"));
    return variables;
}

} // namespace

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

SimProcess::SimProcess(const QString& folder, const QStringList& options)
{
    m_process.setWorkingDirectory(folder);
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QStringLiteral(ZSERIAL_SIM_PROGRAM), options + words("--json"));
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(longest_run_ms)) {
            ADD_FAILURE() << "zserial-sim has not started";
            return;
        }
    }
    m_port = QString::fromLocal8Bit(m_process.readLine()).trimmed();
}

SimProcess::~SimProcess()
{
    stop();
}

QJsonObject SimProcess::stop()
{
    m_process.terminate();
    m_process.waitForFinished(longest_run_ms);
    return QJsonDocument::fromJson(m_process.readAllStandardOutput()).object();
}

std::vector<QJsonObject> GangResult::events() const
{
    std::vector<QJsonObject> events;
    for (const QByteArray& line : out.split('\n')) {
        const QJsonDocument document = QJsonDocument::fromJson(line);
        if (document.isObject()) {
            events.push_back(document.object());
        }
    }
    return events;
}

QJsonObject GangResult::last(const char* event, const QString& port) const
{
    QJsonObject last;
    for (const QJsonObject& object : events()) {
        if (text(object, "event") == event &&
            (port.isEmpty() || object.value(QStringLiteral("port")).toString() == port)) {
            last = object;
        }
    }
    return last;
}

std::ostream& operator<<(std::ostream& stream, const GangResult& result)
{
    return stream << (result.crashed ? "signal " : "status ") << result.status << "\nout:\n"
                  << result.out.constData() << "\nerr:\n"
                  << result.err.constData();
}

GangProcess::GangProcess(const QString& folder, const QStringList& arguments, const QString& setup)
{
    m_process.setWorkingDirectory(folder);
    m_process.setProcessEnvironment(environment(folder));
    const bool is_report = arguments.value(0) == QLatin1String("report");
    m_process.start(
        QStringLiteral("bash"),
        QStringList{QStringLiteral("-c"), setup + QStringLiteral("; exec \"$0\" \"$@\""),
                    QStringLiteral(ZSERIAL_GANG_PROGRAM)} +
            (is_report ? QStringList() : words("--zserial " ZSERIAL_PROGRAM)) + arguments);
    EXPECT_TRUE(m_process.waitForStarted(longest_run_ms)) << ZSERIAL_GANG_PROGRAM;
}

GangProcess::~GangProcess()
{
    m_process.kill();
    m_process.waitForFinished(longest_run_ms);
}

void GangProcess::read()
{
    m_out += m_process.readAllStandardOutput();
}

bool GangProcess::has_printed(const QByteArray& text)
{
    return wait_until([this, &text] { return count(text) > 0; });
}

int GangProcess::count(const QByteArray& text)
{
    read();
    return m_out.count(text);
}

void GangProcess::send(int signal)
{
    ASSERT_EQ(::kill(static_cast<pid_t>(id()), signal), 0);
}

GangResult GangProcess::result()
{
    if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(longest_run_ms)) {
        ADD_FAILURE() << "zserial-gang did not end by itself";
        m_process.kill();
        m_process.waitForFinished(longest_run_ms);
    }
    read();
    return {m_process.exitStatus() == QProcess::CrashExit, m_process.exitCode(), m_out,
            m_process.readAllStandardError()};
}

GangTest::GangTest()
{
    EXPECT_TRUE(m_folder.isValid()) << m_folder.errorString().toStdString();
    give_file("device.txt", QStringLiteral("device.txt"));
    give_file("image.hex", QStringLiteral("image.hex"));
}

void GangTest::put_file(const QString& name, const QByteArray& contents) const
{
    QFile file(path(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << name.toStdString();
    ASSERT_EQ(file.write(contents), contents.size());
}

void GangTest::give_file(const char* data, const QString& name) const
{
    QFile source(QStringLiteral(GANG_TEST_DATA "/") + QLatin1String(data));
    ASSERT_TRUE(source.open(QIODevice::ReadOnly)) << data;
    put_file(name, source.readAll());
}

QString GangTest::put_tool(const QByteArray& script) const
{
    const QString name = QStringLiteral("tool.sh");
    put_file(name, "#!/bin/bash\nZSERIAL=" ZSERIAL_PROGRAM "\n" + script);
    EXPECT_TRUE(QFile::setPermissions(path(name), QFile::ReadOwner | QFile::ExeOwner));
    return path(name);
}

QByteArray GangTest::file(const QString& name) const
{
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << "no file " << name.toStdString();
    return file.isOpen() ? file.readAll() : QByteArray();
}

std::vector<QJsonObject> GangTest::record(const QString& name) const
{
    std::vector<QJsonObject> lines;
    for (const QByteArray& line : file(name).split('\n')) {
        const QJsonDocument document = QJsonDocument::fromJson(line);
        if (document.isObject()) {
            lines.push_back(document.object());
        }
    }
    return lines;
}

std::unique_ptr<SimProcess> GangTest::device(const char* options) const
{
    return std::make_unique<SimProcess>(
        folder(), words("--table " GANG_TEST_DATA "/device.txt --device 0102") + words(options));
}

GangResult GangTest::run(const QStringList& arguments) const
{
    return GangProcess(folder(), arguments).result();
}

GangResult GangTest::run(const QString& port, const char* tool_arguments,
                         const char* gang_arguments) const
{
    return run(QStringList{QStringLiteral("--json"), port} + words(gang_arguments) + words("--") +
               words(tool_arguments));
}

std::string text(const QJsonObject& object, const char* key)
{
    return object.value(QLatin1String(key)).toString().toStdString();
}

std::vector<qint64> children_of(qint64 parent)
{
    QFile list(QStringLiteral("/proc/%1/task/%1/children").arg(parent));
    std::vector<qint64> children;
    if (list.open(QIODevice::ReadOnly)) {
        for (const QByteArray& word : list.readAll().split(' ')) {
            if (!word.isEmpty()) {
                children.push_back(word.toLongLong());
            }
        }
    }
    return children;
}

} // namespace test
