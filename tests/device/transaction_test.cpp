#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;

namespace
{

/// A line to the sample device, its port open as every operation opens it before a transaction.
class Transaction : public testing::Test
{
protected:
    Transaction() { line.device.open_port(); }

    /// One attempt; for transactions in which the device answers.
    bool ask(const char* command, unsigned short expected_length)
    {
        return line.device.send_and_receive(bytes(command), response, expected_length, 1,
                                            patience_ms);
    }

    DeviceOnLine line{"sample"};
    QByteArray response;
};

struct BadArguments {
    const char* name;
    unsigned short expected_length;
    unsigned char max_attempts;
    int timeout;
    const char* message;
};

const BadArguments bad_arguments[] = {
    {"NoAttempts", 2, 0, 300, "max_attempts == 0 (nonsensical)"},
    {"NoAttemptsWhateverElseIsWrong", 0, 0, 300, "max_attempts == 0 (nonsensical)"},
    {"TwoAttemptsWithoutAnswer", 0, 2, 0,
     "expected_response_length == 0 but max_attempts != 1 (nonsensical)"},
    {"TwoAttemptsAndAWaitWithoutAnswer", 0, 2, 100,
     "expected_response_length == 0 but max_attempts != 1 (nonsensical)"},
    {"AWaitWithoutAnswer", 0, 1, 100,
     "expected_response_length == 0 but timeout_secs != 0 (nonsensical)"},
};

class TransactionArguments : public Transaction, public testing::WithParamInterface<BadArguments>
{
};

struct Answer {
    const char* name;
    const char* command;
    const char* answer;   ///< payload of the device's frame
    const char* decoded;  ///< as the signal shows it
    const char* response; ///< what the caller gets; its length is the one expected
};

const Answer good_answers[] = {
    {"EchoOfTheCommandIsRemoved", "00 02", "00 02 01 23", "00 02 01 23", "01 23"},
    {"EchoOfALongCommandIsRemoved", "04 02 10 20 30", "04 02 10 20 30 AA BB",
     "04 02 10 20 30 AA BB", "AA BB"},
    {"EchoOfAWriteIsRemoved", "02 01", "02 01 02", "02 01 02", "02"},
    {"FlashWriteIsAnsweredWithoutEcho", "02 01 00 08 00 11 22", "02", "02", "02"},
    {"EraseIsAnsweredWithoutEcho", "03 04 00 08 00", "03", "03", "03"},
    {"EepromWriteIsAnsweredWithoutEcho", "05 10 00 00 00 11", "05", "05", "05"},
    {"AnyUnprefixedAnswerOfAWriteIsKeptWhole", "02 01", "AA BB CC", "AA BB CC", "AA BB CC"},
    {"PartOfAnEchoOfAWriteIsKept", "05 10 00", "05 10", "05 10", "05 10"},
    {"SecondByteOfAFlashReadIsRepaired", "01 10 00 08 00", "01 00 00 08 00 AA BB",
     "01 10 00 08 00 AA BB", "AA BB"},
    {"SecondByteThatIsZeroAnywayStays", "01 00 00 08 00", "01 00 00 08 00 AA", "01 00 00 08 00 AA",
     "AA"},
    {"SecondByteThatIsRightStays", "01 10", "01 10 AA", "01 10 AA", "AA"},
    {"AnswerThatBeginsAsAFlashReadIsRepairedWhateverWasAsked", "02 07", "01 00 AA", "01 07 AA",
     "01 07 AA"},
    {"ALoneReadByteGrowsBySecondByteOfTheCommand", "05 07", "01", "01 07", "01 07"},
};

class TransactionAnswers : public Transaction, public testing::WithParamInterface<Answer>
{
};

struct Refusal {
    const char* name;
    const char* command;
    const char* answer;
    const char* decoded;
    const char* fault;
};

const char* const not_prefixed =
    "response was not prefixed with the command but was supposed to be\n";

// Two bytes are expected each time.
const Refusal refused_answers[] = {
    {"VersionWithoutEcho", "00 02", "01 23", "01 23", not_prefixed},
    {"FlashReadWithoutEcho", "01 01 00 08 00", "AA BB", "AA BB", not_prefixed},
    {"EepromReadWithoutEcho", "04 01 00 00 00", "AA BB", "AA BB", not_prefixed},
    {"UnknownCommandWithoutEcho", "06", "AA BB", "AA BB", not_prefixed},
    {"HighestCommandWithoutEcho", "FF 01", "FF 02", "FF 02", not_prefixed},
    {"PartOfTheEcho", "00 02", "00", "00", not_prefixed},
    {"EchoWithAnotherEnd", "01 10 00 08 00", "01 10 00 09 00 AA BB", "01 10 00 09 00 AA BB",
     not_prefixed},
    {"SecondByteThatIsNotZeroIsNotRepaired", "01 10", "01 20 AA BB", "01 20 AA BB", not_prefixed},
    {"SecondByteOfAnotherCommandIsNotRepaired", "04 10", "04 00 AA BB", "04 00 AA BB",
     not_prefixed},
    {"ALoneByteOfAnotherCommandDoesNotGrow", "04 10", "04", "04", not_prefixed},
    {"ALoneReadByteGrowsToTheWholeCommandOnly", "01 10", "01", "01 10",
     "response contained 0 bytes, expected 2\n"},
    {"TooShort", "00 02", "00 02 01", "00 02 01", "response contained 1 bytes, expected 2\n"},
    {"TooLong", "00 02", "00 02 01 02 03", "00 02 01 02 03",
     "response contained 3 bytes, expected 2\n"},
    {"UnprefixedOfTheWrongLength", "03 01", "03", "03", "response contained 1 bytes, expected 2\n"},
};

class TransactionRefusals : public Transaction, public testing::WithParamInterface<Refusal>
{
};

} // namespace

