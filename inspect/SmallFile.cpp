#include "inspect/SmallFile.h"

#include <QFile>
#include <QFileInfo>

namespace inspect
{

QByteArray small_file(const QString& path)
{
    constexpr qint64 longest = 64 * 1024;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return file.read(longest).trimmed();
}

} // namespace inspect
