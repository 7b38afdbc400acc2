#pragma once

#include "inspect/SystemRoots.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace inspect
{

/// What the system says about the hardware of a serial port. Texts are empty where it says nothing.
struct SerialPort {
    QString name;        ///< "ttyUSB0"
    QString path;        ///< "/dev/ttyUSB0"
    QStringList by_id;   ///< paths of links whose names stay when the adapter is plugged elsewhere
    QString description; ///< the product's name
    QString manufacturer;
    QString vendor_id; ///< four hexadecimal digits, as the product id
    QString product_id;
    QString serial_number;
    QString driver;
    std::optional<int> latency_ms; ///< how long the adapter waits before it passes on a few bytes
    bool is_usb = false;
    bool is_left_alone = false; ///< services that probe new ports are asked to pass it over
};

/// Whether the system lists its serial ports at all.
bool lists_ports(const SystemRoots& roots);

/// The ports with hardware, sorted by name.
std::vector<SerialPort> serial_ports(const SystemRoots& roots);

} // namespace inspect