TEST_P(TransactionArguments, AreRefusedBeforeAnythingIsSent)
{
    const BadArguments& row = GetParam();
    EXPECT_FALSE(line.device.send_and_receive(bytes("00 02"), response, row.expected_length,
                                              row.max_attempts, row.timeout));
    EXPECT_THAT(line.recorder.lines(), ElementsAre(std::string("sig_error ") + row.message));
}

INSTANTIATE_TEST_SUITE_P(, TransactionArguments, testing::ValuesIn(bad_arguments), row_name);

TEST_F(Transaction, FailsInSilenceForAnEmptyCommand)
{
    EXPECT_FALSE(line.device.send_and_receive({}, response, 2, 3, 300));
    EXPECT_THAT(line.recorder.lines(), ElementsAre("sig_unencoded_command"));
}

TEST_F(Transaction, SendsACommandWithoutAnswerOnceAndAwaitsNothing)
{
    line.simulated.set_reply_filter(always(frame_of("00 00 01")));
    EXPECT_TRUE(line.device.send_and_receive(bytes("00 00"), response, 0, 1, 0));
    // The answer that comes all the same completes a frame that nobody looks at.
    EXPECT_TRUE(line.device.read_until_terminated_or_timed_out(patience_ms));
    EXPECT_EQ(hex(line.simulated.heard()), "55 55 00 00 00 04");
    EXPECT_THAT(line.recorder.lines(), ElementsAre("sig_unencoded_command 00 00",
                                                   "sig_encoded_command 55 55 00 00 00 04"));
}

TEST_F(Transaction, SignalsShowCommandAndAnswerBeforeAndAfterFraming)
{
    line.simulated.set_reply_filter(always(frame_of("00 02 55 04")));
    EXPECT_TRUE(ask("00 02", 2));
    EXPECT_EQ(response, bytes("55 04"));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", "sig_encoded_command 55 55 00 02 FE 04",
                            "sig_encoded_response 55 55 00 02 05 55 05 04 A5 04",
                            "sig_decoded_response 00 02 55 04"));
}

TEST_P(TransactionAnswers, ReachTheCaller)
{
    const Answer& row = GetParam();
    line.simulated.set_reply_filter(always(frame_of(row.answer)));
    const QByteArray expected = bytes(row.response);
    EXPECT_TRUE(ask(row.command, static_cast<unsigned short>(expected.size())));
    EXPECT_EQ(response, expected);
    EXPECT_EQ(line.recorder.lines().back(), std::string("sig_decoded_response ") + row.decoded);
}

INSTANTIATE_TEST_SUITE_P(, TransactionAnswers, testing::ValuesIn(good_answers), row_name);

TEST_P(TransactionRefusals, ReportWhatIsWrongWithTheAnswer)
{
    const Refusal& row = GetParam();
    line.simulated.set_reply_filter(always(frame_of(row.answer)));
    EXPECT_FALSE(ask(row.command, 2));
    const auto& lines = line.recorder.lines();
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[3], std::string("sig_decoded_response ") + row.decoded);
    EXPECT_EQ(lines[4],
              std::string("sig_error giving up after having made 1 attempts, with errors (") +
                  row.fault + ')');
}

INSTANTIATE_TEST_SUITE_P(, TransactionRefusals, testing::ValuesIn(refused_answers), row_name);

TEST_F(Transaction, CountsAnswersInSixteenBits)
{
    const QByteArray data = QByteArray(0x10000, 'x') + "yz";
    line.simulated.set_reply_filter(always(frame_of(bytes("00 02") + data)));
    EXPECT_TRUE(ask("00 02", 2));
    EXPECT_EQ(response.size(), data.size());
}

TEST_F(Transaction, LeavesNothingOfItsAnswerInTheBuffer)
{
    EXPECT_TRUE(ask("00 02", 2));
    EXPECT_FALSE(line.device.read_until_terminated_or_timed_out(1));
}

TEST_F(Transaction, PutsAnAnswerTogetherThatComesInPieces)
{
    // The first piece ends in an escaped terminator, the second in an escape.
    line.simulated.set_reply_filter(
        always({{bytes("55 55 00 02 05 04")}, {bytes("11 05")}, {bytes("55")}, {bytes("94 04")}}));
    EXPECT_TRUE(ask("00 02", 3));
    EXPECT_EQ(response, bytes("04 11 55"));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", "sig_encoded_command 55 55 00 02 FE 04",
                            "sig_encoded_response 55 55 00 02 05 04 11 05 55 94 04",
                            "sig_decoded_response 00 02 04 11 55"));
}

TEST_F(Transaction, LooksAtTheBufferAtOnceWhenThereIsNoTimeToWait)
{
    EXPECT_FALSE(line.device.send_and_receive(bytes("00 02"), response, 2, 1, 0));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", "sig_encoded_command 55 55 00 02 FE 04",
                            "sig_encoded_response",
                            "sig_error response is 0 bytes long, expected at least 4 bytes",
                            "sig_error giving up after having made 1 attempts, with errors (Could "
                            "not decode message\n)"));
}
