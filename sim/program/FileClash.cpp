#include "sim/program/FileClash.h"

#include "process/FileNames.h"

#include <QFileInfo>

#include <algorithm>

namespace sim
{

namespace
{

/// Whatever isn't there yet will be a regular file.
bool keeps_nothing(const QString& path)
{
    const QFileInfo file(path);
    return file.exists() && !file.isFile();
}

bool are_one_file(const NamedFile& one, const NamedFile& other)
{
    if (one.use == NamedFile::Use::Linked) {
        return Platform::link_chain(other.path).contains(Platform::place_of(one.path));
    }
    if (other.use == NamedFile::Use::Linked) {
        return are_one_file(other, one);
    }
    return !keeps_nothing(one.path) &&
           Platform::file_key(one.path) == Platform::file_key(other.path);
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
