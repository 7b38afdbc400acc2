#pragma once

#include "memory/MemoryMap.h"

#include <QByteArray>

#include <utility>
#include <vector>

namespace test
{

/// An image of these pieces, each cut into blobs of at most `chunk_size` bytes.
inline MemoryMap image(const std::vector<std::pair<unsigned int, QByteArray>>& pieces,
                       unsigned int chunk_size = MemoryMap::default_chunk_size)
{
    MemoryMap map(chunk_size);
    for (const auto& [address, data] : pieces) {
        map.write(address, data);
    }
    return map;
}

} // namespace test
