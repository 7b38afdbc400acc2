#include "tests/support/Bytes.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

using namespace test;
using testing::Contains;
using testing::ElementsAre;

namespace
{

/// Long enough for an answer, short enough to wait for one that does not come.
constexpr int attempt_ms = 300;

const std::string sent = "sig_encoded_command 55 55 00 02 FE 04";
const std::string received = "sig_encoded_response 55 55 00 02 01 02 FB 04";
const std::string decoded = "sig_decoded_response 00 02 01 02";

/// The sample device is asked for its version, which it knows to be 0x0102.
class Retries : public testing::Test
{
protected:
    Retries() { line.device.open_port(); }

    bool ask(unsigned char max_attempts, int timeout = attempt_ms)
    {
        return line.device.send_and_receive(bytes("00 02"), response, 2, max_attempts, timeout);
    }

    DeviceOnLine line{"sample"};
    QByteArray response;
};

std::string gave_up(int attempts, const std::string& faults)
{
    return "sig_error giving up after having made " + std::to_string(attempts) +
           " attempts, with errors (" + faults + ')';
}

struct BadAnswer {
    const char* name;
    Reply reply;
    std::vector<std::string> signals;
};

const BadAnswer bad_answers[] = {
    {"Damaged",
     raw("55 55 00 02 01 03 FB 04"),
     {"sig_encoded_response 55 55 00 02 01 03 FB 04",
      "sig_error response checksum mismatch (expected FA, got FB)"}},
    {"ToAnotherCommand",
     frame_of("00 03 01 02"),
     {"sig_encoded_response 55 55 00 03 01 02 FA 04", "sig_decoded_response 00 03 01 02"}},
    {"OfTheWrongLength",
     frame_of("00 02 01"),
     {"sig_encoded_response 55 55 00 02 01 FD 04", "sig_decoded_response 00 02 01"}},
};

class RetriesAfterABadAnswer : public Retries, public testing::WithParamInterface<BadAnswer>
{
};

} // namespace

TEST_F(Retries, ReplaceALostAnswer)
{
    line.simulated.set_reply_filter(first({no_reply()}));
    EXPECT_TRUE(ask(3));
    EXPECT_EQ(response, bytes("01 02"));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", sent, sent, received, decoded));
}

TEST_P(RetriesAfterABadAnswer, ReplaceItAtOnce)
{
    line.simulated.set_reply_filter(first({GetParam().reply}));
    EXPECT_TRUE(ask(2, patience_ms));
    EXPECT_EQ(response, bytes("01 02"));
    std::vector<std::string> expected{"sig_unencoded_command 00 02", sent};
    expected.insert(expected.end(), GetParam().signals.begin(), GetParam().signals.end());
    expected.insert(expected.end(), {sent, received, decoded});
    EXPECT_EQ(line.recorder.lines(), expected);
}

INSTANTIATE_TEST_SUITE_P(, RetriesAfterABadAnswer, testing::ValuesIn(bad_answers), row_name);

TEST_F(Retries, EndWithTheLastAttempt)
{
    line.simulated.set_reply_filter(first({frame_of("00 02 01"), frame_of("00 02 01")}));
    EXPECT_FALSE(ask(2, patience_ms));
    EXPECT_THAT(line.sent(), ElementsAre("00 02", "00 02"));
}

TEST_F(Retries, ListEveryFaultInItsOrderWhenTheyGiveUp)
{
    line.simulated.set_reply_filter(
        first({frame_of("00 02 01 02 03"), no_reply(), raw("55 55 00 02 01 02 FB 05 04"),
               frame_of("01 02"), raw("55 54 00 02 01 02 FB 04")}));
    EXPECT_FALSE(ask(5));
    EXPECT_EQ(line.recorder.lines().back(),
              gave_up(5, "response contained 3 bytes, expected 2\n"
                         "Response wait timed out\n"
                         "Response wait timed out\n"
                         "response was not prefixed with the command but was supposed to be\n"
                         "Could not decode message\n"));
}

TEST_F(Retries, OfADeviceThatIsSilentAllTimeOut)
{
    line.simulated.set_reply_filter(always(no_reply()));
    EXPECT_FALSE(ask(3));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", sent, sent, sent,
                            gave_up(3, "Response wait timed out\nResponse wait timed out\n"
                                       "Response wait timed out\n")));
}

TEST_F(Retries, MayBe255)
{
    line.simulated.set_reply_filter(always(frame_of("00 02")));
    EXPECT_FALSE(ask(255, patience_ms));
    std::string faults;
    for (int i = 0; i < 255; ++i) {
        faults += "response contained 0 bytes, expected 2\n";
    }
    EXPECT_EQ(line.recorder.lines().back(), gave_up(255, faults));
    EXPECT_EQ(line.sent(), std::vector<std::string>(255, "00 02"));
}

TEST_F(Retries, DoNotSeeAnAnswerThatCameBetweenCommands)
{
    // A whole frame in the receive buffer that would pass for the answer to the next command.
    line.simulated.set_reply_filter(first({frame_of("00 02 0B AD"), no_reply(), no_reply()}));
    EXPECT_TRUE(line.device.send_and_receive(bytes("00 00"), response, 0, 1, 0));
    ASSERT_TRUE(line.device.read_until_terminated_or_timed_out(patience_ms));
    line.recorder.clear();

    EXPECT_FALSE(ask(2));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", sent, sent,
                            gave_up(2, "Response wait timed out\nResponse wait timed out\n")));
}

TEST_F(Retries, DoNotSeeTheBeginningOfAnAnswerThatWasNeverCompleted)
{
    line.simulated.set_reply_filter(first({raw("55 55 00 02 01")}));
    EXPECT_TRUE(ask(2));
    EXPECT_EQ(response, bytes("01 02"));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", sent, sent, received, decoded));
}

TEST_F(Retries, TakeAFrameThatThePortDoesNotTakeForOneThatIsNotAnswered)
{
    ZarnSerialDevice closed(line.simulated.port_path(), nullptr, 115200, false, 0);
    const SignalRecorder recorder(closed);
    const DebugMessages messages;
    EXPECT_FALSE(closed.send_and_receive(bytes("00 02"), response, 2, 1, 1));
    EXPECT_THAT(recorder.lines(), ElementsAre("sig_unencoded_command 00 02",
                                              gave_up(1, "Response wait timed out\n")));
    EXPECT_THAT(messages.texts(), Contains(QStringLiteral("TX error, only wrote  65535  bytes!")));
}

TEST_F(Retries, AreNotAskedForWhenThePortDoesNotTakeACommandWithoutAnswer)
{
    ZarnSerialDevice closed(line.simulated.port_path(), nullptr, 115200, false, 0);
    const SignalRecorder recorder(closed);
    EXPECT_TRUE(closed.send_and_receive(bytes("00 00"), response, 0, 1, 0));
    EXPECT_THAT(recorder.lines(), ElementsAre("sig_unencoded_command 00 00"));
}
