#include "tests/inspect/FakeSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace test
{

FakeSystem::FakeSystem()
{
    for (const char* folder : {"sys/class/tty", "dev/serial/by-id", "proc", "udev", "locks"}) {
        EXPECT_TRUE(QDir(m_folder.path()).mkpath(QLatin1String(folder)));
    }
    put(QStringLiteral("proc/sys/kernel/random/boot_id"), "this-boot\n");
}

void FakeSystem::add_adapter(const QString& name) const
{
    const QString usb = QStringLiteral("sys/devices/usb1/1-1");
    const QString port = usb + QStringLiteral("/1-1:1.0/") + name;
    put(usb + QStringLiteral("/idVendor"), "0403\n");
    put(usb + QStringLiteral("/idProduct"), "6001\n");
    put(usb + QStringLiteral("/manufacturer"), "FTDI\n");
    put(usb + QStringLiteral("/product"), "FT232R USB UART\n");
    put(usb + QStringLiteral("/serial"), "A50285BI\n");
    put(usb + QStringLiteral("/dev"), "189:3\n");
    put(port + QStringLiteral("/latency_timer"), "1\n");
    put(port + QStringLiteral("/tty/") + name + QStringLiteral("/dev"), "188:0\n");
    put(QStringLiteral("sys/bus/usb-serial/drivers/ftdi_sio/bind"), "");
    link(port + QStringLiteral("/driver"),
         path(QStringLiteral("sys/bus/usb-serial/drivers/ftdi_sio")));
    link(port + QStringLiteral("/tty/") + name + QStringLiteral("/device"), path(port));
    link(QStringLiteral("sys/class/tty/") + name, path(port + QStringLiteral("/tty/") + name));
    link(QStringLiteral("sys/bus/usb-serial/devices/") + name, path(port));
    put(QStringLiteral("dev/") + name, "");
    EXPECT_TRUE(QFile::setPermissions(path(QStringLiteral("dev/") + name),
                                      QFileDevice::Permissions(0x6666)));
    link(QStringLiteral("dev/serial/by-id/usb-FTDI_FT232R_A50285BI-if00-port0"),
         QStringLiteral("../../") + name);
}

void FakeSystem::add_built_in_port(const QString& name, const char* type) const
{
    const QString chip = QStringLiteral("sys/devices/pnp0/00:05-") + name;
    const QString port = chip + QStringLiteral("/00:05:0/00:05:0.0");
    const QString entry = port + QStringLiteral("/tty/") + name;
    put(entry + QStringLiteral("/type"), type);
    put(entry + QStringLiteral("/dev"), "4:64\n");
    put(QStringLiteral("sys/bus/serial-base/drivers/port/bind"), "");
    put(QStringLiteral("sys/bus/pnp/drivers/serial/bind"), "");
    link(port + QStringLiteral("/driver"),
         path(QStringLiteral("sys/bus/serial-base/drivers/port")));
    link(chip + QStringLiteral("/driver"), path(QStringLiteral("sys/bus/pnp/drivers/serial")));
    link(entry + QStringLiteral("/device"), path(port));
    link(QStringLiteral("sys/class/tty/") + name, path(entry));
    put(QStringLiteral("dev/") + name, "");
    EXPECT_TRUE(QFile::setPermissions(path(QStringLiteral("dev/") + name),
                                      QFileDevice::Permissions(0x6666)));
}

void FakeSystem::add_process(int id, const char* name) const
{
    const QString folder = QStringLiteral("proc/%1").arg(id);
    put(folder + QStringLiteral("/comm"), QByteArray(name) + '\n');
    EXPECT_TRUE(QDir(m_folder.path()).mkpath(folder + QStringLiteral("/fd")));
}

void FakeSystem::put(const QString& path, const QByteArray& content) const
{
    EXPECT_TRUE(QDir(m_folder.path()).mkpath(QFileInfo(path).path()));
    QFile file(this->path(path));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    EXPECT_EQ(file.write(content), content.size());
}

void FakeSystem::link(const QString& path, const QString& target) const
{
    EXPECT_TRUE(QDir(m_folder.path()).mkpath(QFileInfo(path).path()));
    EXPECT_TRUE(QFile::link(target, this->path(path))) << path.toStdString();
}

QStringList FakeSystem::roots() const
{
    QStringList words;
    for (const char* root : {"sys", "dev", "proc", "udev", "locks"}) {
        words << QStringLiteral("--%1").arg(QLatin1String(root)) << path(QLatin1String(root));
    }
    return words;
}

} // namespace test
