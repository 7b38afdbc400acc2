#pragma once

#include <QByteArray>
#include <QString>

namespace sim
{

/// Replaces the whole content of a file. If that fails, as on a full disk, the file stays as it
/// was; false then. Anything but a regular file (a pipe, a terminal) can only be written in place.
bool write_whole_file(const QString& path, const QByteArray& content);

} // namespace sim
