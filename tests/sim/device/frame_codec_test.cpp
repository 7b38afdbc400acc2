#include "sim/device/FrameCodec.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using sim::FrameReceiver;
using sim::make_frame;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

struct WorkedFrame {
    const char* name;
    const char* payload;
    const char* frame;
};

class SimFrameCodecWorkedFrames : public testing::TestWithParam<WorkedFrame>
{
};

std::vector<QByteArray> receive_cut_at(const QByteArray& frame, int cut)
{
    FrameReceiver receiver;
    std::vector<QByteArray> payloads = receiver.receive(frame.left(cut));
    for (const QByteArray& payload : receiver.receive(frame.mid(cut))) {
        payloads.push_back(payload);
    }
    return payloads;
}

} // namespace

TEST_P(SimFrameCodecWorkedFrames, IsMadeFromItsPayload)
{
    EXPECT_EQ(make_frame(bytes(GetParam().payload)), bytes(GetParam().frame));
}

TEST_P(SimFrameCodecWorkedFrames, IsReceivedWhereverItIsCut)
{
    const QByteArray frame = bytes(GetParam().frame);
    for (int cut = 0; cut <= frame.size(); ++cut) {
        SCOPED_TRACE(cut);
        EXPECT_THAT(receive_cut_at(frame, cut), ElementsAre(bytes(GetParam().payload)));
    }
}

TEST_P(SimFrameCodecWorkedFrames, IsReceivedByteByByte)
{
    FrameReceiver receiver;
    const QByteArray frame = bytes(GetParam().frame);
    for (const char byte : frame.chopped(1)) {
        EXPECT_THAT(receiver.receive(QByteArray(1, byte)), IsEmpty());
    }
    EXPECT_THAT(receiver.receive(frame.right(1)), ElementsAre(bytes(GetParam().payload)));
}

INSTANTIATE_TEST_SUITE_P(
    Sim, SimFrameCodecWorkedFrames,
    testing::Values(WorkedFrame{"VersionRequest", "00 02", "55 55 00 02 FE 04"},
                    WorkedFrame{"ResetWithChecksumZero", "00 00", "55 55 00 00 00 04"},
                    WorkedFrame{"Acknowledgement", "02", "55 55 02 FE 04"},
                    WorkedFrame{"Read", "01 10 00 08 00", "55 55 01 10 00 08 00 E7 04"},
                    WorkedFrame{"EscapedSyncAndTerminator", "55 04", "55 55 05 55 05 04 A7 04"},
                    WorkedFrame{"EscapedEscape", "05", "55 55 05 05 FB 04"},
                    WorkedFrame{"EscapedChecksum", "FB", "55 55 FB 05 05 04"},
                    WorkedFrame{"ChecksumTerminator", "FC", "55 55 FC 05 04 04"},
                    WorkedFrame{"ChecksumSync", "AB", "55 55 AB 05 55 04"}),
    row_name);

TEST(SimFrameCodec, BringsEveryByteThroughInEveryPosition)
{
    for (int value = 0; value < 256; ++value) {
        SCOPED_TRACE(value);
        for (const char* surroundings : {"", "00", "55", "04", "05"}) {
            const QByteArray payload =
                bytes(surroundings) + static_cast<char>(value) + bytes(surroundings);
            EXPECT_THAT(FrameReceiver().receive(make_frame(payload)), ElementsAre(payload));
        }
    }
}

TEST(SimFrameCodec, TakesFramesThatFollowEachOther)
{
    const QByteArray both = make_frame(bytes("00 02")) + make_frame(bytes("03 01 00 04 00"));
    EXPECT_THAT(FrameReceiver().receive(both),
                ElementsAre(bytes("00 02"), bytes("03 01 00 04 00")));
}

