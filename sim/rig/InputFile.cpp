#include "sim/rig/InputFile.h"

#include "sim/device/Error.h"

#include <QFile>

#include <sys/stat.h>

namespace sim
{

void refuse_device(const QString& path)
{
    struct stat status {
    };

    const bool exists = ::stat(QFile::encodeName(path).constData(), &status) == 0;
    if (exists && (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode))) {
        throw Error(QStringLiteral("%1 is a device, not a file or a pipe").arg(path));
    }
}

} // namespace sim
