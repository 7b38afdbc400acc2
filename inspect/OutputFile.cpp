#include "inspect/OutputFile.h"

#include "inspect/UsageError.h"

#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <memory>

namespace inspect
{

namespace
{

bool is_same_file(const QString& path, const QString& other)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return !canonical.isEmpty() && canonical == QFileInfo(other).canonicalFilePath();
}

/// Pipes and devices can only be written in place.
std::unique_ptr<QFileDevice> target_for(const QString& path)
{
    const QFileInfo existing(path);
    if (existing.exists() && !existing.isFile()) {
        return std::make_unique<QFile>(path);
    }
    return std::make_unique<QSaveFile>(path);
}

bool finish(QFileDevice& file)
{
    auto* const replacement = qobject_cast<QSaveFile*>(&file);
    return file.flush() && (replacement == nullptr || replacement->commit());
}

} // namespace

void write_output(const QString& path, const QStringList& inputs, const QByteArray& content)
{
    const bool is_input = std::any_of(inputs.begin(), inputs.end(), [&](const QString& input) {
        return is_same_file(path, input);
    });
    if (is_input) {
        throw UsageError(
            QStringLiteral("%1 is read by this command and would be overwritten").arg(path));
    }
    const std::unique_ptr<QFileDevice> file = target_for(path);
    if (!file->open(QIODevice::WriteOnly) || file->write(content) != content.size() ||
        !finish(*file)) {
        throw UsageError(QStringLiteral("cannot write %1: %2").arg(path, file->errorString()));
    }
}

} // namespace inspect