TEST(SimFrameCodec, AcceptsMoreThanTwoSyncSymbols)
{
    FrameReceiver receiver;
    EXPECT_THAT(receiver.receive(bytes("55 55 55 55 12 EE 04")), ElementsAre(bytes("12")));
    EXPECT_EQ(receiver.dropped_frames(), 0U);
}

namespace
{

struct Disturbance {
    const char* name;
    const char* received;
    unsigned int dropped;
};

class SimFrameCodecDisturbances : public testing::TestWithParam<Disturbance>
{
};

} // namespace

TEST_P(SimFrameCodecDisturbances, GiveNothingAndSpoilNoFrameAfterwards)
{
    FrameReceiver receiver;
    EXPECT_THAT(receiver.receive(bytes(GetParam().received)), IsEmpty());
    EXPECT_THAT(receiver.receive(bytes("55 55 00 02 FE 04")), ElementsAre(bytes("00 02")));
    EXPECT_EQ(receiver.dropped_frames(), GetParam().dropped);
}

INSTANTIATE_TEST_SUITE_P(
    Sim, SimFrameCodecDisturbances,
    testing::Values(Disturbance{"Nothing", "", 0}, Disturbance{"Junk", "00 02 FE 04 12 FF 05", 0},
                    Disturbance{"SingleSync", "55", 0},
                    Disturbance{"SingleSyncAndJunk", "55 12 04", 0},
                    Disturbance{"ManySyncs", "55 55 55 55 55 55", 0},
                    Disturbance{"BadChecksum", "55 55 00 02 FD 04", 1},
                    Disturbance{"NoPayload", "55 55 04", 1},
                    Disturbance{"OnlyAChecksum", "55 55 00 04", 1},
                    Disturbance{"NeedlessEscape", "55 55 05 12 EE 04", 1},
                    Disturbance{"NeedlesslyEscapedChecksum", "55 55 12 05 EE 04", 1},
                    Disturbance{"UnescapedChecksum", "55 55 FC 04 04", 1},
                    Disturbance{"CutShortAfterAByte", "55 55 00", 1},
                    Disturbance{"TwoBadFrames", "55 55 01 01 04 55 55 02 02 04", 2}),
    row_name);

TEST(SimFrameCodec, TakesTheFrameThatBeginsInTheMiddleOfAnother)
{
    FrameReceiver receiver;
    EXPECT_THAT(receiver.receive(bytes("55 55 01 10 55 55 00 02 FE 04")),
                ElementsAre(bytes("00 02")));
    EXPECT_EQ(receiver.dropped_frames(), 1U);
}

TEST(SimFrameCodec, ForgetsTheFrameBegunWhenItIsReset)
{
    FrameReceiver receiver;
    EXPECT_THAT(receiver.receive(bytes("55 55 00 02")), IsEmpty());
    receiver.reset();
    EXPECT_THAT(receiver.receive(bytes("FE 04")), IsEmpty());
    EXPECT_EQ(receiver.dropped_frames(), 0U);
}

TEST(SimFrameCodec, NeverTakesAFlippedBitForAnotherPayload)
{
    const QByteArray payload = bytes("01 10 55 08 04 05 AA");
    const QByteArray frame = make_frame(payload);
    for (int bit = 0; bit < frame.size() * 8; ++bit) {
        SCOPED_TRACE(bit);
        QByteArray flipped = frame;
        flipped[bit / 8] = static_cast<char>(flipped.at(bit / 8) ^ (1 << bit % 8));
        EXPECT_THAT(FrameReceiver().receive(flipped), IsEmpty());
    }
}

TEST(SimFrameCodec, GivesUpOnAFrameWithoutEnd)
{
    FrameReceiver receiver;
    EXPECT_THAT(receiver.receive(bytes("55 55") + QByteArray(2 << 20, '\x11')), IsEmpty());
    EXPECT_EQ(receiver.dropped_frames(), 1U);
    EXPECT_THAT(receiver.receive(make_frame(bytes("00 02"))), ElementsAre(bytes("00 02")));
}
