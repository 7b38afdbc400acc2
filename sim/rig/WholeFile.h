#pragma once

#include <QByteArray>
#include <QString>

namespace sim
{

/// Replaces the content of a file as a whole. A file that cannot be written to its end, on a full
/// disk say, stays as it was; false then. What is no regular file (a pipe, a terminal) can only be
/// written in place.
bool write_whole_file(const QString& path, const QByteArray& content);

} // namespace sim
