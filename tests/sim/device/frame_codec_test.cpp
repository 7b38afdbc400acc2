#include "sim/device/FrameCodec.h"
#include "tests/support/Bytes.h"
#include "tests/support/FrameVectors.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using sim::FrameReceiver;
using sim::make_frame;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

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

TEST(SimFrameCodec, MakesTheFrameOfAPayload)
{
    for (const FrameVector& vector : frame_vectors("good")) {
        EXPECT_EQ(make_frame(vector.payload), vector.frame) << vector.line;
    }
}

TEST(SimFrameCodec, ReceivesAFrameWhereverItIsCut)
{
    for (const FrameVector& vector : frame_vectors("good")) {
        for (int cut = 0; cut <= vector.frame.size(); ++cut) {
            EXPECT_THAT(receive_cut_at(vector.frame, cut), ElementsAre(vector.payload))
                << vector.line << ", cut at " << cut;
        }
    }
}

TEST(SimFrameCodec, ReceivesAFrameByteByByte)
{
    for (const FrameVector& vector : frame_vectors("good")) {
        FrameReceiver receiver;
        for (const char byte : vector.frame.chopped(1)) {
            EXPECT_THAT(receiver.receive(QByteArray(1, byte)), IsEmpty()) << vector.line;
        }
        EXPECT_THAT(receiver.receive(vector.frame.right(1)), ElementsAre(vector.payload))
            << vector.line;
    }
}

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
    for (const FrameVector& vector : frame_vectors("accepted")) {
        FrameReceiver receiver;
        EXPECT_THAT(receiver.receive(vector.frame), ElementsAre(vector.payload)) << vector.line;
        EXPECT_EQ(receiver.dropped_frames(), 0U) << vector.line;
    }
}

TEST(SimFrameCodec, DropsWhatADeviceRefusesAndFindsTheNextFrame)
{
    for (const char* verdict : {"host", "refused"}) {
        for (const FrameVector& vector : frame_vectors(verdict)) {
            FrameReceiver receiver;
            EXPECT_THAT(receiver.receive(vector.frame), IsEmpty()) << vector.line;
            EXPECT_THAT(receiver.receive(make_frame(bytes("00 02"))), ElementsAre(bytes("00 02")))
                << vector.line;
        }
    }
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
