#pragma once

#include "gang/SharedFile.h"

#include <QByteArray>
#include <QString>

namespace gang
{

bool write_file(const QString& path, const QByteArray& contents);

/// A snapshot of a user's file, which may be a pipe: read once and copied, so that later changes to
/// the file have no effect.
class CopiedFile
{
public:
    /// Reads `path` and writes `copy`. Throws FileError, which names the file, if either fails.
    CopiedFile(const QString& path, const QString& copy);

    const QByteArray& contents() const { return m_contents; }

    /// In lower-case hexadecimal.
    QString sha256() const;

private:
    QByteArray m_contents;
};

} // namespace gang
