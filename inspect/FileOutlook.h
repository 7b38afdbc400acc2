#pragma once

#include <QString>

namespace inspect
{

// What would become of files that the uploader opens. Nothing is opened here, and nothing created.

/// It can be opened for reading and writing, and created when it is missing.
bool could_open(const QString& name);
/// The same for a file that is only appended to.
bool could_append(const QString& name);

/// Both names lead to one regular file, or to one that would be created.
bool are_one_file(const QString& one, const QString& other);

} // namespace inspect
