#pragma once

#include <QString>

#include <functional>

class QFileDevice;

namespace Util
{

/// Writes a file as a whole: `write` puts the content into it and returns whether all of it went
/// in. A file that cannot be written to its end, on a full disk say, stays as it was; false then.
/// What is no regular file (a pipe, a terminal) can only be written in place.
bool write_whole_file(const QString& path, const std::function<bool(QFileDevice&)>& write);

} // namespace Util
