#include "sim/rig/WholeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <memory>

namespace sim
{

namespace
{

std::unique_ptr<QFileDevice> target_for(const QString& path)
{
    const QFileInfo existing(path);
    if (existing.exists() && !existing.isFile()) {
        return std::make_unique<QFile>(path);
    }
    auto file = std::make_unique<QSaveFile>(path);
    file->setDirectWriteFallback(true); // for a writable file in a folder that is not
    return file;
}

/// Finishes the file; `complete` says whether all content was accepted so far. Whether all of it
/// was written: commit() alone does not notice if the disk takes only a part of the buffer.
bool finish(QFileDevice& file, bool complete)
{
    const bool arrived = complete && file.flush();
    if (auto* replacement = qobject_cast<QSaveFile*>(&file)) {
        if (!arrived) {
            replacement->cancelWriting();
        }
        return replacement->commit();
    }
    return arrived;
}

} // namespace

bool write_whole_file(const QString& path, const QByteArray& content)
{
    const std::unique_ptr<QFileDevice> file = target_for(path);
    return file->open(QIODevice::WriteOnly) &&
           finish(*file, file->write(content) == content.size());
}

} // namespace sim
