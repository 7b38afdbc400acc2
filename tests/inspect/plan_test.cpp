#include "device/Protocol.h"
#include "device/ZarnSerialDevice.h"
#include "tests/inspect/PlanTest.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;

using namespace test;

namespace
{

int frame_size(const QByteArray& payload)
{
    QByteArray frame;
    ZarnSerialDevice::encode(payload, frame);
    return frame.size();
}

int erase_size(unsigned char pages, unsigned int word_address)
{
    return frame_size(protocol::memory_command(protocol::erase_command, pages, word_address));
}

int acknowledgement_size(char opcode)
{
    return frame_size(QByteArray(1, opcode));
}

int count(const QJsonObject& plan, const char* command)
{
    return plan[QStringLiteral("commands")][QLatin1String(command)].toInt(-1);
}

int bytes(const QJsonObject& plan, const char* direction)
{
    return plan[QStringLiteral("bytes")][QLatin1String(direction)].toInt(-1);
}

double seconds(const QJsonObject& plan, const char* part)
{
    return plan[QStringLiteral("seconds")][QLatin1String(part)].toDouble(-1);
}

/// "erase: done", for each step.
std::vector<std::string> steps(const QJsonObject& plan)
{
    std::vector<std::string> texts;
    for (const QJsonValue step : plan[QStringLiteral("steps")].toArray()) {
        texts.push_back((step[QStringLiteral("step")].toString() + QStringLiteral(": ") +
                         step[QStringLiteral("outcome")].toString())
                            .toStdString());
    }
    return texts;
}

QStringList messages(const QJsonObject& plan, int step)
{
    QStringList texts;
    const QJsonArray all = plan[QStringLiteral("steps")].toArray();
    for (const QJsonValue message : all.at(step)[QStringLiteral("messages")].toArray()) {
        texts << message.toString();
    }
    return texts;
}

using PlannedRun = PlanTest;

} // namespace

TEST_F(PlannedRun, CountsTheProbeAndTheCommandsOfARun)
{
    const QJsonObject run = plan("--device 0110 -- -s port -e -w @image.hex -v @image.hex -R");
    EXPECT_EQ(count(run, "probe"), 1);
    EXPECT_EQ(count(run, "version"), 0);
    EXPECT_EQ(count(run, "erase"), 1);
    EXPECT_EQ(count(run, "write"), 1);
    EXPECT_EQ(count(run, "read"), 1);
    EXPECT_EQ(count(run, "reset"), 1);
    EXPECT_EQ(run[QStringLiteral("pages_erased")].toInt(), 30);
    EXPECT_TRUE(run[QStringLiteral("succeeds")].toBool());
}

TEST_F(PlannedRun, CountsBytesWithTheirFrames)
{
    const QJsonObject run = plan("--device 0110 -- -s port -e");
    EXPECT_EQ(bytes(run, "to_device"), 1 + erase_size(30, 0x800));
    EXPECT_EQ(bytes(run, "from_device"), 4 + acknowledgement_size(protocol::erase_command));
}

TEST_F(PlannedRun, CountsTheEchoOfAHalfDuplexLine)
{
    const QJsonObject run = plan("--device 0110 -- -s port -h -e -R");
    const QJsonObject full_duplex = plan("--device 0110 -- -s port -e -R");
    EXPECT_EQ(bytes(run, "to_device"), bytes(full_duplex, "to_device"));
    EXPECT_EQ(bytes(run, "from_device"),
              bytes(full_duplex, "from_device") + bytes(full_duplex, "to_device"));
}

TEST_F(PlannedRun, HasItsStepsInTheOrderOfTheRun)
{
    EXPECT_THAT(steps(plan("--device 0110 -- -R -v @back.hex -r @back.hex -w @image.hex -e -s p")),
                ElementsAre("entry: done", "erase: done", "write: done", "read: done",
                            "verify: done", "reset: done"));
    EXPECT_THAT(steps(plan("-- -s port -B 0110 -e -wv @image.hex")),
                ElementsAre("version: done", "write and verify: done"));
}

TEST_F(PlannedRun, CountsEachStepOnItsOwn)
{
    const QJsonArray all =
        plan("--device 0110 -- -s port -e -w @image.hex")[QStringLiteral("steps")].toArray();
    EXPECT_EQ(count(all.at(0).toObject(), "probe"), 1);
    EXPECT_EQ(count(all.at(1).toObject(), "erase"), 1);
    EXPECT_EQ(all.at(1)[QStringLiteral("pages_erased")].toInt(), 30);
    EXPECT_EQ(count(all.at(2).toObject(), "erase"), 0);
    EXPECT_EQ(count(all.at(2).toObject(), "write"), 1);
}

