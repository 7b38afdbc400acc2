#pragma once

#include "memory/MemoryMap.h"
#include "tests/support/Bytes.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/HexRecords.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace test
{

// Images, texts and files in forms that can be written down in a test and that a failure shows.

/// A map's blobs in list order: address and bytes, the latter as upper-case hexadecimal digits.
using Blobs = std::vector<std::pair<unsigned int, std::string>>;

inline QByteArray bytes_of(const zarnBLOB& blob)
{
    QByteArray bytes;
    blob.read(0, blob.size(), bytes);
    return bytes;
}

inline Blobs blobs_of(const MemoryMap& map)
{
    Blobs image;
    for (const auto& blob : map.blobs()) {
        image.emplace_back(blob->address, digits_of(bytes_of(*blob)));
    }
    return image;
}

inline std::vector<std::string> lines_of(const DebugMessages& messages)
{
    std::vector<std::string> lines;
    for (const QString& text : messages.texts()) {
        lines.push_back(text.toStdString());
    }
    return lines;
}

inline void write_file(const QString& path, const QByteArray& content)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(content), content.size());
}

inline QByteArray file_content(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

} // namespace test
