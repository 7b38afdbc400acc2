#pragma once

#include <QString>

namespace gang
{

/// A port and the values of its placeholders.
struct PortNames {
    QString path; ///< {port}: such as /dev/ttyUSB0
    QString name; ///< {name}: usable in a file name, such as ttyUSB0 or pts_3
    int n = 0;    ///< {n}: position in the list, from 1
};

/// Returns the names of a port. A path that starts with "./" or "../" becomes absolute.
PortNames names_of(const QString& port, int n);

/// Returns a path that leads to the same file from any working folder.
QString absolute_name(const QString& file);

/// Returns the device file of a port; a bare name such as ttyUSB0 is in /dev.
QString file_of_port(const QString& port);

/// Replaces {port}, {name} and {n} in a text.
QString expand(const QString& text, const PortNames& names);

/// The adapter on a port, as far as the system knows it; unknown fields are empty.
struct Adapter {
    QString name;
    QString serial;
};

Adapter adapter_on(const QString& port);

} // namespace gang
