#pragma once

#include <QByteArray>
#include <QString>

namespace inspect
{

/// The beginning of a file of the system, such as a device's attribute, without blanks around it.
/// Empty when it cannot be read.
QByteArray small_file(const QString& path);

} // namespace inspect
