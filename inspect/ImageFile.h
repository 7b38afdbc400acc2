#pragma once

#include "inspect/Problem.h"
#include "memory/MemoryMap.h"

#include <QByteArray>
#include <QSet>

#include <array>
#include <optional>
#include <vector>

namespace inspect
{

/// A range of the image without a gap. Ends are exclusive; the last one may be 2 to the 32nd.
struct Segment {
    quint64 start;
    quint64 end;
};

/// The result of loading a HEX file as the uploader does.
struct ImageFile {
    QString path;
    bool is_readable = false;
    bool loads = false; ///< the uploader takes it
    quint64 file_size = 0;
    MemoryMap image{MemoryMap::default_chunk_size}; ///< empty when it does not load
    std::vector<Segment> segments;                  ///< in ascending order
    QByteArray sha256;                              ///< of the file
    quint32 crc32 = 0;                              ///< of the image's bytes, gaps left out
    std::array<quint64, 256> records{};             ///< complete ones, by type
    std::optional<quint32> start_address;
    std::vector<Problem> problems;

    quint64 bytes() const;
};

/// Loads the file as the uploader does for a device whose regions end at `boundaries`.
ImageFile read_image(const QString& path, const QSet<unsigned int>& boundaries);

/// The line of the first data record that holds this address, from `records_before` such records
/// on; 0 when there is none.
qint64 line_of(const QString& path, quint64 address, int records_before = 0);

} // namespace inspect
