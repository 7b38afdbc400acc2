#include "inspect/SerialPorts.h"

#include "inspect/SmallFile.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace inspect
{

namespace
{

QString folder_of_ports(const SystemRoots& roots)
{
    return roots.sys + QStringLiteral("/class/tty");
}

QString attribute(const QString& folder, const char* name)
{
    return QString::fromUtf8(small_file(folder + QLatin1Char('/') + QLatin1String(name)));
}

/// The folder and those above it, up to the root of the tree.
QStringList folders_from(const QString& folder, const SystemRoots& roots)
{
    const QString top = QFileInfo(roots.sys).canonicalFilePath();
    QStringList folders;
    for (QString at = folder; at.size() > top.size() && at.startsWith(top);
         at = QFileInfo(at).path()) {
        folders << at;
    }
    return folders;
}

/// Some drivers sit on a layer that only joins them to the kernel's serial ports.
QString driver_of(const QStringList& folders)
{
    for (const QString& folder : folders) {
        const QString driver = QFileInfo(folder + QStringLiteral("/driver")).canonicalFilePath();
        if (!driver.isEmpty() && !driver.contains(QLatin1String("/serial-base/"))) {
            return QFileInfo(driver).fileName();
        }
    }
    return {};
}

/// The folder of the USB device that a port belongs to; empty when it belongs to none.
QString usb_device_of(const QStringList& folders)
{
    const auto found = std::find_if(folders.begin(), folders.end(), [](const QString& folder) {
        return QFileInfo::exists(folder + QStringLiteral("/idVendor"));
    });
    return found == folders.end() ? QString() : *found;
}

void add_usb(SerialPort& port, const QString& folder)
{
    port.is_usb = true;
    port.description = attribute(folder, "product");
    port.manufacturer = attribute(folder, "manufacturer");
    port.vendor_id = attribute(folder, "idVendor");
    port.product_id = attribute(folder, "idProduct");
    port.serial_number = attribute(folder, "serial");
}

QStringList links_to(const QString& name, const SystemRoots& roots)
{
    const QDir folder(roots.dev + QStringLiteral("/serial/by-id"));
    QStringList links;
    for (const QFileInfo& link : folder.entryInfoList(QDir::System | QDir::Files, QDir::Name)) {
        if (link.isSymLink() && QFileInfo(link.symLinkTarget()).fileName() == name) {
            links << link.filePath();
        }
    }
    return links;
}

/// A rule of udev may ask the service to keep off the device or the port.
bool is_left_alone(const QString& folder, const SystemRoots& roots)
{
    const QByteArray properties =
        '\n' + small_file(roots.udev + QStringLiteral("/c") + attribute(folder, "dev"));
    return properties.contains("\nE:ID_MM_DEVICE_IGNORE=1") ||
           properties.contains("\nE:ID_MM_PORT_IGNORE=1");
}

std::optional<int> latency_of(const QString& name, const SystemRoots& roots)
{
    bool is_number = false;
    const int latency = small_file(roots.sys + QStringLiteral("/bus/usb-serial/devices/") + name +
                                   QStringLiteral("/latency_timer"))
                            .toInt(&is_number);
    return is_number ? std::optional(latency) : std::nullopt;
}

SerialPort port_at(const QFileInfo& entry, const SystemRoots& roots)
{
    const QString device =
        QFileInfo(entry.filePath() + QStringLiteral("/device")).canonicalFilePath();
    const QStringList folders = folders_from(device, roots);
    const QString usb_device = usb_device_of(folders);
    SerialPort port;
    port.name = entry.fileName();
    port.path = roots.dev + QLatin1Char('/') + port.name;
    port.by_id = links_to(port.name, roots);
    port.driver = driver_of(folders);
    port.latency_ms = latency_of(port.name, roots);
    if (!usb_device.isEmpty()) {
        add_usb(port, usb_device);
    }
    port.is_left_alone =
        is_left_alone(entry.filePath(), roots) || (port.is_usb && is_left_alone(usb_device, roots));
    return port;
}

/// Consoles have no device; ports that the kernel has prepared without finding one are of type 0.
bool has_hardware(const QFileInfo& entry)
{
    return QFileInfo::exists(entry.filePath() + QStringLiteral("/device")) &&
           small_file(entry.filePath() + QStringLiteral("/type")) != "0";
}

/// ttyUSB2 comes before ttyUSB10.
std::pair<QString, qulonglong> order_of(const QString& name)
{
    int digits = name.size();
    while (digits > 0 && name.at(digits - 1).isDigit()) {
        --digits;
    }
    return {name.left(digits), name.mid(digits).toULongLong()};
}

} // namespace

bool lists_ports(const SystemRoots& roots)
{
    return QFileInfo(folder_of_ports(roots)).isDir();
}

std::vector<SerialPort> serial_ports(const SystemRoots& roots)
{
    std::vector<SerialPort> ports;
    const QDir folder(folder_of_ports(roots));
    for (const QFileInfo& entry : folder.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (has_hardware(entry)) {
            ports.push_back(port_at(entry, roots));
        }
    }
    std::sort(ports.begin(), ports.end(), [](const SerialPort& left, const SerialPort& right) {
        return order_of(left.name) < order_of(right.name);
    });
    return ports;
}

} // namespace inspect
