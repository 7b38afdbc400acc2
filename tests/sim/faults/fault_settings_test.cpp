#include "sim/faults/FaultSettings.h"
#include "tests/sim/Complaint.h"

#include <gmock/gmock.h>

using namespace test;
using sim::add_fault;
using sim::Chance;
using sim::fault_kind_named;
using sim::FaultKind;
using sim::FaultRule;
using sim::FaultSettings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

FaultSettings settings_of(const char* text)
{
    FaultSettings settings;
    add_fault(settings, QString::fromLatin1(text));
    return settings;
}

FaultRule rule_of(const char* text)
{
    const FaultSettings settings = settings_of(text);
    EXPECT_EQ(settings.rules.size(), 1U);
    return settings.rules.empty() ? FaultRule() : settings.rules.front();
}

/// A number that the chance of a quarter covers, and the next one that it doesn't.
constexpr std::uint64_t last_covered = 0x3FFFFFFFFFFFFFFFU;

bool is_a_quarter(const Chance& chance)
{
    return chance.covers(last_covered) && !chance.covers(last_covered + 1);
}

std::string complaint_about(const char* text)
{
    return test::complaint_of([&] { settings_of(text); });
}

} // namespace

TEST(SimFaultKinds, AreFoundByTheirNames)
{
    for (const auto& row : sim::fault_kinds) {
        const FaultKind kind = row.kind;
        EXPECT_EQ(fault_kind_named(QString::fromLatin1(name_of(kind))), kind) << name_of(kind);
    }
    EXPECT_EQ(fault_kind_named(QStringLiteral("lose_response")), std::nullopt);
    EXPECT_EQ(fault_kind_named(QString()), std::nullopt);
}

TEST(SimFaultSettings, HaveNoFaultsAtFirst)
{
    EXPECT_FALSE(FaultSettings().are_any());
}

TEST(SimFaultSettings, TakeAProbability)
{
    const FaultRule rule = rule_of("lose-response=0.25");
    EXPECT_EQ(rule.kind, FaultKind::LoseResponse);
    EXPECT_TRUE(is_a_quarter(rule.chance));
    EXPECT_THAT(rule.commands, IsEmpty());
}

TEST(SimFaultSettings, TakeNumbersOfCommands)
{
    const FaultRule rule = rule_of("phantom-write@7,3,12");
    EXPECT_EQ(rule.kind, FaultKind::PhantomWrite);
    EXPECT_TRUE(rule.chance.is_never());
    EXPECT_THAT(rule.commands, ElementsAre(3, 7, 12));
}

TEST(SimFaultSettings, TakeTheTimeOfADelay)
{
    EXPECT_EQ(rule_of("delay-response:350=0.25").delay_ms, 350);
    EXPECT_THAT(rule_of("delay-response:0@2").commands, ElementsAre(2));
}

TEST(SimFaultSettings, TakeTheChanceOfSingleBytes)
{
    const FaultSettings requests = settings_of("request-bytes=0.25");
    EXPECT_TRUE(is_a_quarter(requests.request_bytes));
    EXPECT_TRUE(requests.response_bytes.is_never());
    EXPECT_TRUE(requests.are_any());
    const FaultSettings responses = settings_of("response-bytes=0.25");
    EXPECT_TRUE(is_a_quarter(responses.response_bytes));
    EXPECT_TRUE(responses.request_bytes.is_never());
    EXPECT_TRUE(responses.are_any());
}

TEST(SimFaultSettings, TakeStuckBits)
{
    const FaultSettings settings = settings_of("stuck-bits:0x1000:0x81:1");
    ASSERT_EQ(settings.stuck_bits.size(), 1U);
    EXPECT_EQ(settings.stuck_bits[0].address, 0x1000U);
    EXPECT_EQ(settings.stuck_bits[0].mask, 0x81);
    EXPECT_TRUE(settings.stuck_bits[0].level);
    EXPECT_FALSE(settings_of("stuck-bits:4096:1:0").stuck_bits[0].level);
    EXPECT_TRUE(settings.are_any());
}

TEST(SimFaultSettings, AddUp)
{
    FaultSettings settings;
    add_fault(settings, QStringLiteral("noise=0.25"));
    add_fault(settings, QStringLiteral("noise@4"));
    add_fault(settings, QStringLiteral("unplug@9"));
    EXPECT_EQ(settings.rules.size(), 3U);
    EXPECT_TRUE(settings.are_any());
}

TEST(SimFaultSettings, AreRefusedWithTheReason)
{
    const std::vector<std::pair<const char*, std::string>> refusals = {
        {"lose=1",
         "unknown kind of fault 'lose'; the kinds are " + sim::fault_kind_list().toStdString()},
        {"", "unknown kind of fault ''; the kinds are " + sim::fault_kind_list().toStdString()},
        {"noise", "it does not say when: write KIND=P with a probability, or "
                  "KIND@N[,N...] with the numbers of commands"},
        {"noise=1.5", "'1.5' is not a probability from 0 to 1"},
        {"noise=-0.1", "'-0.1' is not a probability from 0 to 1"},
        {"noise=nan", "'nan' is not a probability from 0 to 1"},
        {"noise=", "'' is not a probability from 0 to 1"},
        {"noise@0", "'0' is not a number from 1 to 4294967295"},
        {"noise@1,,2", "'' is not a number from 1 to 4294967295"},
        {"noise:5=1", "noise must have the form KIND=P or KIND@N[,N...]"},
        {"delay-response=1", "delay-response must have the form "
                             "delay-response:MS=P or delay-response:MS@N[,N...]"},
        {"delay-response:600001=1", "'600001' is not a number from 0 to 600000"},
        {"request-bytes@3", "request-bytes must have the form KIND=P"},
        {"response-bytes", "response-bytes must have the form KIND=P"},
        {"stuck-bits:1:2", "stuck-bits must have the form stuck-bits:ADDRESS:MASK:LEVEL"},
        {"stuck-bits:1:2:1=1", "stuck-bits must have the form stuck-bits:ADDRESS:MASK:LEVEL"},
        {"stuck-bits:1:0:1", "'0' is not a number from 1 to 255"},
        {"stuck-bits:1:1:2", "'2' is not a number from 0 to 1"},
        {"stuck-bits:x:1:1", "'x' is not a number from 0 to 4294967295"},
    };
    for (const auto& [text, complaint] : refusals) {
        EXPECT_EQ(complaint_about(text), complaint);
    }
}
