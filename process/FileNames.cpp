#include "process/FileNames.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>

namespace Platform
{

namespace
{

/// Longer than any real chain of links; ends the search in a circular one.
constexpr int longest_chain = 40;

} // namespace

QString place_of(const QString& path)
{
    const QFileInfo file(path);
    const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
    return QDir(folder.isEmpty() ? file.absolutePath() : folder).filePath(file.fileName());
}

QStringList link_chain(const QString& path)
{
    QStringList places = {place_of(path)};
    while (places.size() < longest_chain && QFileInfo(places.last()).isSymLink()) {
        places.append(place_of(QFileInfo(places.last()).symLinkTarget()));
    }
    return places;
}

QString file_key(const QString& path)
{
    struct stat status {
    };

    if (::stat(QFile::encodeName(path).constData(), &status) == 0) {
        return QStringLiteral("%1:%2").arg(status.st_dev).arg(status.st_ino);
    }
    // Starts with a slash, so it differs from every key above.
    return link_chain(path).last();
}

} // namespace Platform
