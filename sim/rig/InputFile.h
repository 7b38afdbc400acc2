#pragma once

#include <QString>

namespace sim
{

/// Throws Error when `path` leads to a device, such as /dev/zero, which may have no end. Files and
/// pipes are read; what is missing is for the reader to complain about.
void refuse_device(const QString& path);

} // namespace sim
