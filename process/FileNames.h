#pragma once

#include <QString>
#include <QStringList>

namespace Platform
{

/// The path without links in its folders, whether the file is there or not.
QString place_of(const QString& path);

/// The places of a path and of what it leads to from link to link. The last is where writing would
/// end, whether the file is there or not.
QStringList link_chain(const QString& path);

/// A text that all names of one file have in common and no other file has: through links, hard
/// links and links to its folder, whether the file is there or not. It may change when the file is
/// made or removed.
QString file_key(const QString& path);

} // namespace Platform
