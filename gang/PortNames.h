#pragma once

#include <QString>

namespace gang
{

/// A port as a user names it.
struct PortNames {
    QString path; ///< such as /dev/ttyUSB0
    QString name; ///< fit for a file name: ttyUSB0, pts_3
    int n = 0;    ///< its place in the list, from 1
};

/// A path that begins with "./" or "../" becomes an absolute one.
PortNames names_of(const QString& port, int n);

/// The same file, whatever the folder in which it is used.
QString absolute_name(const QString& file);

/// The file of a port; one that is named without any path is in /dev.
QString file_of_port(const QString& port);

/// {port}, {name} and {n} in a text, replaced.
QString expand(const QString& text, const PortNames& names);

/// What the system knows of the adapter on a port; empty texts for what it does not.
struct Adapter {
    QString name;
    QString serial;
};

Adapter adapter_on(const QString& port);

} // namespace gang
