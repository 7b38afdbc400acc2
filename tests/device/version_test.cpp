#include "tests/support/Bytes.h"
#include "tests/support/DebugMessages.h"
#include "tests/support/DeviceOnLine.h"
#include "tests/support/ProfileTable.h"
#include "tests/support/Replies.h"
#include "tests/support/RowName.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr unsigned short unlisted = 0x00AB;
constexpr unsigned int identification_baud = 460800;

/// A device object without a selected profile, at the rate at which every running device reports
/// its version.
Host newcomer_at_460800()
{
    Host host;
    host.baud = identification_baud;
    host.knows_device = false;
    return host;
}

struct ReportedVersion {
    const char* name;
    const char* bytes;
    unsigned short version;
    const char* unlisted_as; ///< as the message shows it; null for a version of the table
};

const ReportedVersion reported_versions[] = {
    {"HighByteFirst", "00 02 01 23", 0x0123, nullptr},
    {"LowByte80SetsTheHighByte", "00 02 01 80", 0xFF80, nullptr},
    {"LowByteFFSetsTheHighByte", "00 02 7F FF", 0xFFFF, "FFFF"},
    {"LowByte7FDoesNot", "00 02 01 7F", 0x017F, "017F"},
    {"HighByte80IsKept", "00 02 80 01", 0x8001, "8001"},
    {"Zero", "00 02 00 00", 0x0000, "0000"},
};

class VersionAnswers : public testing::TestWithParam<ReportedVersion>
{
};

} // namespace

TEST(Version, IsZeroWithoutAProfileAndNothingIsLogged)
{
    DeviceOnLine line("sample", newcomer_at_460800());
    const DebugMessages messages;
    EXPECT_EQ(line.device.get_bootloader_version(), 0);
    EXPECT_THAT(messages.texts(), IsEmpty());
    EXPECT_EQ(line.device.profile(), nullptr);
}

TEST(Version, ComesFromTheSelectedProfile)
{
    DeviceOnLine line("sample");
    const DebugMessages messages;
    EXPECT_EQ(line.device.get_bootloader_version(), 0x0102);
    EXPECT_THAT(messages.texts(), ElementsAre(QStringLiteral("Existing bldr")));
    EXPECT_FALSE(line.port.is_open());
}

TEST(Version, OfTheTableSelectsProfileAndRate)
{
    DeviceOnLine line("sample", newcomer_at_460800());
    ASSERT_TRUE(line.device.open_port());
    EXPECT_TRUE(line.device.set_bootloader_version(0x0123));
    EXPECT_EQ(line.device.profile(), &profile_named("swapped-divisors"));
    EXPECT_EQ(line.device.get_name(), QStringLiteral("swapped-divisors"));
    EXPECT_EQ(line.device.get_attr(Profile::max_baud), 57600U);
    EXPECT_EQ(line.device.get_attr(Profile::device_name), 0U);
    EXPECT_EQ(line.device.get_attr(Profile::eeprom_end_address), 0x8100U);
    EXPECT_EQ(line.simulated.host_baud(), 57600U);
    EXPECT_THAT(line.recorder.lines(), IsEmpty());
}

TEST(Version, OfAnotherProfileReplacesTheFirst)
{
    DeviceOnLine line("sample");
    EXPECT_TRUE(line.device.set_bootloader_version(0x0123));
    EXPECT_EQ(line.device.get_bootloader_version(), 0x0123);
}

TEST(Version, ThatIsNotListedIsReportedAndChangesNothing)
{
    DeviceOnLine line("sample");
    ASSERT_TRUE(line.device.open_port());
    EXPECT_FALSE(line.device.set_bootloader_version(unlisted));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error no profile for device (bootloader version = 00AB)"));
    EXPECT_EQ(line.device.profile(), &profile_named("sample"));
    EXPECT_EQ(line.device.get_bootloader_version(), 0x0102);
    EXPECT_EQ(line.simulated.host_baud(), 115200U);
}

TEST(Version, ThatTheRegistryOnlyHasAnEmptyEntryForIsNotListed)
{
    ASSERT_EQ(Profiles::get_profile(unlisted), nullptr);
    ASSERT_TRUE(Profiles::has_profile(unlisted));
    DeviceOnLine line("sample");
    EXPECT_FALSE(line.device.set_bootloader_version(unlisted));
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_error no profile for device (bootloader version = 00AB)"));
}

TEST(Version, ThatIsNotListedLeavesTheConstructorWithoutProfile)
{
    const DebugMessages messages;
    ZarnSerialDevice device(QStringLiteral("none"), nullptr, 9600, false, unlisted);
    EXPECT_EQ(device.profile(), nullptr);
    EXPECT_THAT(messages.texts(), ElementsAre(QStringLiteral(
                                      "\"no profile for device (bootloader version = 00AB)\"")));
}

