#include "sim/device/FrameCodec.h"
#include "sim/rig/Replay.h"

#include <gmock/gmock.h>

using sim::FrameLog;
using sim::make_frame;
using sim::Replay;
using testing::IsEmpty;

namespace
{

FrameLog log_of(const std::vector<std::pair<const char*, const char*>>& entries)
{
    FrameLog log;
    for (const auto& [request, response] : entries) {
        log.entries.push_back({make_frame(request), response});
    }
    return log;
}

} // namespace

TEST(SimReplay, AnswersInTheOrderOfTheLog)
{
    Replay replay(log_of({{"a", "one"}, {"a", ""}, {"a", "three"}, {"b", "four"}}));
    EXPECT_EQ(replay.recorded(), 4);
    EXPECT_EQ(replay.answer_to("a"), "one");
    EXPECT_EQ(replay.answer_to("a"), "");
    EXPECT_EQ(replay.answer_to("a"), "three");
    EXPECT_EQ(replay.answer_to("b"), "four");
    EXPECT_EQ(replay.matched(), 4);
    EXPECT_THAT(replay.unmatched(), IsEmpty());
}

TEST(SimReplay, PassesOverWhatTheHostLeavesOut)
{
    Replay replay(log_of({{"a", "one"}, {"b", "two"}, {"c", "three"}}));
    EXPECT_EQ(replay.answer_to("c"), "three");
    EXPECT_EQ(replay.matched(), 1);
}

TEST(SimReplay, DoesNotAnswerWhatIsNotInTheRestOfTheLog)
{
    Replay replay(log_of({{"a", "one"}, {"b", "two"}}));
    EXPECT_EQ(replay.answer_to("x"), "");
    EXPECT_EQ(replay.answer_to("x"), "");
    EXPECT_EQ(replay.answer_to("b"), "two");
    EXPECT_EQ(replay.answer_to("a"), ""); // no longer in step
    ASSERT_EQ(replay.unmatched().size(), 2U);
    EXPECT_EQ(replay.unmatched()[0].payload, "x");
    EXPECT_EQ(replay.unmatched()[0].times, 2);
    EXPECT_EQ(replay.unmatched()[1].payload, "a");
    EXPECT_EQ(replay.unmatched()[1].times, 1);
}

TEST(SimReplay, CountsWhatItHasSeenTooMuchOf)
{
    Replay replay(log_of({{"a", "one"}}));
    for (int i = 0; i < 105; ++i) {
        replay.answer_to("x" + QByteArray::number(i));
    }
    replay.answer_to("x104");
    EXPECT_EQ(replay.unmatched().size(), 100U);
    EXPECT_EQ(replay.unmatched().back().payload, "x99");
    EXPECT_EQ(replay.unmatched().back().times, 1);
    EXPECT_EQ(replay.further_unmatched(), 5);
}
