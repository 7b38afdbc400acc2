#include "sim/program/FileClash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <sys/stat.h>

namespace sim
{

namespace
{

/// More than anybody links one to the other; also the end of links that lead in a circle.
constexpr int longest_chain = 40;

/// The path without links in its folders, whether the file is there or not.
QString place_of(const QString& path)
{
    const QFileInfo file(path);
    const QString folder = QFileInfo(file.absolutePath()).canonicalFilePath();
    return QDir(folder.isEmpty() ? file.absolutePath() : folder).filePath(file.fileName());
}

/// The path and what it leads to from link to link; the last is where writing would end, whether
/// the file is there or not.
QStringList chain_of(const QString& path)
{
    QStringList places = {place_of(path)};
    while (places.size() < longest_chain && QFileInfo(places.last()).isSymLink()) {
        places.append(place_of(QFileInfo(places.last()).symLinkTarget()));
    }
    return places;
}

std::optional<struct stat> status_of(const QString& path)
{
    struct stat status {
    };

    const bool exists = ::stat(QFile::encodeName(path).constData(), &status) == 0;
    return exists ? std::optional(status) : std::nullopt;
}

bool are_one_file(const NamedFile& one, const NamedFile& other)
{
    if (one.use == NamedFile::Use::Linked) {
        return chain_of(other.path).contains(place_of(one.path));
    }
    if (other.use == NamedFile::Use::Linked) {
        return are_one_file(other, one);
    }
    const auto status = status_of(one.path);
    const auto other_status = status_of(other.path);
    if (status && other_status) {
        return S_ISREG(status->st_mode) && status->st_dev == other_status->st_dev &&
               status->st_ino == other_status->st_ino;
    }
    return chain_of(one.path).last() == chain_of(other.path).last();
}

bool clash(const NamedFile& one, const NamedFile& other)
{
    const bool is_named = !one.path.isEmpty() && !other.path.isEmpty();
    const bool is_read = one.use == NamedFile::Use::Read && other.use == NamedFile::Use::Read;
    return is_named && !is_read && are_one_file(one, other);
}

} // namespace

std::optional<FileClash> find_clash(const std::vector<NamedFile>& files)
{
    for (auto one = files.begin(); one != files.end(); ++one) {
        const auto other = std::find_if(one + 1, files.end(), [one](const NamedFile& candidate) {
            return clash(*one, candidate);
        });
        if (other != files.end()) {
            return FileClash{one->option, other->option};
        }
    }
    return std::nullopt;
}

} // namespace sim
