#include "sim/faults/Chance.h"

namespace sim
{

namespace
{

/// FNV-1a: a fixed hash, unlike the library's own.
std::uint64_t hash_of(const char* name)
{
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (; *name != '\0'; ++name) {
        hash = (hash ^ static_cast<unsigned char>(*name)) * 0x100000001B3U;
    }
    return hash;
}

} // namespace

DrawStream::DrawStream(std::uint64_t seed, const char* name) : m_engine(seed ^ hash_of(name)) {}

} // namespace sim
