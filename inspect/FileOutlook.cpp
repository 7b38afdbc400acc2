#include "inspect/FileOutlook.h"

#include "sim/program/FileClash.h"

#include <QFile>
#include <QFileInfo>

namespace inspect
{

namespace
{

/// More than anybody links one to the other; also the end of links that lead in a circle.
constexpr int longest_chain = 40;
constexpr int longest_name = 255; ///< of a file in its folder, in bytes

/// Where a link that leads to no file leads, which is where the file would be created.
QFileInfo place_of(const QString& name)
{
    QFileInfo place(name);
    for (int i = 0; i < longest_chain && place.isSymLink(); ++i) {
        place.setFile(place.symLinkTarget());
    }
    return place;
}

bool could_create(const QString& name)
{
    const QFileInfo place = place_of(name);
    const QFileInfo folder(place.absolutePath());
    return !name.isEmpty() && !place.fileName().isEmpty() && !place.isSymLink() &&
           QFile::encodeName(place.fileName()).size() <= longest_name && folder.isDir() &&
           folder.isWritable() && folder.isExecutable();
}

} // namespace

bool could_open(const QString& name)
{
    const QFileInfo file(name);
    return file.exists() ? could_append(name) && file.isReadable() : could_create(name);
}

bool could_append(const QString& name)
{
    const QFileInfo file(name);
    return file.exists() ? !file.isDir() && file.isWritable() : could_create(name);
}

bool are_one_file(const QString& one, const QString& other)
{
    using sim::NamedFile;
    return sim::find_clash({{{}, one, NamedFile::Use::Written}, {{}, other}}).has_value();
}

} // namespace inspect
