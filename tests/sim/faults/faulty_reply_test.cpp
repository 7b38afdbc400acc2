#include "sim/device/FrameCodec.h"
#include "sim/faults/FaultyReply.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using sim::apply_to_reply;
using sim::Command;
using sim::Delivery;
using sim::Fault;
using sim::FaultKind;
using sim::FaultyReply;
using sim::make_frame;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

using Sent = std::vector<std::pair<QByteArray, int>>;

const Command read_command = {Command::Kind::Read, bytes("04 01 00 00 00")};
const Command write_command = {Command::Kind::Write, bytes("02 01 00 08 00 FF")};
const Command erase_command = {Command::Kind::Erase, bytes("03 01 00 08 00")};
const QByteArray answer = bytes("55 55 01 FF 04");

Sent sent(const FaultyReply& reply)
{
    Sent result;
    for (const Delivery& delivery : reply.deliveries) {
        result.emplace_back(delivery.bytes, delivery.delay_ms);
    }
    return result;
}

Fault fault(FaultKind kind, std::uint64_t detail = 0, int delay_ms = 0)
{
    return {kind, detail, delay_ms};
}

struct Effect {
    const char* name;
    Fault fault;
    Sent expected;
};

class SimFaultEffects : public testing::TestWithParam<Effect>
{
};

} // namespace

TEST(SimFaultyReply, IsTheAnswerWithoutFaults)
{
    const FaultyReply reply = apply_to_reply(read_command, answer, {});
    EXPECT_EQ(sent(reply), (Sent{{answer, 0}}));
    EXPECT_THAT(reply.applied, IsEmpty());
}

TEST_P(SimFaultEffects, AreWhatTheirNamesSay)
{
    const FaultyReply reply = apply_to_reply(read_command, answer, {GetParam().fault});
    EXPECT_EQ(sent(reply), GetParam().expected);
    EXPECT_THAT(reply.applied, ElementsAre(GetParam().fault.kind));
}

INSTANTIATE_TEST_SUITE_P(
    Sim, SimFaultEffects,
    testing::Values(
        Effect{"Lose", fault(FaultKind::LoseResponse), {}},
        Effect{"CorruptTheFirstByte",
               fault(FaultKind::CorruptResponse, 0),
               {{bytes("54 55 01 FF 04"), 0}}},
        Effect{"CorruptTheLastByte",
               fault(FaultKind::CorruptResponse, 4 * 8 + 7),
               {{bytes("55 55 01 FF 84"), 0}}},
        Effect{"TruncateToOneByte", fault(FaultKind::TruncateResponse, 0), {{bytes("55"), 0}}},
        Effect{"TruncateByOneByte",
               fault(FaultKind::TruncateResponse, 3),
               {{bytes("55 55 01 FF"), 0}}},
        Effect{"Delay", fault(FaultKind::DelayResponse, 0, 350), {{answer, 350}}},
        Effect{"Duplicate", fault(FaultKind::DuplicateResponse), {{answer, 0}, {answer, 0}}},
        Effect{"PutNoiseBefore", fault(FaultKind::Noise, 1), {{bytes("22 22") + answer, 0}}}),
    row_name);

TEST(SimFaultyReply, AcknowledgesWithAnotherByteInASoundFrame)
{
    const std::vector<Fault> faults = {fault(FaultKind::WrongAck)};
    const FaultyReply written = apply_to_reply(write_command, make_frame(bytes("02")), faults);
    EXPECT_EQ(sent(written), (Sent{{make_frame(bytes("FD")), 0}}));
    const FaultyReply erased = apply_to_reply(erase_command, make_frame(bytes("03")), faults);
    EXPECT_EQ(sent(erased), (Sent{{make_frame(bytes("FC")), 0}}));
    EXPECT_THAT(erased.applied, ElementsAre(FaultKind::WrongAck));
    const FaultyReply read = apply_to_reply(read_command, answer, faults);
    EXPECT_EQ(sent(read), (Sent{{answer, 0}}));
    EXPECT_THAT(read.applied, IsEmpty());
}

