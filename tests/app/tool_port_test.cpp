#include "tests/app/ToolTest.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace test;

namespace
{

class ToolPort : public ToolTest
{
protected:
    /// Another name of the device's port, which a test can take away.
    QString link_to(const sim::SimulatedDevice& device) const
    {
        QString link = m_tool.path(QStringLiteral("port"));
        EXPECT_TRUE(QFile::link(device.port_path(), link));
        return link;
    }

    /// Lets the entry procedure catch the device; there is no port afterwards.
    static void remove_after_entry(sim::SimulatedDevice& device, const QString& port)
    {
        device.set_reply_filter([port](const sim::Command& command, const QByteArray& answer) {
            if (command.kind == sim::Command::Kind::Probe) {
                EXPECT_TRUE(QFile::remove(port));
            }
            return std::vector<sim::Delivery>{{answer}};
        });
    }
};

/// The files that another process has open.
QStringList open_files(qint64 process)
{
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(process));
    QStringList names;
    for (const QFileInfo& descriptor : descriptors.entryInfoList(QDir::Files | QDir::System)) {
        names << descriptor.symLinkTarget();
    }
    return names;
}

} // namespace

TEST_F(ToolPort, MustExist)
{
    EXPECT_EQ(m_tool.run(words("-B 0102 -s /dev/ttyNOWHERE%1")),
              exited(1, "Port /dev/ttyNOWHERE%1 cannot be opened. Aborting...\n"));
}

TEST_F(ToolPort, MustExistBeforeTheTableIsLookedAt)
{
    ToolRun without_table;
    EXPECT_EQ(without_table.run(words("-B 0102 -s ttyNOWHERE")),
              exited(1, "Port ttyNOWHERE cannot be opened. Aborting...\n"));
}

TEST_F(ToolPort, MustBeNamed)
{
    EXPECT_EQ(m_tool.run(words("-e -q")), exited(1, "Port  cannot be opened. Aborting...\n"));
}

TEST_F(ToolPort, MustNotBeEmpty)
{
    EXPECT_EQ(m_tool.run({QStringLiteral("-s"), QString()}),
              exited(1, "Port  cannot be opened. Aborting...\n"));
}

TEST_F(ToolPort, MustBeASerialPort)
{
    EXPECT_EQ(m_tool.run({QStringLiteral("-s"), m_tool.path(QStringLiteral("device.txt"))}),
              exited(1, "Port " + m_tool.path(QStringLiteral("device.txt")).toUtf8() +
                            " cannot be opened. Aborting...\n"));
}

TEST_F(ToolPort, IsStillOpenWhenSuccessIsPrinted)
{
    sim::SimulatedDevice device(twin());
    QStringList files;
    m_tool.once_printed("succesfully!", [&files](qint64 process) { files = open_files(process); });
    EXPECT_EQ(
        run(device, "-B 0102 -R"),
        exited(0, QByteArray("Version set to 0x0102 successfully!Resetting device\n") + success));
    EXPECT_TRUE(files.contains(device.port_path())) << files.join(QLatin1Char('\n')).toStdString();
}

TEST_F(ToolPort, IsLeftUnlockedByARunThatSucceeds)
{
    sim::SimulatedDevice device(solo());
    EXPECT_EQ(run(device, "-B 0203 -e").status, 0);
    EXPECT_EQ(locks_on(device.port_path()), QStringList());
}

// A lock that is left over keeps out every user except the one whose run left it.
TEST_F(ToolPort, IsLeftUnlockedByARunThatFails)
{
    sim::SimulatedDevice device(solo());
    QStringList locks;
    QObject::connect(&device, &sim::SimulatedDevice::command_received, &device,
                     [&] { locks = locks_on(device.port_path()); });
    device.set_reply_filter([](const sim::Command&, const QByteArray&) {
        return std::vector<sim::Delivery>{{frame("02")}};
    });
    for (const char* arguments : {"-B 0203 -e", "-B 0203 -r out.hex", "-B 0203 -e -R"}) {
        SCOPED_TRACE(arguments);
        locks.clear();
        EXPECT_EQ(run(device, arguments).status, 1);
        EXPECT_NE(locks, QStringList());
        EXPECT_EQ(locks_on(device.port_path()), QStringList());
    }
}

TEST_F(ToolPort, IsLeftUnlockedWhenNoDeviceIsFound)
{
    sim::SimulatedDevice device(solo(), {sim::Entry::Version});
    device.set_reply_filter(
        [](const sim::Command&, const QByteArray&) { return std::vector<sim::Delivery>(); });
    EXPECT_EQ(run(device, "").status, 1);
    EXPECT_EQ(locks_on(device.port_path()), QStringList());
}

TEST_F(ToolPort, GoneAtTheResetDoesNotFailTheRun)
{
    sim::SimulatedDevice device(twin());
    const QString port = link_to(device);
    remove_after_entry(device, port);
    const ToolResult result = m_tool.run({QStringLiteral("-s"), port, QStringLiteral("-R")});
    EXPECT_EQ(result, exited(0, cannot_open(port) +
                                    "Retrieved version number during QV entry procedure: 0x0102\n"
                                    "Resetting device\n" +
                                    success));
    EXPECT_EQ(commands_of(device), std::vector<std::string>());
}

TEST_F(ToolPort, GoneBeforeAWriteFailsTheRun)
{
    give_file("twin_part_of_a_row.hex");
    sim::SimulatedDevice device(twin());
    const QString port = link_to(device);
    remove_after_entry(device, port);
    const ToolResult result = m_tool.run({QStringLiteral("-s"), port, QStringLiteral("-w"),
                                          QStringLiteral("twin_part_of_a_row.hex")});
    EXPECT_EQ(result, exited(1, "\rProgress 0%" + cannot_open(port) +
                                    "Retrieved version number during QV entry procedure: 0x0102\n"
                                    "Now writingFailed to write memory, aborting...\n"));
    EXPECT_EQ(commands_of(device), std::vector<std::string>());
}

TEST_F(ToolPort, PulledOutDuringAWriteFailsTheRunLikeASilentDevice)
{
    give_file("solo_two_rows.hex");
    sim::SimulatedDevice device(solo());
    QObject::connect(
        &device, &sim::SimulatedDevice::command_received, &device, [&device] { device.unplug(); },
        Qt::QueuedConnection);
    device.set_reply_filter(
        [](const sim::Command&, const QByteArray&) { return std::vector<sim::Delivery>(); });
    EXPECT_EQ(run(device, "-B 0203 -w solo_two_rows.hex"),
              exited(1, "Version set to 0x0203 successfully!\rProgress 0%"
                        "giving up after having made 40 attempts, with errors (" +
                            QByteArray("Response wait timed out\n").repeated(40) +
                            ")\n"
                            "unable to write flash row at address 0x00000060\n"
                            "Now writingFailed to write memory, aborting...\n"));
}
