#include "sim/line/PacedQueue.h"
#include "tests/sim/Milliseconds.h"

#include <gmock/gmock.h>

using namespace test;
using sim::PacedQueue;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

using Taken = std::tuple<QByteArray, qint64, bool>;

constexpr unsigned int one_byte_per_ms = 10000;

std::vector<Taken> take_all(PacedQueue& queue)
{
    std::vector<Taken> taken;
    while (const auto due = queue.take(1000 * ms)) {
        EXPECT_EQ(due->baud, one_byte_per_ms);
        taken.emplace_back(due->bytes, due->due_ns / ms, due->last);
    }
    return taken;
}

} // namespace

TEST(SimPacedQueue, IsEmptyAtFirst)
{
    PacedQueue queue;
    EXPECT_TRUE(queue.is_empty());
    EXPECT_EQ(queue.next_due_ns(), std::nullopt);
    EXPECT_FALSE(queue.next_is_ending());
    EXPECT_FALSE(queue.take(1000 * ms));
}

TEST(SimPacedQueue, BringsEachByteInItsTimeAndMarksTheLast)
{
    PacedQueue queue;
    queue.add({"abc", one_byte_per_ms}, 5 * ms);
    EXPECT_THAT(take_all(queue),
                ElementsAre(Taken("a", 6, false), Taken("b", 7, false), Taken("c", 8, true)));
    EXPECT_TRUE(queue.is_empty());
}

TEST(SimPacedQueue, HoldsAByteBackUntilItHasPassed)
{
    PacedQueue queue;
    queue.add({"ab", one_byte_per_ms}, 0);
    EXPECT_EQ(queue.next_due_ns(), ms);
    EXPECT_FALSE(queue.next_is_ending());
    EXPECT_FALSE(queue.take(ms - 1));
    EXPECT_EQ(queue.take(ms)->bytes, "a");
    EXPECT_TRUE(queue.next_is_ending());
    EXPECT_FALSE(queue.take(ms));
    EXPECT_EQ(queue.next_due_ns(), 2 * ms);
}

TEST(SimPacedQueue, BeginsAPieceWhenTheOneBeforeHasPassed)
{
    PacedQueue queue;
    queue.add({"ab", one_byte_per_ms}, 0);
    queue.add({"c", one_byte_per_ms}, ms);
    queue.add({"d", one_byte_per_ms}, 9 * ms);
    EXPECT_THAT(take_all(queue), ElementsAre(Taken("a", 1, false), Taken("b", 2, true),
                                             Taken("c", 3, true), Taken("d", 10, true)));
}

TEST(SimPacedQueue, TakesNoTimeForBytesThatHavePassedAlready)
{
    PacedQueue queue;
    queue.add({"echo", one_byte_per_ms, 4}, 0);
    queue.add({"echoed", one_byte_per_ms, 5}, 0);
    EXPECT_THAT(take_all(queue),
                ElementsAre(Taken("echo", 0, true), Taken("echoe", 0, false), Taken("d", 1, true)));
}

TEST(SimPacedQueue, BringsAWholePieceWhenItsLastByteHasPassed)
{
    PacedQueue queue;
    queue.add({"echo+ab", one_byte_per_ms, 5, true}, 0);
    queue.add({"c", one_byte_per_ms}, 0);
    EXPECT_THAT(take_all(queue), ElementsAre(Taken("echo+ab", 2, true), Taken("c", 3, true)));
}

TEST(SimPacedQueue, AnnouncesTheEndOfAPieceBeforeItsLastBytes)
{
    PacedQueue queue;
    queue.add({"abcde", 115200}, 0);
    EXPECT_FALSE(queue.next_is_ending());
    EXPECT_EQ(queue.take(ms)->bytes, "abc");
    EXPECT_TRUE(queue.next_is_ending());
    EXPECT_FALSE(queue.take(ms)->last);
    EXPECT_TRUE(queue.next_is_ending());
    EXPECT_TRUE(queue.take(ms)->last);
}

TEST(SimPacedQueue, TakesAnEchoForAnEndOnlyWithNothingAfterIt)
{
    PacedQueue queue;
    queue.add({"echo+a", one_byte_per_ms, 5}, 0);
    EXPECT_FALSE(queue.next_is_ending());
    queue.clear();
    queue.add({"echo", one_byte_per_ms, 4}, 0);
    EXPECT_TRUE(queue.next_is_ending());
    queue.clear();
    queue.add({"echo+a", one_byte_per_ms, 5, true}, 0);
    EXPECT_TRUE(queue.next_is_ending());
}

TEST(SimPacedQueue, ForgetsEverythingWhenCleared)
{
    PacedQueue queue;
    queue.add({"abc", one_byte_per_ms}, 0);
    queue.clear();
    EXPECT_THAT(take_all(queue), IsEmpty());
}

TEST(SimPacedQueue, KnowsHowManyBytesWait)
{
    PacedQueue queue;
    queue.add({"abc", one_byte_per_ms}, 0);
    queue.add({"defg", one_byte_per_ms, 2}, 0);
    queue.add({"hi", one_byte_per_ms, 0, true}, 0);
    EXPECT_EQ(queue.waiting_bytes(), 9);
    queue.take(1 * ms);
    EXPECT_EQ(queue.waiting_bytes(), 8);
    queue.clear();
    EXPECT_EQ(queue.waiting_bytes(), 0);
}
