#include "sim/faults/FaultPlan.h"

#include <gmock/gmock.h>

using sim::Chance;
using sim::DrawStream;
using sim::Fault;
using sim::FaultKind;
using sim::FaultPlan;
using sim::FaultRule;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

FaultRule by_chance(FaultKind kind, double probability)
{
    FaultRule rule;
    rule.kind = kind;
    rule.chance = Chance(probability);
    return rule;
}

FaultRule at(FaultKind kind, std::set<unsigned int> commands)
{
    FaultRule rule;
    rule.kind = kind;
    rule.commands = std::move(commands);
    return rule;
}

/// The numbers of the first hundred commands that a kind happens to.
std::vector<unsigned int> hits(FaultPlan plan, FaultKind kind)
{
    std::vector<unsigned int> numbers;
    for (unsigned int number = 1; number <= 100; ++number) {
        for (const Fault& fault : plan.next()) {
            if (fault.kind == kind) {
                numbers.push_back(number);
            }
        }
    }
    return numbers;
}

std::vector<FaultKind> kinds(const std::vector<Fault>& faults)
{
    std::vector<FaultKind> result;
    result.reserve(faults.size());
    for (const Fault& fault : faults) {
        result.push_back(fault.kind);
    }
    return result;
}

} // namespace

TEST(SimChance, IsNeverUnlessSaidOtherwise)
{
    EXPECT_TRUE(Chance().is_never());
    EXPECT_FALSE(Chance().covers(0));
    EXPECT_FALSE(Chance(0).covers(0));
}

TEST(SimChance, CoversItsPartOfAllNumbers)
{
    EXPECT_TRUE(Chance(0.5).covers(0x7FFFFFFFFFFFFFFFU));
    EXPECT_FALSE(Chance(0.5).covers(0x8000000000000000U));
    EXPECT_TRUE(Chance(1).covers(0xFFFFFFFFFFFFFFFFU));
}

TEST(SimDrawStream, GivesTheSameNumbersEverywhere)
{
    DrawStream draws(1, "noise");
    const std::vector<std::uint64_t> numbers = {draws.next(), draws.next(), draws.next()};
    EXPECT_THAT(numbers,
                ElementsAre(0xFCEA675A6BCEAE07U, 0xFD6D7D6A371AC672U, 0x2DC0213A6523FA3EU));
    EXPECT_NE(DrawStream(2, "noise").next(), numbers[0]);
    EXPECT_NE(DrawStream(1, "unplug").next(), numbers[0]);
}

TEST(SimFaultPlan, HasNoFaultsWithoutRules)
{
    EXPECT_THAT(FaultPlan({}, 1).next(), IsEmpty());
}

TEST(SimFaultPlan, LetsFaultsHappenAtTheNumbersGiven)
{
    const FaultPlan plan({at(FaultKind::LoseResponse, {1, 7, 100})}, 1);
    EXPECT_THAT(hits(plan, FaultKind::LoseResponse), ElementsAre(1, 7, 100));
}

TEST(SimFaultPlan, LetsFaultsHappenByChanceAsTheSeedSays)
{
    const std::vector<FaultRule> rules = {by_chance(FaultKind::LoseResponse, 0.1)};
    EXPECT_THAT(hits(FaultPlan(rules, 1), FaultKind::LoseResponse),
                ElementsAre(6, 10, 43, 65, 75, 78, 82, 83));
    EXPECT_THAT(hits(FaultPlan(rules, 2), FaultKind::LoseResponse),
                ElementsAre(16, 20, 21, 32, 38, 56, 64, 76, 78, 84, 91, 96));
}

TEST(SimFaultPlan, HitsMoreWithAGreaterChanceAndTheSameOnesToo)
{
    const std::vector<unsigned int> few =
        hits(FaultPlan({by_chance(FaultKind::Noise, 0.1)}, 3), FaultKind::Noise);
    const std::vector<unsigned int> many =
        hits(FaultPlan({by_chance(FaultKind::Noise, 0.5)}, 3), FaultKind::Noise);
    EXPECT_GT(many.size(), few.size());
    EXPECT_THAT(many, testing::IsSupersetOf(few));
}

TEST(SimFaultPlan, AlwaysOrNeverHits)
{
    EXPECT_EQ(hits(FaultPlan({by_chance(FaultKind::Noise, 1)}, 3), FaultKind::Noise).size(), 100U);
    EXPECT_THAT(hits(FaultPlan({by_chance(FaultKind::Noise, 0)}, 3), FaultKind::Noise), IsEmpty());
}

TEST(SimFaultPlan, KeepsOneKindsChanceApartFromAnothers)
{
    const FaultRule lose = by_chance(FaultKind::LoseResponse, 0.1);
    const FaultRule noise = by_chance(FaultKind::Noise, 0.5);
    const std::vector<unsigned int> alone = hits(FaultPlan({lose}, 1), FaultKind::LoseResponse);
    EXPECT_EQ(hits(FaultPlan({noise, lose}, 1), FaultKind::LoseResponse), alone);
}

TEST(SimFaultPlan, AddsNumbersToAChanceWithoutDisturbingIt)
{
    const FaultRule lose = by_chance(FaultKind::LoseResponse, 0.1);
    std::vector<unsigned int> expected = hits(FaultPlan({lose}, 1), FaultKind::LoseResponse);
    expected.insert(expected.begin(), 1);
    const FaultPlan both({lose, at(FaultKind::LoseResponse, {1})}, 1);
    EXPECT_EQ(hits(both, FaultKind::LoseResponse), expected);
}

TEST(SimFaultPlan, GivesEachRuleOfAKindItsOwnChance)
{
    FaultRule rarely = by_chance(FaultKind::DelayResponse, 0.1);
    rarely.delay_ms = 400;
    FaultRule often = by_chance(FaultKind::DelayResponse, 0.5);
    often.delay_ms = 5;
    FaultPlan plan({often, rarely}, 1);
    std::map<int, int> times;
    for (int number = 1; number <= 1000; ++number) {
        for (const Fault& fault : plan.next()) {
            ++times[fault.delay_ms];
        }
    }
    // The first that hits is the one that happens, so of about 100 only about 50 remain.
    EXPECT_EQ(times, (std::map<int, int>{{5, 497}, {400, 53}}));
}

TEST(SimFaultPlan, OrdersTheFaultsOfACommandByTheirEffect)
{
    FaultPlan plan({at(FaultKind::Noise, {1}), at(FaultKind::LoseRequest, {1}),
                    at(FaultKind::PowerLoss, {1}), at(FaultKind::Noise, {1})},
                   1);
    EXPECT_THAT(kinds(plan.next()),
                ElementsAre(FaultKind::PowerLoss, FaultKind::LoseRequest, FaultKind::Noise));
}

TEST(SimFaultPlan, HandsTheDelayOnFromTheRuleThatHits)
{
    FaultRule often = by_chance(FaultKind::DelayResponse, 1);
    often.delay_ms = 5;
    FaultRule once = at(FaultKind::DelayResponse, {1});
    once.delay_ms = 400;
    FaultPlan plan({once, often}, 1);
    EXPECT_EQ(plan.next().at(0).delay_ms, 400);
    EXPECT_EQ(plan.next().at(0).delay_ms, 5);
}
