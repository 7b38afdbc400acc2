#include "tests/support/Bytes.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/Replies.h"
#include "tests/support/Waiting.h"

#include <QTimer>
#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using Echo = sim::Options::Echo;

namespace
{

constexpr int echo_attempt_ms = 300;

/// The sample device on a line that echoes what is sent.
class HalfDuplexLine : public DeviceOnLine
{
public:
    explicit HalfDuplexLine(Echo echo)
        : DeviceOnLine("sample", {9600, true}, {sim::Entry::Version, echo})
    {
        device.open_port();
    }

    bool ask(unsigned char max_attempts, int timeout)
    {
        return device.send_and_receive(bytes("00 02"), response, 2, max_attempts, timeout);
    }

    QByteArray response;
};

const std::string sent_request = "sig_encoded_command 55 55 00 02 FE 04";

void expect_plain_transaction(const HalfDuplexLine& line)
{
    EXPECT_EQ(line.response, bytes("01 02"));
    EXPECT_THAT(line.recorder.lines(), ElementsAre("sig_unencoded_command 00 02", sent_request,
                                                   "sig_encoded_response 55 55 00 02 01 02 FB 04",
                                                   "sig_decoded_response 00 02 01 02"));
}

} // namespace

TEST(HalfDuplex, DropsTheEchoThatComesBeforeTheAnswer)
{
    HalfDuplexLine line(Echo::Apart);
    EXPECT_TRUE(line.ask(1, 3000));
    expect_plain_transaction(line);
}

TEST(HalfDuplex, DropsTheEchoThatComesWithTheAnswer)
{
    HalfDuplexLine line(Echo::Together);
    EXPECT_TRUE(line.ask(1, echo_attempt_ms));
    expect_plain_transaction(line);
}

TEST(HalfDuplex, WaitsItsFullTimeForMoreWhenEchoAndAnswerCameTogether)
{
    HalfDuplexLine line(Echo::Together);
    bool time_passed = false;
    QTimer::singleShot(echo_attempt_ms / 2, &line.device, [&] { time_passed = true; });
    EXPECT_TRUE(line.ask(1, echo_attempt_ms));
    EXPECT_TRUE(time_passed);
}

TEST(HalfDuplex, TimesOutWhenOnlyTheEchoComes)
{
    HalfDuplexLine line(Echo::Apart);
    line.simulated.set_reply_filter(always(no_reply()));
    EXPECT_FALSE(line.ask(2, echo_attempt_ms));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", sent_request, sent_request,
                            "sig_error giving up after having made 2 attempts, with errors (Half "
                            "duplex response wait timed out\nHalf duplex response wait timed "
                            "out\n)"));
}

TEST(HalfDuplex, TimesOutWhenOnlyPartOfTheAnswerCameWithTheEcho)
{
    HalfDuplexLine line(Echo::Together);
    line.simulated.set_reply_filter(first({raw("55 55 00 02 05 04")}));
    EXPECT_FALSE(line.ask(1, echo_attempt_ms));
    EXPECT_THAT(line.recorder.lines().back(),
                "sig_error giving up after having made 1 attempts, with errors (Response wait "
                "timed out\n)");
}

TEST(HalfDuplex, TimesOutInTheFirstWaitWhenNotEvenTheEchoComes)
{
    HalfDuplexLine line(Echo::None);
    line.simulated.set_reply_filter(always(no_reply()));
    EXPECT_FALSE(line.ask(1, echo_attempt_ms));
    EXPECT_THAT(line.recorder.lines().back(),
                "sig_error giving up after having made 1 attempts, with errors (Response wait "
                "timed out\n)");
}

TEST(HalfDuplex, RetriesALostAnswer)
{
    HalfDuplexLine line(Echo::Apart);
    line.simulated.set_reply_filter(first({no_reply()}));
    EXPECT_TRUE(line.ask(3, echo_attempt_ms));
    EXPECT_EQ(line.response, bytes("01 02"));
    EXPECT_THAT(line.sent(), ElementsAre("00 02", "00 02"));
}

TEST(HalfDuplex, IsAnsweredByTheDeviceObject)
{
    const DeviceOnLine echoing("sample", {9600, true});
    const DeviceOnLine plain("sample", {9600, false});
    EXPECT_TRUE(echoing.device.is_half_duplex());
    EXPECT_FALSE(plain.device.is_half_duplex());
}

TEST(HalfDuplex, FullDuplexTakesAnEchoForTheAnswer)
{
    DeviceOnLine line("sample", {}, {sim::Entry::Version, Echo::Apart});
    line.device.open_port();
    QByteArray response;
    EXPECT_FALSE(line.device.send_and_receive(bytes("00 02"), response, 2, 1, patience_ms));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", sent_request,
                            "sig_encoded_response 55 55 00 02 FE 04", "sig_decoded_response 00 02",
                            "sig_error giving up after having made 1 attempts, with errors "
                            "(response contained 0 bytes, expected 2\n)"));
}
