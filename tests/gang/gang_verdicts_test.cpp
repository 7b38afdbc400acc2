#include "sim/line/PortLock.h"
#include "tests/gang/GangTest.h"
#include "tests/support/RowName.h"
#include "tests/support/Waiting.h"

#include <csignal>

using namespace test;

namespace
{

const QString no_port = QStringLiteral("/dev/no-such-port");

/// A fault of the device, its line or its files, and the verdict that it leads to.
struct VerdictCase {
    const char* name;
    QByteArray device; ///< options of zserial-sim; empty: no device, and a port that does not exist
    QByteArray tool;
    const char* gang;
    const char* verdict;
    const char* message; ///< start of the message
};

/// Returns a case with a device without faults.
VerdictCase good_device(const char* name, const char* tool, const char* gang = "",
                        const char* verdict = "ok", const char* message = "")
{
    return {name, "--entry version", tool, gang, verdict, message};
}

/// Returns a case with a device of a given version (-B) that has this fault.
VerdictCase fault(const char* name, const char* device_fault, const char* tool, const char* verdict,
                  const char* message)
{
    return {name,
            QByteArray("--entry version --fault ") + device_fault,
            QByteArray("-B 0102 ") + tool,
            "",
            verdict,
            message};
}

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
    const QByteArray image = file(QStringLiteral("image.hex"));
    put_file(QStringLiteral("partly.hex"),
             image.left(image.lastIndexOf(':')) + file(QStringLiteral("elsewhere.hex")));
    const auto simulated = row.device.isEmpty() ? nullptr : device(row.device.constData());
    const GangResult result =
        run(simulated ? simulated->port() : no_port, row.tool.constData(), row.gang);
    const QJsonObject end = result.last("end");
    EXPECT_EQ(text(end, "verdict"), row.verdict) << result;
    EXPECT_THAT(text(end, "message"), testing::StartsWith(row.message)) << result;
    EXPECT_EQ(result.status, std::string(row.verdict) == "ok" ? 0 : 1);
}

const char* const in_two_steps = "-e -w image.hex";
const char* const and_verify = "-e -w image.hex -v image.hex";

const std::vector<VerdictCase> verdict_cases = {
    good_device("Written", "-B 0102 -e -w image.hex -v image.hex -R"),
    good_device("WrittenAndVerified", "-B 0102 -wv image.hex"),
    {"Found", "--entry probe", "-wv image.hex", "", "ok", ""},
    good_device("Read", "-B 0102 -l 0x80 0xC0 {name}.hex"),
    fault("SpoiltAnswersOnTheWay", "corrupt-response@2,4,6", and_verify, "ok", ""),
    {"NoPort", "", "-B 0102 -wv image.hex", "", "port", "Port /dev/no-such-port cannot be opened."},
    {"Silent", "--entry silent", "-wv image.hex", "", "silent",
     "Did not succeed in QV entry procedure"},
    good_device("VersionNotInTheTable", "-wv image.hex", "--expect 0203 --force", "unknown-version",
                "Found version 0x0102 but could not load profile"),
    good_device("GivenVersionNotInTheTable", "-B 0999 -wv image.hex", "", "unknown-version",
                "Could not find device profile matching specified 0x0999"),
    good_device("BadTable", "-wv image.hex", "--table bad_device.txt --force", "table",
                "could not parse attr"),
    good_device("BadRowOfAnotherDevice", "-wv image.hex", "--expect 0102 --table bad_device.txt"),
    good_device("NoTable", "-wv image.hex", "--table none.txt --force", "table",
                "file not found: ./device.txt"),
    good_device("BadImage", "-B 0102 -wv bad_checksum.hex", "--force", "file",
                "Could not process firmware file"),
    good_device("PartlyOutsideByForce", "-B 0102 -e -w partly.hex", "--force"),
    {"ForAnotherDevice", "--entry version --device 0203", "-e -w image.hex", "", "file",
     "Bytes outside the device (I019): SOLO: 16 bytes"},
    good_device("NothingForTheDevice", "-B 0102 -w elsewhere.hex", "--force", "file",
                "the image holds nothing for this device"),
    good_device("NothingToVerify", "-B 0102 -v elsewhere.hex", "--force", "file",
                "the image holds nothing for this device"),
    fault("Erase", "wrong-ack@1", in_two_steps, "erase", "unable to erase"),
    fault("EraseOfAPage", "wrong-ack@2", "-wv image.hex", "erase",
          "unable to erase flash page at address 0x000000"),
    fault("Write", "wrong-ack@2", in_two_steps, "write",
          "unable to write flash row at address 0x000000A0"),
    fault("WriteOfEeprom", "wrong-ack@5", in_two_steps, "write",
          "unable to write EEPROM row at address 0x00001010"),
    fault("ReadSpoilt", "corrupt-response=1", "-r {name}.hex", "read", "read() at"),
    fault("VerifyCannotRead", "corrupt-response=1", "-v image.hex", "read",
          "giving up after having made 40 attempts, with errors ("),
    fault("Mismatch", "stuck-bits:0xB5:0x01:0", and_verify, "mismatch",
          "data mismatch starting at address 0x000000A0"),
    fault("RowMismatch", "stuck-bits:0xB5:0x01:0", "-wv image.hex", "mismatch",
          "Row verify failure at address 0x000000A0"),
    {"Limit", "--entry silent", "-wv image.hex", "--limit 0.5", "timed-out",
     "did not end within 0.5 s"},
    good_device("FullDisk", "-B 0102 -l 0x80 0xC0 /dev/full", "", "unsaved",
                "/dev/full is missing or not a regular file, so what was read is not saved"),
    good_device("NothingPrinted", "-B 0102 -wv image.hex", "--zserial /bin/true", "failed",
                "ended with status 0 and printed nothing"),
};

INSTANTIATE_TEST_SUITE_P(Real, GangVerdicts, testing::ValuesIn(verdict_cases), row_name);

class GangEnds : public GangTest
{
protected:
    /// Starts an upload to a device that never answers, and waits until zserial has opened the
    /// port.
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
    const std::vector<qint64> tools = children_of(gang->id());
    ASSERT_EQ(tools.size(), 1U);
    ASSERT_EQ(::kill(static_cast<pid_t>(tools.front()), SIGSEGV), 0);
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
    // Another kind of signal: a second one of the same kind is lost while the first is pending.
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
