#pragma once

#include <cstdint>
#include <random>

namespace sim
{

/// A probability, kept as a whole number so that it means the same on every machine.
class Chance
{
public:
    Chance() = default;

    /// `probability` lies between 0, never, and 1, always.
    explicit Chance(double probability)
        : m_threshold(static_cast<std::uint64_t>(probability * scale))
    {
    }

    bool is_never() const { return m_threshold == 0; }

    /// Whether it happens, given a random number. The number's low bits are not used.
    bool covers(std::uint64_t draw) const { return draw >> unused_bits < m_threshold; }

private:
    static constexpr double scale = 9007199254740992.0; // 2 to the 53rd: what a double holds
    static constexpr unsigned int unused_bits = 11;

    std::uint64_t m_threshold = 0;
};

/// Random numbers that are the same on every machine for the same seed and name, and independent of
/// those of another name.
class DrawStream
{
public:
    DrawStream(std::uint64_t seed, const char* name);

    std::uint64_t next() { return m_engine(); }

private:
    std::mt19937_64 m_engine;
};

} // namespace sim