TEST_F(PlannedRun, DoesNotReachWhatComesAfterAFailure)
{
    const QJsonObject run = plan("-- -s port -B 0110 -v @image.hex -R");
    EXPECT_THAT(steps(run), ElementsAre("version: done", "verify: fails", "reset: not reached"));
    EXPECT_EQ(count(run, "read"), 4);
    EXPECT_EQ(count(run, "reset"), 0);
    EXPECT_TRUE(messages(run, 1).first().startsWith(QLatin1String("data mismatch")));
    EXPECT_EQ(messages(run, 1).last(), QStringLiteral("Verification failure!"));
    EXPECT_EQ(seconds(run, "closing"), 0);
}

TEST_F(PlannedRun, SeparatesTheTimesOfARun)
{
    const QJsonObject run = plan("--device 0110 -- -s port -e");
    EXPECT_NEAR(seconds(run, "entry"), 5 * 10 / 9600.0, 1e-6);
    EXPECT_EQ(seconds(run, "settling"), 1);
    EXPECT_EQ(seconds(run, "closing"), 1);
    const int line = erase_size(30, 0x800) + acknowledgement_size(protocol::erase_command);
    EXPECT_NEAR(seconds(run, "operations"), line * 10 / 115200.0 + 0.0001, 1e-6);
    EXPECT_NEAR(seconds(run, "total"), 2 + seconds(run, "entry") + seconds(run, "operations"),
                1e-5);
}

TEST_F(PlannedRun, TakesNoTimeToEnterWithAGivenVersion)
{
    const QJsonObject run = plan("-- -s port -B 0110 -e");
    EXPECT_EQ(seconds(run, "entry"), 0);
    EXPECT_EQ(seconds(run, "settling"), 0);
    EXPECT_EQ(count(run, "probe"), 0);
}

TEST_F(PlannedRun, FindsPagesThatMatchThePresentContent)
{
    const QByteArray row = QByteArray(8, '\x5A');
    QByteArray page;
    for (unsigned int address = 0x800; address < 0xC00; address += 8) {
        page += hex_record(0, address, row);
    }
    put_file(QStringLiteral("page.hex"), page + end_record);
    const QJsonObject same = plan("--before @page.hex -- -s port -B 0110 -wv @page.hex");
    EXPECT_EQ(same[QStringLiteral("pages_erased")].toInt(-1), 0);
    EXPECT_EQ(count(same, "write"), 0);
    const QJsonObject erased = plan("-- -s port -B 0110 -wv @page.hex");
    EXPECT_EQ(erased[QStringLiteral("pages_erased")].toInt(-1), 1);
    EXPECT_EQ(count(erased, "write"), 8);
}

TEST_F(PlannedRun, SaysWhatTheDeviceIsTakenToHold)
{
    EXPECT_TRUE(run_plan("-- -s port -B 0110 -e").out.contains("Assumed to be erased"));
    const inspect::Outcome known = run_plan("--before @image.hex -- -s port -B 0110 -e");
    EXPECT_FALSE(known.out.contains("Assumed to be erased"));
    EXPECT_TRUE(known.out.contains("image.hex")) << known.out.constData();
}

TEST_F(PlannedRun, ListsCommandsWithWordAndByteAddress)
{
    const QJsonArray list = plan("--list -- -s port -B 0120 -l 0x1000 0x1100 "
                                 "@back.hex")[QStringLiteral("list")]
                                .toArray();
    ASSERT_EQ(list.size(), 2);
    EXPECT_EQ(list.at(1)[QStringLiteral("command")].toString(), QStringLiteral("read"));
    EXPECT_EQ(list.at(1)[QStringLiteral("memory")].toString(), QStringLiteral("flash"));
    EXPECT_EQ(list.at(1)[QStringLiteral("word_address")].toInt(), 0x840);
    EXPECT_EQ(list.at(1)[QStringLiteral("byte_address")].toInt(), 0x1080);
    EXPECT_EQ(list.at(1)[QStringLiteral("count")].toInt(), 0x40);
}

TEST_F(PlannedRun, ListsNothingUnlessAsked)
{
    EXPECT_FALSE(plan("-- -s port -B 0110 -e").contains(QStringLiteral("list")));
}

TEST_F(PlannedRun, VerifiesWhatHasBeenReadBackBefore)
{
    const QJsonObject run = plan("-- -s port -B 0110 -w @image.hex -r @back.hex -v @back.hex");
    EXPECT_TRUE(run[QStringLiteral("succeeds")].toBool());
    EXPECT_FALSE(QFile::exists(path(QStringLiteral("back.hex"))));
}

/// The log of the erase gets into the image before that is loaded.
TEST_F(PlannedRun, FollowsOneFileThroughTwoPurposes)
{
    put_file(QStringLiteral("open.hex"),
             hex_record(0, 0x800, QByteArray::fromHex("01020304")).trimmed());
    const QJsonObject run = plan("-- -s port -B 0110 -e -w @open.hex -x @open.hex");
    EXPECT_THAT(steps(run), ElementsAre("version: done", "erase: done", "write: fails"));
    EXPECT_TRUE(messages(run, 2).last().contains(path(QStringLiteral("open.hex"))))
        << messages(run, 2).last().toStdString();
    EXPECT_TRUE(plan("-- -s port -B 0110 -e -w @open.hex")[QStringLiteral("succeeds")].toBool());
}

