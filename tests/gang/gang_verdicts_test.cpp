#include "sim/line/PortLock.h"
#include "tests/gang/GangTest.h"
#include "tests/support/RowName.h"
#include "tests/support/Waiting.h"

#include <csignal>

using namespace test;

namespace
{

const QString no_port = QStringLiteral("/dev/no-such-port");

/// A fault of the device, its line or its files, and the one verdict that follows from it.
struct VerdictCase {
    const char* name;
    const char* device; ///< options of the simulator; null: no device, a port that is not there
    const char* tool;
    const char* gang;
    const char* verdict;
    const char* message; ///< how the message begins
};

std::ostream& operator<<(std::ostream& stream, const VerdictCase& row)
{
    return stream << row.name;
}

class GangVerdicts : public GangTest, public testing::WithParamInterface<VerdictCase>
{
};

TEST_P(GangVerdicts, FollowFromFaults)
{
    const VerdictCase& row = GetParam();
    give_file("bad_device.txt", QStringLiteral("bad_device.txt"));
    give_file("bad_checksum.hex", QStringLiteral("bad_checksum.hex"));
    give_file("elsewhere.hex", QStringLiteral("elsewhere.hex"));
    const auto simulated = row.device == nullptr ? nullptr : device(row.device);
    const GangResult result = run(simulated ? simulated->port() : no_port, row.tool, row.gang);
    const QJsonObject end = result.last("end");
    EXPECT_EQ(text(end, "verdict"), row.verdict) << result;
    EXPECT_THAT(text(end, "message"), testing::StartsWith(row.message)) << result;
    EXPECT_EQ(result.status, std::string(row.verdict) == "ok" ? 0 : 1);
}

const std::vector<VerdictCase> verdict_cases = {
    {"Written", "--entry version", "-B 0102 -e -w image.hex -v image.hex -R", "", "ok", ""},
    {"WrittenAndVerified", "--entry version", "-B 0102 -wv image.hex", "", "ok", ""},
    {"Found", "--entry probe", "-wv image.hex", "", "ok", ""},
    {"Read", "--entry version", "-B 0102 -l 0x80 0xC0 {name}.hex", "", "ok", ""},
    {"SpoiltAnswersOnTheWay", "--entry version --fault corrupt-response@2,4,6",
     "-B 0102 -e -w image.hex -v image.hex", "", "ok", ""},
    {"NoPort", nullptr, "-B 0102 -wv image.hex", "", "port",
     "Port /dev/no-such-port cannot be opened."},
    {"Silent", "--entry silent", "-wv image.hex", "", "silent",
     "Did not succeed in QV entry procedure"},
    {"VersionNotInTheTable", "--entry version", "-wv image.hex", "--expect 0203 --force",
     "unknown-version", "Found version 0x0102 but could not load profile"},
    {"GivenVersionNotInTheTable", "--entry version", "-B 0999 -wv image.hex", "", "unknown-version",
     "Could not find device profile matching specified 0x0999"},
    {"BadTable", "--entry version", "-wv image.hex", "--table bad_device.txt --force", "table",
     "could not parse attr"},
    {"NoTable", "--entry version", "-wv image.hex", "--table none.txt --force", "table",
     "file not found: ./device.txt"},
    {"BadImage", "--entry version", "-B 0102 -wv bad_checksum.hex", "--force", "file",
     "Could not process firmware file"},
    {"NothingForTheDevice", "--entry version", "-B 0102 -w elsewhere.hex", "--force", "file",
     "the image holds nothing for this device"},
    {"NothingToVerify", "--entry version", "-B 0102 -v elsewhere.hex", "", "file",
     "the image holds nothing for this device"},
    {"Erase", "--entry version --fault wrong-ack@1", "-B 0102 -e -w image.hex", "", "erase",
     "unable to erase"},
    {"EraseOfAPage", "--entry version --fault wrong-ack@2", "-B 0102 -wv image.hex", "", "erase",
     "unable to erase flash page at address 0x000000"},
    {"Write", "--entry version --fault wrong-ack@2", "-B 0102 -e -w image.hex", "", "write",
     "unable to write flash row at address 0x000000A0"},
    {"WriteOfEeprom", "--entry version --fault wrong-ack@5", "-B 0102 -e -w image.hex", "", "write",
     "unable to write EEPROM row at address 0x00001010"},
    {"ReadSpoilt", "--entry version --fault corrupt-response=1", "-B 0102 -r {name}.hex", "",
     "read", "read() at"},
    {"VerifyCannotRead", "--entry version --fault corrupt-response=1", "-B 0102 -v image.hex", "",
     "read", "giving up after having made 40 attempts, with errors ("},
    {"Mismatch", "--entry version --fault stuck-bits:0xB5:0x01:0",
     "-B 0102 -e -w image.hex -v image.hex", "", "mismatch",
     "data mismatch starting at address 0x000000A0"},
    {"RowMismatch", "--entry version --fault stuck-bits:0xB5:0x01:0", "-B 0102 -wv image.hex", "",
     "mismatch", "Row verify failure at address 0x000000A0"},
    {"Limit", "--entry silent", "-wv image.hex", "--limit 0.5", "timed-out",
     "did not end within 0.5 s"},
    {"FullDisk", "--entry version", "-B 0102 -l 0x80 0xC0 /dev/full", "", "unsaved", "/dev/full"},
    {"NothingPrinted", "--entry version", "-B 0102 -wv image.hex", "--zserial /bin/true", "failed",
     "status 0: "},
};

INSTANTIATE_TEST_SUITE_P(Real, GangVerdicts, testing::ValuesIn(verdict_cases), row_name);

class GangEnds : public GangTest
{
protected:
    /// Starts an upload to a device that never answers, and waits until the tool runs.
    std::unique_ptr<GangProcess> stuck(const QString& port) const
    {
        auto gang = std::make_unique<GangProcess>(
            folder(), QStringList{QStringLiteral("--json"), port} + words("-- -wv image.hex"));
        EXPECT_TRUE(wait_until(
            [&] { return !children_of(gang->id()).empty() && sim::has_port_lock(port); }));
        return gang;
    }
};

TEST_F(GangEnds, CrashOfTheTool)
{
    const auto simulated = device("--entry silent");
    const auto gang = stuck(simulated->port());
    ::kill(static_cast<pid_t>(children_of(gang->id()).front()), SIGSEGV);
    const GangResult result = gang->result();
    EXPECT_EQ(text(result.last("end"), "verdict"), "crashed") << result;
    EXPECT_EQ(result.status, 1);
}

TEST_F(GangEnds, FirstInterruptLetsUploadsFinish)
{
    const auto simulated = device("--entry silent");
    const auto gang = stuck(simulated->port());
    gang->send(SIGINT);
    const GangResult result = gang->result();
    EXPECT_EQ(text(result.last("end"), "verdict"), "silent") << result;
    EXPECT_EQ(result.status, 3);
}

TEST_F(GangEnds, SecondInterruptEndsUploads)
{
    const auto simulated = device("--entry silent");
    const auto gang = stuck(simulated->port());
    gang->send(SIGINT);
    // A signal that is still pending swallows another of its kind.
    gang->send(SIGTERM);
    const GangResult result = gang->result();
    EXPECT_EQ(text(result.last("end"), "verdict"), "interrupted") << result;
    EXPECT_EQ(result.status, 3);
}

TEST_F(GangEnds, InterruptStartsNothingNew)
{
    const auto first = device("--entry silent");
    const auto second = device("--entry version");
    GangProcess gang(folder(),
                     QStringList{QStringLiteral("--json"), first->port(), second->port()} +
                         words("--jobs 1 --tries 5 -- -wv image.hex"));
    ASSERT_TRUE(wait_until([&gang] { return !children_of(gang.id()).empty(); }));
    gang.send(SIGINT);
    const GangResult result = gang.result();
    EXPECT_EQ(text(result.last("end"), "verdict"), "silent") << result;
    EXPECT_EQ(result.last("end").value(QStringLiteral("tries")).toInt(), 1);
    EXPECT_TRUE(result.last("start", second->port()).isEmpty()) << result;
    EXPECT_EQ(result.last("summary").value(QStringLiteral("not_started")).toInt(), 1);
    EXPECT_EQ(result.status, 3);
}

} // namespace
