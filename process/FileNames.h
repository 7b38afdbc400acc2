#pragma once

#include <QString>
#include <QStringList>

namespace Platform
{

/// Returns the absolute path with all links in its folders resolved. The file itself need not
/// exist; if it is a link, it is not followed.
QString place_of(const QString& path);

/// Returns place_of() of the path and of every link that it leads through. The last element is the
/// file that writing to the path would change or create. The chain of a circular link is cut off.
QStringList link_chain(const QString& path);

/// Returns a key that is the same for all names of one file (links, hard links, links to its
/// folder) and different for any other file. The file need not exist; the key may change when it is
/// created or removed.
QString file_key(const QString& path);

} // namespace Platform
