#include "sim/line/AdapterBuffer.h"

#include <gtest/gtest.h>

using sim::AdapterBuffer;

namespace
{

constexpr qint64 latency = 16;

} // namespace

TEST(SimAdapterBuffer, PassesEverythingOnWithoutLatency)
{
    AdapterBuffer buffer(0);
    EXPECT_EQ(buffer.add("abc", 100), "abc");
    EXPECT_EQ(buffer.deadline_ns(), std::nullopt);
}

TEST(SimAdapterBuffer, HoldsAShortPacketForTheLatencyOfItsFirstByte)
{
    AdapterBuffer buffer(latency);
    EXPECT_EQ(buffer.add("abc", 100), "");
    EXPECT_EQ(buffer.add("d", 110), "");
    EXPECT_EQ(buffer.deadline_ns(), 116);
    EXPECT_EQ(buffer.expire(115), "");
    EXPECT_EQ(buffer.expire(116), "abcd");
    EXPECT_EQ(buffer.deadline_ns(), std::nullopt);
    EXPECT_EQ(buffer.expire(1000), "");
}

TEST(SimAdapterBuffer, PassesFullPacketsOnAtOnceAndStartsAgainWithTheRest)
{
    AdapterBuffer buffer(latency);
    EXPECT_EQ(buffer.add(QByteArray(60, 'a'), 100), "");
    EXPECT_EQ(buffer.add(QByteArray(70, 'b'), 110), QByteArray(60, 'a') + QByteArray(64, 'b'));
    EXPECT_EQ(buffer.deadline_ns(), 126);
    EXPECT_EQ(buffer.expire(126), QByteArray(6, 'b'));
}

TEST(SimAdapterBuffer, HoldsNothingAfterExactlyAFullPacket)
{
    AdapterBuffer buffer(latency);
    EXPECT_EQ(buffer.add(QByteArray(61, 'a'), 100), "");
    EXPECT_EQ(buffer.add("a", 105), QByteArray(62, 'a'));
    EXPECT_EQ(buffer.deadline_ns(), std::nullopt);
}

TEST(SimAdapterBuffer, ForgetsEverythingWhenCleared)
{
    AdapterBuffer buffer(latency);
    buffer.add("abc", 100);
    buffer.clear();
    EXPECT_EQ(buffer.deadline_ns(), std::nullopt);
    EXPECT_EQ(buffer.expire(1000), "");
}
