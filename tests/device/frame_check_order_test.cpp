#include "device/ZarnSerialDevice.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"
#include "tests/support/SignalRecorder.h"

#include <gmock/gmock.h>

using namespace test;

// Frames with more than one fault: the first check that fails is the only one reported, and the
// payload holds the bytes before the fault.

namespace
{

struct FaultyFrame {
    const char* name;
    const char* frame;
    const char* reason;
    const char* payload; ///< what the output holds afterwards
};

const FaultyFrame faulty_frames[] = {
    {"LengthBeforeFirstSync", "54 00 00", "response is 3 bytes long, expected at least 4 bytes",
     ""},
    {"FirstSyncBeforeSecond", "54 54 12 EE 04", "response is missing first sync symbol", ""},
    {"SecondSyncBeforeTermination", "55 54 12 EE", "response is missing second sync symbol", ""},
    {"TerminationBeforeNeedlessEscape", "55 55 12 05 13 EE", "response is not properly terminated",
     ""},
    {"TerminationBeforeUnexpectedSync", "55 55 12 55 05 04", "response is not properly terminated",
     ""},
    {"NeedlessEscapeBeforeLaterSync", "55 55 12 05 13 55 00 04",
     "response byte at position 4 (13) was needlessly escaped", "12"},
    {"SyncBeforeLaterNeedlessEscape", "55 55 12 13 55 05 14 00 04",
     "response contains unexpected sync symbol at position 4", "12 13"},
    {"SyncBeforeLaterTerminator", "55 55 12 55 04 00 04",
     "response contains unexpected sync symbol at position 3", "12"},
    {"TerminatorBeforeLaterSync", "55 55 12 13 14 04 55 00 04",
     "response contains premature terminator symbol at position 5", "12 13 14"},
    {"PrematureTerminatorBeforeChecksum", "55 55 12 04 00 04",
     "response contains premature terminator symbol at position 3", "12"},
    {"NeedlessEscapeBeforeChecksum", "55 55 05 12 00 04",
     "response byte at position 3 (12) was needlessly escaped", ""},
    {"OnlySyncBeforeChecksum", "55 55 55 AA 04", "response contained only SYNC symbols", ""},
    {"EscapedChecksumBeforeItsValue", "55 55 12 05 00 04",
     "response contained a needlessly-escaped checksum", "12"},
    {"EscapedBytesUpToTheFault", "55 55 05 04 05 05 05 55 05 12 00 04",
     "response byte at position 9 (12) was needlessly escaped", "04 05 55"},
    {"EverythingButTheChecksum", "55 55 12 05 55 13 00 04",
     "response checksum mismatch (expected 86, got 00)", "12 55 13"},
};

class FrameWithFaults : public testing::TestWithParam<FaultyFrame>
{
};

} // namespace

TEST_P(FrameWithFaults, IsReportedForItsFirstAndDecodedUpToIt)
{
    ZarnSerialDevice device{QStringLiteral("none"), nullptr, 9600, false, 0};
    const SignalRecorder recorder{device};
    QByteArray payload = "what was there before";
    EXPECT_FALSE(device.decode(bytes(GetParam().frame), payload));
    EXPECT_THAT(recorder.lines(),
                testing::ElementsAre(std::string("sig_error ") + GetParam().reason));
    EXPECT_EQ(payload, bytes(GetParam().payload));
}

INSTANTIATE_TEST_SUITE_P(, FrameWithFaults, testing::ValuesIn(faulty_frames), row_name);
