#include "gang/FileSystem.h"

#include <QFile>

#include <cerrno>
#include <glob.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <tuple>
#include <unistd.h>

namespace gang
{

namespace
{

template <typename Call>
bool succeeds(Call call)
{
    int result = -1;
    do {
        result = call();
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

FileIdentity identity_from(const struct stat& status)
{
    constexpr qint64 ns_per_s = 1000000000;
    return {status.st_dev, status.st_ino, status.st_size,
            status.st_mtim.tv_sec * ns_per_s + status.st_mtim.tv_nsec};
}

} // namespace

bool try_lock(QFile& file)
{
    return succeeds([&file] { return ::flock(file.handle(), LOCK_EX | LOCK_NB); });
}

void unlock(QFile& file)
{
    succeeds([&file] { return ::flock(file.handle(), LOCK_UN); });
}

bool flush_to_disk(QFile& file)
{
    return file.flush() && succeeds([&file] { return ::fsync(file.handle()); });
}

bool FileIdentity::operator==(const FileIdentity& other) const
{
    return is_same_node(other) &&
           std::tie(size, changed_ns) == std::tie(other.size, other.changed_ns);
}

bool FileIdentity::is_same_node(const FileIdentity& other) const
{
    return std::tie(device, node) == std::tie(other.device, other.node);
}

FileIdentity identity_of(const QString& path)
{
    struct stat status {
    };

    const bool found = ::stat(QFile::encodeName(path).constData(), &status) == 0;
    return found ? identity_from(status) : FileIdentity();
}

FileIdentity identity_of(const QFile& open_file)
{
    struct stat status {
    };

    return ::fstat(open_file.handle(), &status) == 0 ? identity_from(status) : FileIdentity();
}

QStringList files_matching(const QString& pattern)
{
    QStringList files;
    glob_t found{};
    if (::glob(QFile::encodeName(pattern).constData(), 0, nullptr, &found) == 0) {
        for (std::size_t i = 0; i < found.gl_pathc; ++i) {
            const QString file = QFile::decodeName(found.gl_pathv[i]);
            if (QFile::exists(file)) {
                files << file;
            }
        }
    }
    ::globfree(&found);
    return files;
}

} // namespace gang
