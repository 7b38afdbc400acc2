#include "device/FrameCodec.h"
#include "device/ZarnSerialDevice.h"
#include "tests/support/Bytes.h"
#include "tests/support/FrameVectors.h"
#include "tests/support/SignalRecorder.h"

#include <gmock/gmock.h>

#include <vector>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

struct BadFrame {
    const char* frame;
    const char* reason;
};

const std::vector<BadFrame> bad_frames = {
    {"", "response is 0 bytes long, expected at least 4 bytes"},
    {"55 55 04", "response is 3 bytes long, expected at least 4 bytes"},
    {"54 55 12 EE 04", "response is missing first sync symbol"},
    {"00 00 00 00", "response is missing first sync symbol"},
    {"55 54 12 EE 04", "response is missing second sync symbol"},
    {"55 00 00 00", "response is missing second sync symbol"},
    {"55 55 12 EE", "response is not properly terminated"},
    {"55 55 12 05 04", "response is not properly terminated"},
    {"55 55 05 12 EE 04", "response byte at position 3 (12) was needlessly escaped"},
    {"55 55 05 00 00 04", "response byte at position 3 (00) was needlessly escaped"},
    {"55 55 01 05 7F 80 04", "response byte at position 4 (7F) was needlessly escaped"},
    {"55 55 05 80 80 04", "response byte at position 3 (FFFFFFFFFFFFFF80) was needlessly escaped"},
    {"55 55 05 FE 02 04", "response byte at position 3 (FFFFFFFFFFFFFFFE) was needlessly escaped"},
    {"55 55 01 55 AA 04", "response contains unexpected sync symbol at position 3"},
    {"55 55 05 55 55 AA 04", "response contains unexpected sync symbol at position 4"},
    {"55 55 01 04 FB 04", "response contains premature terminator symbol at position 3"},
    {"55 55 04 FC 04", "response contains premature terminator symbol at position 2"},
    {"55 55 FE 04", "response contained only SYNC symbols"},
    {"55 55 55 55 00 04", "response contained only SYNC symbols"},
    {"55 55 12 05 EE 04", "response contained a needlessly-escaped checksum"},
    {"55 55 00 02 FD 04", "response checksum mismatch (expected FE, got FD)"},
    {"55 55 F5 0C 04", "response checksum mismatch (expected 0B, got 0C)"},
    {"55 55 01 05 05 04", "response checksum mismatch (expected FF, got 05)"},
    // An escaped checksum without a byte before it: the sum of nothing is 0.
    {"55 55 05 05 04", "response checksum mismatch (expected 00, got 05)"},
};

struct Ending {
    const char* buffer;
    bool is_terminated;
};

const std::vector<Ending> endings = {
    {"", false},
    {"04", false},
    {"55 55 04", false},
    {"04 04 04 04", true},
    {"55 55 05 04", false},
    {"55 55 05 05 04", true},
    {"55 55 05 05 05 04", false},
    {"05 05 05 04", false},
    {"05 05 05 05 04", true},
    {"55 55 FC 04 04", true},
    {"55 55 12 EE 04", true},
    {"55 55 12 EE 04 00", false},
    {"55 55 12 EE", false},
};

/// Members of the device object, none of which needs a port.
class FrameMembers : public testing::Test
{
protected:
    ZarnSerialDevice device{QStringLiteral("none"), nullptr, 9600, false, 0};
    SignalRecorder recorder{device};
};

} // namespace

TEST(FrameBytes, OnlyTheThreeSpecialValuesNeedEscaping)
{
    for (int value = 0; value < 256; ++value) {
        const bool special = value == 0x04 || value == 0x05 || value == 0x55;
        EXPECT_EQ(ZarnSerialDevice::needs_escaping(static_cast<char>(value)), special) << value;
        EXPECT_EQ(frame::needs_escaping(static_cast<char>(value)), special) << value;
    }
}