TEST(SimFaultyReply, HasNothingToSpoilWhereThereIsNoAnswer)
{
    for (const FaultKind kind :
         {FaultKind::LoseResponse, FaultKind::CorruptResponse, FaultKind::TruncateResponse,
          FaultKind::DelayResponse, FaultKind::DuplicateResponse, FaultKind::WrongAck}) {
        const FaultyReply reply = apply_to_reply(write_command, {}, {fault(kind)});
        EXPECT_THAT(reply.deliveries, IsEmpty()) << name_of(kind);
        EXPECT_THAT(reply.applied, IsEmpty()) << name_of(kind);
    }
}

TEST(SimFaultyReply, AltersAnAnswerSoThatItsChecksumStillFits)
{
    const QByteArray sound = make_frame(bytes("04 01 00 00 00 04"));
    const FaultyReply reply =
        apply_to_reply(read_command, sound, {fault(FaultKind::AlterResponse)});
    EXPECT_EQ(sent(reply), (Sent{{make_frame(bytes("04 01 00 00 80 84")), 0}}));
    EXPECT_THAT(reply.applied, ElementsAre(FaultKind::AlterResponse));
}

TEST(SimFaultyReply, CannotAlterWhatHasNoTwoBytesOrNoChecksum)
{
    for (const QByteArray& whole : {make_frame(bytes("02")), bytes("51 56 01 23"), QByteArray()}) {
        const FaultyReply reply =
            apply_to_reply(write_command, whole, {fault(FaultKind::AlterResponse)});
        EXPECT_EQ(reply.deliveries.size(), whole.isEmpty() ? 0U : 1U);
        EXPECT_THAT(reply.applied, IsEmpty()) << whole.toHex().toStdString();
    }
}

TEST(SimFaultyReply, HasNoiseEvenWithoutAnAnswer)
{
    const FaultyReply reply = apply_to_reply(read_command, {}, {fault(FaultKind::Noise, 7)});
    ASSERT_EQ(reply.deliveries.size(), 1U);
    EXPECT_EQ(reply.deliveries[0].bytes.size(), 8);
}

TEST(SimFaultyReply, CannotCutASingleByte)
{
    const FaultyReply reply =
        apply_to_reply(read_command, "x", {fault(FaultKind::TruncateResponse)});
    EXPECT_EQ(sent(reply), (Sent{{"x", 0}}));
    EXPECT_THAT(reply.applied, IsEmpty());
}

TEST(SimFaultyReply, CombinesFaultsFromTheDeviceOutwards)
{
    const FaultyReply reply = apply_to_reply(
        erase_command, make_frame(bytes("03")),
        {fault(FaultKind::WrongAck), fault(FaultKind::CorruptResponse, 0),
         fault(FaultKind::TruncateResponse, 1), fault(FaultKind::DelayResponse, 0, 20),
         fault(FaultKind::DuplicateResponse)});
    EXPECT_EQ(sent(reply), (Sent{{bytes("54 55"), 20}, {bytes("54 55"), 20}}));
    EXPECT_EQ(reply.applied.size(), 5U);
}

TEST(SimFaultyReply, LeavesNothingOfALostAnswerToSpoil)
{
    const FaultyReply reply =
        apply_to_reply(read_command, answer,
                       {fault(FaultKind::LoseResponse), fault(FaultKind::CorruptResponse),
                        fault(FaultKind::DuplicateResponse)});
    EXPECT_THAT(reply.deliveries, IsEmpty());
    EXPECT_THAT(reply.applied, ElementsAre(FaultKind::LoseResponse));
}

TEST(SimFaultyReply, PassesOverFaultsThatAreNotOfAnswers)
{
    const FaultyReply reply = apply_to_reply(
        read_command, answer, {fault(FaultKind::PowerLoss), fault(FaultKind::PhantomWrite)});
    EXPECT_EQ(sent(reply), (Sent{{answer, 0}}));
    EXPECT_THAT(reply.applied, IsEmpty());
}
