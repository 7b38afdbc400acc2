#pragma once

#include <QString>
#include <QStringList>

class QFile;

namespace gang
{

/// Locks an open file against other open files of the same name, in whatever process; false while
/// somebody else has it. The system lets go of the lock when its process ends, however it ends.
bool try_lock(QFile& file);
void unlock(QFile& file);

/// Waits until what was written to the file is on the disk.
bool flush_to_disk(QFile& file);

/// What tells a file from another one that later has its name, and from its own earlier contents.
struct FileIdentity {
    quint64 device = 0;
    quint64 node = 0; ///< 0: there is none
    qint64 size = 0;
    qint64 changed_ns = 0;

    bool operator==(const FileIdentity& other) const;

    bool operator!=(const FileIdentity& other) const { return !(*this == other); }

    bool exists() const { return node != 0; }

    bool is_same_node(const FileIdentity& other) const;
};

/// That of the file which a name, or the link of that name, leads to.
FileIdentity identity_of(const QString& path);
FileIdentity identity_of(const QFile& open_file);

/// The files that match a pattern with the wildcards of a shell, sorted; links that lead nowhere
/// are none.
QStringList files_matching(const QString& pattern);

} // namespace gang
