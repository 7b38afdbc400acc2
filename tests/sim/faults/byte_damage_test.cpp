#include "sim/faults/ByteDamage.h"

#include <gmock/gmock.h>

using sim::ByteDamage;
using sim::Chance;
using sim::DrawStream;
using sim::with_bit_turned;
using sim::with_same_sum;

namespace
{

ByteDamage damage(double probability, std::uint64_t seed = 1)
{
    return {Chance(probability), DrawStream(seed, "request-bytes")};
}

int turned_bits(char before, char after)
{
    int count = 0;
    for (unsigned int bit = 0; bit < 8; ++bit) {
        count += ((before ^ after) >> bit & 1) != 0 ? 1 : 0;
    }
    return count;
}

} // namespace

TEST(SimByteDamage, LeavesBytesAloneOnAGoodLine)
{
    ByteDamage none = damage(0);
    EXPECT_EQ(none.apply("untouched"), "untouched");
    EXPECT_EQ(none.count(), 0U);
}

TEST(SimByteDamage, TurnsOneBitOfEachByteOnTheWorstLine)
{
    ByteDamage always = damage(1);
    const QByteArray before(256, 'U');
    const QByteArray after = always.apply(before);
    ASSERT_EQ(after.size(), before.size());
    for (int i = 0; i < before.size(); ++i) {
        EXPECT_EQ(turned_bits(before.at(i), after.at(i)), 1) << i;
    }
    EXPECT_EQ(always.count(), 256U);
}

TEST(SimByteDamage, IsTheSameForTheSameSeed)
{
    ByteDamage some = damage(0.25);
    EXPECT_EQ(some.apply(QByteArray(16, '\0')).toHex(' '),
              "00 00 00 00 00 00 00 00 80 00 08 00 00 00 20 00");
}

TEST(SimByteDamage, DoesNotDependOnHowTheBytesAreCut)
{
    const QByteArray bytes(300, 'x');
    ByteDamage whole = damage(0.1);
    const QByteArray expected = whole.apply(bytes);
    EXPECT_NE(expected, bytes);
    ByteDamage cut = damage(0.1);
    QByteArray pieces = cut.apply(bytes.left(1));
    pieces += cut.apply(bytes.mid(1, 200));
    pieces += cut.apply(bytes.mid(201));
    EXPECT_EQ(pieces, expected);
    EXPECT_EQ(cut.count(), whole.count());
}

TEST(SimByteDamage, TurnsTheOneBitThatANumberChooses)
{
    EXPECT_EQ(with_bit_turned(QByteArray(3, '\0'), 0), QByteArray::fromHex("010000"));
    EXPECT_EQ(with_bit_turned(QByteArray(3, '\0'), 7), QByteArray::fromHex("800000"));
    EXPECT_EQ(with_bit_turned(QByteArray(3, '\0'), 2 * 8 + 3), QByteArray::fromHex("000008"));
    EXPECT_EQ(with_bit_turned(QByteArray(3, '\0'), 3 * 8), QByteArray::fromHex("010000"));
    EXPECT_EQ(with_bit_turned(QByteArray(), 5), QByteArray());
}

TEST(SimByteDamage, TurnsTwoBitsThatTheChecksumDoesNotShow)
{
    EXPECT_EQ(with_same_sum(QByteArray::fromHex("010203")), QByteArray::fromHex("018283"));
    EXPECT_EQ(with_same_sum(QByteArray::fromHex("8180")), QByteArray::fromHex("0100"));
}