TEST(Version, MayBelongToAProfileThatIsNotInTheTable)
{
    QStringList fields{QStringLiteral("0x4321"), QStringLiteral("38400"), QStringLiteral("other")};
    while (fields.size() < Profile::_enum_size) {
        fields << QStringLiteral("1");
    }
    const Profile profile(fields);
    DeviceOnLine line("sample", newcomer_at_460800());
    ASSERT_TRUE(line.device.open_port());
    line.device.select_profile(profile);
    EXPECT_EQ(line.device.profile(), &profile);
    EXPECT_EQ(line.device.get_bootloader_version(), 0x4321);
    EXPECT_EQ(line.simulated.host_baud(), 38400U);
    EXPECT_THAT(line.recorder.lines(), IsEmpty());
}

TEST(VersionRequest, SelectsTheProfileOfTheDeviceThatAnswers)
{
    DeviceOnLine line("swapped-divisors", newcomer_at_460800());
    unsigned short version = 0;
    EXPECT_TRUE(line.device.request_bootloader_version(&version));
    EXPECT_EQ(version, 0x0123);
    EXPECT_EQ(line.device.get_bootloader_version(), 0x0123);
    EXPECT_THAT(line.recorder.lines(),
                ElementsAre("sig_unencoded_command 00 02", "sig_encoded_command 55 55 00 02 FE 04",
                            "sig_encoded_response 55 55 00 02 01 23 DA 04",
                            "sig_decoded_response 00 02 01 23"));
    ASSERT_EQ(line.simulated.commands().size(), 1U);
    EXPECT_EQ(line.simulated.commands().front().baud, identification_baud);
    EXPECT_EQ(line.simulated.host_baud(), 57600U);
}

TEST_P(VersionAnswers, AreAssembledWithTheirLowByteSigned)
{
    const ReportedVersion& row = GetParam();
    DeviceOnLine line("sample", newcomer_at_460800());
    line.simulated.set_reply_filter(always(frame_of(row.bytes)));
    unsigned short version = 0x5A5A;
    EXPECT_EQ(line.device.request_bootloader_version(&version), row.unlisted_as == nullptr);
    EXPECT_EQ(version, row.version);
    if (row.unlisted_as == nullptr) {
        EXPECT_THAT(line.recorder.operation(), IsEmpty());
        EXPECT_EQ(line.device.get_bootloader_version(), row.version);
    } else {
        EXPECT_THAT(line.recorder.operation(),
                    ElementsAre("sig_error no profile for device (bootloader version = " +
                                std::string(row.unlisted_as) + ')'));
        EXPECT_EQ(line.device.profile(), nullptr);
    }
}

INSTANTIATE_TEST_SUITE_P(, VersionAnswers, testing::ValuesIn(reported_versions), row_name);

TEST(VersionRequest, IsMadeFortyTimes)
{
    DeviceOnLine line("sample", newcomer_at_460800());
    line.simulated.set_reply_filter(always(frame_of("00 02 01")));
    unsigned short version = 0x5A5A;
    EXPECT_FALSE(line.device.request_bootloader_version(&version));
    EXPECT_EQ(version, 0x5A5A);
    EXPECT_EQ(line.sent(), std::vector<std::string>(40, "00 02"));
}

// Takes the twelve seconds that a command to a silent device takes.
TEST(VersionRequest, OfASilentDeviceGivesUpInTheEnd)
{
    DeviceOnLine line("sample", newcomer_at_460800(), {sim::Entry::Silent});
    unsigned short version = 0x5A5A;
    EXPECT_FALSE(line.device.request_bootloader_version(&version));
    std::string faults;
    for (int i = 0; i < 40; ++i) {
        faults += "Response wait timed out\n";
    }
    EXPECT_THAT(line.recorder.operation(),
                ElementsAre("sig_error giving up after having made 40 attempts, with errors (" +
                            faults + ')'));
    EXPECT_EQ(version, 0x5A5A);
    EXPECT_EQ(line.device.profile(), nullptr);
}

TEST(VersionRequest, FailsWithThePort)
{
    ZarnSerialDevice device(QStringLiteral("/dev/no-such-port"), nullptr, 9600, false, 0);
    const SignalRecorder recorder(device);
    unsigned short version = 0x5A5A;
    EXPECT_FALSE(device.request_bootloader_version(&version));
    EXPECT_EQ(recorder.lines().size(), 1U);
    EXPECT_EQ(version, 0x5A5A);
}

TEST(Reset, IsSentOnceAndAwaitsNothing)
{
    DeviceOnLine line("sample");
    line.device.reset();
    EXPECT_THAT(line.recorder.lines(), ElementsAre("sig_unencoded_command 00 00",
                                                   "sig_encoded_command 55 55 00 00 00 04"));
    ASSERT_TRUE(wait_until([&] { return !line.simulated.payloads().empty(); }));
    EXPECT_THAT(line.sent(), ElementsAre("00 00"));
    EXPECT_EQ(line.simulated.commands().front().baud, 115200U);
}

TEST(Reset, SendsNothingWithoutAPort)
{
    ZarnSerialDevice device(QStringLiteral("/dev/no-such-port"), nullptr, 9600, false, 0);
    const SignalRecorder recorder(device);
    device.reset();
    EXPECT_EQ(recorder.operation(), recorder.lines());
    EXPECT_EQ(recorder.lines().size(), 1U);
}
