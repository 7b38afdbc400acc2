#pragma once

#include <QString>
#include <QStringList>

class QFile;

namespace gang
{

/// Locks an open file against every other open of the same file, in any process; false if another
/// one holds the lock. The system releases the lock when the process ends, even if it is killed.
bool try_lock(QFile& file);
void unlock(QFile& file);

/// Waits until all written data is on the disk; false if that fails.
bool flush_to_disk(QFile& file);

/// Identifies a file and the state of its contents, so that a replaced or changed file is noticed.
struct FileIdentity {
    quint64 device = 0;
    quint64 node = 0;      ///< inode number; 0: no file
    qint64 size = 0;       ///< bytes
    qint64 changed_ns = 0; ///< time of the last change to its contents, since 1970

    bool operator==(const FileIdentity& other) const;

    bool operator!=(const FileIdentity& other) const { return !(*this == other); }

    bool exists() const { return node != 0; }

    bool is_same_node(const FileIdentity& other) const;
};

/// Returns the identity of a file; links are followed.
FileIdentity identity_of(const QString& path);
FileIdentity identity_of(const QFile& open_file);

/// Returns the files that match a shell wildcard pattern, sorted. Dangling links are left out.
QStringList files_matching(const QString& pattern);

} // namespace gang