TEST_F(PlannedRun, OfARefusedLineNeedsNeitherTableNorDevice)
{
    const QJsonObject run = plan("--table @no_such_table -- -s port -w");
    EXPECT_THAT(codes(run), ElementsAre("P001"));
    EXPECT_THAT(steps(run), ElementsAre());
    EXPECT_EQ(bytes(run, "to_device"), 0);
    EXPECT_TRUE(run[QStringLiteral("device")].isNull());
}

TEST_F(PlannedRun, OfAVersionThatIsNoNumberHasThatProblemOnly)
{
    EXPECT_THAT(codes(plan("-- -s port -B LARK -e")), ElementsAre("P001"));
}

TEST_F(PlannedRun, RefusesAFileThatTheToolCouldNotOpen)
{
    EXPECT_THAT(codes(plan("-- -s port -B 0110 -w /")), Contains("P001"));
    EXPECT_THAT(codes(plan("-- -s port -B 0110 -r @no_such_folder/back.hex")), Contains("P001"));
    EXPECT_THAT(codes(plan("-- -s port -B 0110 -x @no_such_folder/log")), Contains("P001"));
    EXPECT_THAT(codes(plan("-- -s port -B 0110 -w ")), Contains("P001"));
}

TEST_F(PlannedRun, CannotDoWithoutADeviceWhereNoVersionIsGiven)
{
    const inspect::Outcome outcome = run_plan("-- -s port -e");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, QByteArray());
    EXPECT_TRUE(outcome.err.contains("--device")) << outcome.err.constData();
}

TEST_F(PlannedRun, CannotDoWithAMissingFile)
{
    EXPECT_EQ(run_plan("--before @missing.hex -- -s port -B 0110 -e").status, 2);
    put_file(QStringLiteral("bad.hex"), "\n:0408000001020304E7\n");
    const inspect::Outcome damaged = run_plan("--before @bad.hex -- -s port -B 0110 -e");
    EXPECT_EQ(damaged.status, 2);
    EXPECT_TRUE(damaged.err.contains("bad.hex, line 2: A checksum that"))
        << damaged.err.constData();
    EXPECT_EQ(run_plan("--table @missing.txt -- -s port -B 0110 -e").status, 2);
}

/// The uploader takes a second version byte of 0x80 or more for a negative number.
TEST_F(PlannedRun, OfADeviceWithAVersionThatTheToolMisreadsEndsAfterTheProbe)
{
    const QJsonObject run = plan("--device 0190 -- -s port -e");
    EXPECT_THAT(steps(run), ElementsAre("entry: fails", "erase: not reached"));
    EXPECT_EQ(messages(run, 0).last(),
              QStringLiteral("Found version 0xff90 but could not load profile for this version. "
                             "Aborting..."));
    EXPECT_EQ(bytes(run, "to_device"), 1);
    EXPECT_EQ(bytes(run, "from_device"), 4);
    EXPECT_EQ(seconds(run, "settling"), 1);
}

TEST_F(PlannedRun, OfABadTableEndsAsSoonAsTheVersionIsKnown)
{
    put_file(QStringLiteral("bad.txt"), table_row() + table_row({{1, "v0111:"}, {8, "much"}}));
    const QJsonObject run = plan("--table @bad.txt --device 0110 -- -s port -e");
    EXPECT_THAT(codes(run), Contains("T005"));
    EXPECT_THAT(steps(run), ElementsAre("entry: fails", "erase: not reached"));
    EXPECT_EQ(count(run, "erase"), 0);
}

TEST_F(PlannedRun, ReportsWhatIsWrongWithTheDeviceAndTheImage)
{
    put_file(QStringLiteral("odd.txt"), table_row({{7, "0x810"}}));
    put_file(QStringLiteral("bad.hex"), ":0408000001020304E7\n");
    const std::vector<std::string> found =
        codes(plan("--table @odd.txt -- -s port -B 0110 -w @bad.hex"));
    EXPECT_THAT(found, Contains("T025"));
    EXPECT_THAT(found, Contains("I005"));
    EXPECT_THAT(found, Contains("P023"));
}

TEST_F(PlannedRun, FollowsARunOnTheWrongDevice)
{
    const QJsonObject run = plan("--device 0130 -- -s port -B 0110 -e");
    EXPECT_THAT(steps(run), ElementsAre("version: done", "erase: fails"));
    EXPECT_EQ(bytes(run, "to_device"), 40 * erase_size(30, 0x800));
    EXPECT_EQ(bytes(run, "from_device"), 0);
    EXPECT_NEAR(seconds(run, "operations"), 40 * 0.3, 1e-6);
}
