#include "sim/faults/ByteDamage.h"

namespace sim
{

namespace
{

/// The low bits of the draw, which do not affect the probability, choose the bit.
char turn_bit(char byte, std::uint64_t draw)
{
    return static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << (draw & 7U)));
}

} // namespace

QByteArray ByteDamage::apply(QByteArray bytes)
{
    if (m_chance.is_never()) {
        return bytes;
    }
    for (char& byte : bytes) {
        const std::uint64_t draw = m_draws.next();
        if (m_chance.covers(draw)) {
            byte = turn_bit(byte, draw);
            ++m_count;
        }
    }
    return bytes;
}

QByteArray with_bit_turned(QByteArray bytes, std::uint64_t draw)
{
    if (!bytes.isEmpty()) {
        const auto place = static_cast<int>(draw / 8 % static_cast<std::uint64_t>(bytes.size()));
        bytes[place] = turn_bit(bytes.at(place), draw);
    }
    return bytes;
}

QByteArray with_same_sum(QByteArray bytes)
{
    for (const int place : {bytes.size() - 2, bytes.size() - 1}) {
        bytes[place] = turn_bit(bytes.at(place), 7);
    }
    return bytes;
}

} // namespace sim