TEST(FrameBytes, AnUnescapedTerminatorEndsAFrameOfFourBytesOrMore)
{
    for (const Ending& ending : endings) {
        EXPECT_EQ(ZarnSerialDevice::is_terminated(bytes(ending.buffer)), ending.is_terminated)
            << ending.buffer;
        EXPECT_EQ(frame::is_terminated(bytes(ending.buffer)), ending.is_terminated)
            << ending.buffer;
    }
}

TEST(FrameBytes, ChecksumBringsTheSumToZero)
{
    EXPECT_EQ(frame::checksum(bytes("00 02")), '\xFE');
    EXPECT_EQ(frame::checksum(bytes("00")), '\x00');
    EXPECT_EQ(frame::checksum(bytes("FF FF FF")), '\x03');
    EXPECT_EQ(frame::checksum(QByteArray(256, '\x80')), '\x00');
}

TEST(FrameEncoding, EscapesPayloadAndChecksum)
{
    for (const FrameVector& vector : frame_vectors("good")) {
        QByteArray frame = "what was there before";
        EXPECT_TRUE(ZarnSerialDevice::encode(vector.payload, frame)) << vector.line;
        EXPECT_EQ(frame, vector.frame) << vector.line;
        EXPECT_EQ(frame::encode(vector.payload), vector.frame) << vector.line;
    }
}

TEST(FrameEncoding, RefusesAnEmptyCommandAndLeavesTheFrameAlone)
{
    QByteArray frame = "what was there before";
    EXPECT_FALSE(ZarnSerialDevice::encode({}, frame));
    EXPECT_EQ(frame, "what was there before");
}

TEST_F(FrameMembers, DecodesWhatEncodeMakes)
{
    for (const FrameVector& vector : frame_vectors("good")) {
        QByteArray payload = "what was there before";
        EXPECT_TRUE(device.decode(vector.frame, payload)) << vector.line;
        EXPECT_EQ(payload, vector.payload) << vector.line;
    }
    EXPECT_THAT(recorder.lines(), IsEmpty());
}

TEST_F(FrameMembers, AcceptsMoreSyncSymbolsAndChecksumsWithoutEscape)
{
    for (const char* verdict : {"accepted", "host"}) {
        for (const FrameVector& vector : frame_vectors(verdict)) {
            QByteArray payload;
            EXPECT_TRUE(device.decode(vector.frame, payload)) << vector.line;
            EXPECT_EQ(payload, vector.payload) << vector.line;
        }
    }
    EXPECT_THAT(recorder.lines(), IsEmpty());
}

TEST_F(FrameMembers, RefuseWhatBothEndsRefuse)
{
    for (const FrameVector& vector : frame_vectors("refused")) {
        QByteArray payload;
        EXPECT_FALSE(device.decode(vector.frame, payload)) << vector.line;
    }
}

TEST_F(FrameMembers, ReportWhyAFrameIsRefused)
{
    for (const BadFrame& bad : bad_frames) {
        recorder.clear();
        QByteArray payload;
        EXPECT_FALSE(device.decode(bytes(bad.frame), payload)) << bad.frame;
        EXPECT_THAT(recorder.lines(), ElementsAre(std::string("sig_error ") + bad.reason))
            << bad.frame;
    }
}

TEST(FrameDecoding, ReportsWhyAFrameIsRefused)
{
    for (const BadFrame& bad : bad_frames) {
        QByteArray payload;
        const auto reason = frame::decode(bytes(bad.frame), payload);
        EXPECT_EQ(reason.value_or(QString()).toStdString(), bad.reason) << bad.frame;
    }
}

TEST_F(FrameMembers, ClearTheOldPayloadEvenWhenTheFrameIsRefused)
{
    QByteArray payload = "what was there before";
    EXPECT_FALSE(device.decode(bytes("55 55 04"), payload));
    EXPECT_EQ(payload, QByteArray());
}
