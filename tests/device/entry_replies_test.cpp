#include "tests/device/EntryLine.h"
#include "tests/support/Bytes.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using testing::IsEmpty;

namespace
{

struct Caught {
    const char* name;
    std::vector<Reply> replies;
};

// All of them say 0x0123 in the end.
const Caught caught[] = {
    {"AtOnce", {raw("51 56 01 23")}},
    {"AfterTwoOtherBytes", {raw("00 FF 51 56 01 23")}},
    {"AfterHalfAMarker", {raw("51 51 56 01 23")}},
    {"AfterTheOtherHalf", {raw("56 51 51 56 01 23")}},
    {"BeforeOtherBytes", {raw("51 56 01 23 99 98 97")}},
    {"ByALaterProbe", {no_reply(), no_reply(), raw("51 56 01 23")}},
    {"InPieces", {{{bytes("51")}, {bytes("56 01")}, {bytes("23")}}}},
    {"InPiecesOfSeveralProbes", {raw("51"), raw("56 01"), raw("23")}},
    {"WithTheLastByteToALaterProbe", {raw("51 56 01"), no_reply(), raw("23")}},
    {"WithJunkOfAnEarlierProbeBefore", {raw("00 11 22 33 44"), raw("51 56 01 23")}},
};

class EntryCatches : public testing::TestWithParam<Caught>
{
};

} // namespace

TEST_P(EntryCatches, TheStartingDevice)
{
    ProbeReplies line(GetParam().replies);
    EXPECT_TRUE(line.enter());
    EXPECT_EQ(line.version, 0x0123);
    EXPECT_EQ(line.device.profile(), &profile_named("swapped-divisors"));
    EXPECT_THAT(line.recorder.lines(), IsEmpty());
    EXPECT_THAT(line.simulated.payloads(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(, EntryCatches, testing::ValuesIn(caught), row_name);
