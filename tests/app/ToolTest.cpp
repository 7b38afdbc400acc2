#include "tests/app/ToolTest.h"

#include "sim/device/FrameCodec.h"
#include "sim/line/PortLock.h"
#include "tests/support/Bytes.h"

#include <QDir>
#include <QFile>
#include <QSerialPort>

namespace test
{

namespace
{

QString data_path(const char* file_name)
{
    return QStringLiteral(APP_TEST_DATA "/") + QLatin1String(file_name);
}

} // namespace

const char* const success = "\nAll operations completed succesfully!\n";

QByteArray test_data(const char* file_name)
{
    QFile file(data_path(file_name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << "no test data " << file_name;
    return file.isOpen() ? file.readAll() : QByteArray();
}

QByteArray frame(const char* header, const QByteArray& data)
{
    return sim::make_frame(QByteArray::fromHex(header) + data);
}

void script_replies(sim::SimulatedDevice& device,
                    const std::vector<std::vector<sim::Delivery>>& replies)
{
    device.set_reply_filter([replies](const sim::Command& command, const QByteArray& answer) {
        return command.sequence < replies.size() ? replies[command.sequence]
                                                 : std::vector<sim::Delivery>{{answer}};
    });
}

std::string heard_by(const sim::SimulatedDevice& device)
{
    return small_digits(device.heard());
}

std::vector<std::string> commands_of(const sim::SimulatedDevice& device)
{
    std::vector<std::string> commands;
    for (const QByteArray& payload : device.payloads()) {
        commands.push_back(small_digits(payload));
    }
    return commands;
}

QStringList locks_on(const QString& port)
{
    QStringList locks;
    for (const QString& folder : sim::port_lock_folders()) {
        locks << QDir(folder).entryList({sim::port_lock_name(port)}, QDir::Files);
    }
    return locks;
}

QByteArray cannot_open(const QString& port)
{
    QSerialPort absent(port);
    EXPECT_FALSE(absent.open(QIODevice::ReadWrite));
    return QStringLiteral("cannot open port %1 (%2)\n")
        .arg(absent.portName(), absent.errorString())
        .toUtf8();
}

ToolTest::ToolTest() : m_table(data_path("device.txt"))
{
    give_file("device.txt");
}

void ToolTest::give_file(const char* file_name)
{
    m_tool.put_file(QLatin1String(file_name), test_data(file_name));
}

ToolResult ToolTest::run(const sim::SimulatedDevice& device, const char* arguments) const
{
    return m_tool.run(QStringList{QStringLiteral("-s"), device.port_path()} + words(arguments));
}

} // namespace test
