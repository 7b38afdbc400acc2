#include "gang/ReadFileCheck.h"

#include <QFile>
#include <QFileInfo>

namespace gang
{

namespace
{

/// True if the file starts with a record and ends with the end record. A file cut short, for
/// example by a full disk, lacks the end record. The records in between are not checked: for some
/// devices, what zserial reads overlaps.
bool is_whole(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.read(1) != ":") {
        return false;
    }
    const QByteArray end(":00000001FF\n");
    return file.seek(qMax<qint64>(1, file.size() - end.size())) && file.readAll() == end;
}

} // namespace

ReadFileCheck::ReadFileCheck(const QString& file) : m_file(file), m_before(identity_of(file)) {}

QString ReadFileCheck::problem() const
{
    if (m_file.isEmpty()) {
        return {};
    }
    if (!QFileInfo(m_file).isFile()) {
        return QStringLiteral("%1 is missing or not a regular file, so what was read is not saved")
            .arg(m_file);
    }
    if (identity_of(m_file) == m_before) {
        return QStringLiteral("%1 has not changed, so what was read is not saved").arg(m_file);
    }
    if (!is_whole(m_file)) {
        return QStringLiteral("%1 is incomplete: it does not end with an end record").arg(m_file);
    }
    return {};
}

} // namespace gang
