#pragma once

#include "sim/faults/Chance.h"

#include <QByteArray>

namespace sim
{

/// A bad line in one direction: now and then flips a random bit of a byte. What happens to the nth
/// byte does not depend on how the bytes are split.
class ByteDamage
{
public:
    ByteDamage(Chance chance, DrawStream draws) : m_chance(chance), m_draws(draws) {}

    QByteArray apply(QByteArray bytes);

    /// Bytes damaged so far.
    unsigned int count() const { return m_count; }

private:
    Chance m_chance;
    DrawStream m_draws;
    unsigned int m_count = 0;
};

/// The bytes with one bit flipped, which a random number chooses.
QByteArray with_bit_turned(QByteArray bytes, std::uint64_t draw);

/// The bytes with the top bits of the last two flipped, which leaves their checksum as it was.
/// There must be two or more.
QByteArray with_same_sum(QByteArray bytes);

} // namespace sim
