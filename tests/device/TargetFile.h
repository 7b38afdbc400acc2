#pragma once

#include "memory/MemoryMap.h"
#include "tests/device/OperationImages.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <stdexcept>

namespace test
{

/// A file for an operation to write, in a folder of its own that lives as long as this.
class TargetFile
{
public:
    explicit TargetFile(const QString& name = QStringLiteral("read.hex"))
        : file(m_folder.filePath(name))
    {
    }

    /// Creates the file with this content beforehand.
    void preset(const QByteArray& text) const
    {
        QFile existing(file.fileName());
        if (!existing.open(QIODevice::WriteOnly) || existing.write(text) != text.size()) {
            throw std::runtime_error("cannot write " + file.fileName().toStdString());
        }
    }

    bool exists() const { return QFile::exists(file.fileName()); }

    QByteArray text() const
    {
        QFile written(file.fileName());
        written.open(QIODevice::ReadOnly);
        return written.readAll();
    }

    /// The map that a firmware loader reads from it.
    Content content() const
    {
        MemoryMap image(MemoryMap::default_chunk_size);
        if (!image.load_from_hex_file(file.fileName(), {})) {
            throw std::runtime_error("no image in " + file.fileName().toStdString());
        }
        Content content;
        for (const auto& blob : image.blobs()) {
            blob->read(0, blob->size(), content[blob->address]);
        }
        return content;
    }

    /// Everything in the folder, hidden files included.
    QStringList neighbours() const
    {
        return QDir(m_folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;

public:
    QFile file;
};

} // namespace test
