#pragma once

#include <QString>

namespace sim
{

/// Throws Error if `path` is a device: one such as /dev/zero never ends. Files and pipes
/// are accepted, and so is a missing file, which the caller reports when it cannot open it.
void refuse_device(const QString& path);

} // namespace sim
