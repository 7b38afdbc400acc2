#include "gang/CopiedFile.h"

#include <QCryptographicHash>
#include <QFile>

namespace gang
{

bool write_file(const QString& path, const QByteArray& contents)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() &&
           file.flush();
}

CopiedFile::CopiedFile(const QString& path, const QString& copy)
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        m_contents = file.readAll();
    }
    if (file.error() != QFileDevice::NoError) {
        throw FileError(QStringLiteral("%1: %2").arg(path, file.errorString()));
    }
    if (!write_file(copy, m_contents)) {
        throw FileError(
            QStringLiteral("%1: cannot copy it to the temporary file %2").arg(path, copy));
    }
}

QString CopiedFile::sha256() const
{
    return QString::fromLatin1(
        QCryptographicHash::hash(m_contents, QCryptographicHash::Sha256).toHex());
}

} // namespace gang
