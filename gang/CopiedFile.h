#pragma once

#include "gang/SharedFile.h"

#include <QByteArray>
#include <QString>

namespace gang
{

bool write_file(const QString& path, const QByteArray& contents);

/// A file of the user's, read once and copied, whatever becomes of it afterwards. It may be a pipe.
class CopiedFile
{
public:
    /// Throws FileError, with the name of the file, if it cannot be read or copied.
    CopiedFile(const QString& path, const QString& copy);

    const QByteArray& contents() const { return m_contents; }

    /// In hexadecimal.
    QString sha256() const;

private:
    QByteArray m_contents;
};

} // namespace gang
