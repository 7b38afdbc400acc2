#include "sim/device/Error.h"
#include "sim/program/Arguments.h"
#include "tests/sim/Complaint.h"

#include <gtest/gtest.h>

using namespace test;
using sim::Arguments;
using sim::Entry;
using sim::Error;
using sim::Options;
using sim::parse_arguments;

namespace
{

Arguments parse(const char* words = "")
{
    return parse_arguments(QString::fromLatin1("zserial-sim %1")
                               .arg(QString::fromLatin1(words))
                               .split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

std::string complaint_about_words(const char* words)
{
    return test::complaint_of([&] { parse(words); });
}

} // namespace

TEST(SimArguments, ServeAProbedDeviceOfTheTableInTheFolderWithoutMore)
{
    const Arguments arguments = parse();
    EXPECT_EQ(arguments.action, Arguments::Action::Serve);
    EXPECT_EQ(arguments.table, QStringLiteral("./device.txt"));
    EXPECT_EQ(arguments.version, std::nullopt);
    EXPECT_EQ(arguments.rig.device.entry, Entry::Probe);
    EXPECT_EQ(arguments.rig.device.echo, Options::Echo::None);
    EXPECT_TRUE(arguments.memory_image.isEmpty());
    EXPECT_TRUE(arguments.save_image.isEmpty());
    EXPECT_TRUE(arguments.check_image.isEmpty());
    EXPECT_FALSE(arguments.ignore_outside);
    EXPECT_TRUE(arguments.summary.isEmpty());
    EXPECT_FALSE(arguments.rig.device.keeps_record);
    EXPECT_FALSE(arguments.rig.device.paced);
    EXPECT_EQ(arguments.rig.device.latency_ms, 0);
    EXPECT_EQ(arguments.rig.device.erase_page_ms, 0);
    EXPECT_EQ(arguments.rig.device.write_row_ms, 0);
    EXPECT_FALSE(arguments.rig.faults.are_any());
    EXPECT_EQ(arguments.rig.faults.seed, 1U);
    EXPECT_TRUE(arguments.trace.isEmpty());
    EXPECT_TRUE(arguments.replay.isEmpty());
    EXPECT_TRUE(arguments.state.isEmpty());
    EXPECT_TRUE(arguments.link.isEmpty());
    EXPECT_TRUE(arguments.command.isEmpty());
    EXPECT_FALSE(arguments.json);
}

TEST(SimArguments, CarryEverythingAskedFor)
{
    const Arguments arguments = parse("--table t.txt --device 0203 --entry silent --echo "
                                      "--memory m.hex --save s.hex --check c.hex");
    EXPECT_EQ(arguments.table, QStringLiteral("t.txt"));
    EXPECT_EQ(arguments.version, 0x0203);
    EXPECT_EQ(arguments.rig.device.entry, Entry::Silent);
    EXPECT_EQ(arguments.rig.device.echo, Options::Echo::Apart);
    EXPECT_EQ(arguments.memory_image, QStringLiteral("m.hex"));
    EXPECT_EQ(arguments.save_image, QStringLiteral("s.hex"));
    EXPECT_EQ(arguments.check_image, QStringLiteral("c.hex"));
}

TEST(SimArguments, CarryTimesFaultsAndFiles)
{
    const Arguments arguments =
        parse("--pace --latency-ms 16 --erase-ms 20 --write-ms 3 --fault noise@1 --fault=unplug=1 "
              "--seed 18446744073709551615 --trace t --replay r --state s --link l --json "
              "--summary u --ignore-outside");
    EXPECT_TRUE(arguments.rig.device.paced);
    EXPECT_EQ(arguments.rig.device.latency_ms, 16);
    EXPECT_EQ(arguments.rig.device.erase_page_ms, 20);
    EXPECT_EQ(arguments.rig.device.write_row_ms, 3);
    ASSERT_EQ(arguments.rig.faults.rules.size(), 2U);
    EXPECT_EQ(arguments.rig.faults.rules[0].kind, sim::FaultKind::Noise);
    EXPECT_EQ(arguments.rig.faults.rules[1].kind, sim::FaultKind::Unplug);
    EXPECT_EQ(arguments.rig.faults.seed, 18446744073709551615U);
    EXPECT_EQ(arguments.trace, QStringLiteral("t"));
    EXPECT_EQ(arguments.summary, QStringLiteral("u"));
    EXPECT_TRUE(arguments.ignore_outside);
    EXPECT_EQ(arguments.replay, QStringLiteral("r"));
    EXPECT_EQ(arguments.state, QStringLiteral("s"));
    EXPECT_EQ(arguments.link, QStringLiteral("l"));
    EXPECT_TRUE(arguments.json);
}

TEST(SimArguments, KnowTheWaysOfAnEcho)
{
    const auto echo = [](const char* words) {
        return parse(words).rig.device.echo;
    };
    EXPECT_EQ(echo("--echo apart"), Options::Echo::Apart);
    EXPECT_EQ(echo("--echo together"), Options::Echo::Together);
    EXPECT_EQ(echo("--echo=together --json"), Options::Echo::Together);
    EXPECT_EQ(echo("--json --echo"), Options::Echo::Apart);
    EXPECT_EQ(echo("--echo --json"), Options::Echo::Apart);
    EXPECT_EQ(echo("--echo --exec -- tool"), Options::Echo::Apart);
}

TEST(SimArguments, LeaveTheCommandAsItIs)
{
    const QStringList command = {QStringLiteral("tool"), QStringLiteral("-s"), QStringLiteral("{}"),
                                 QStringLiteral("--echo"), QStringLiteral("--json")};
    const Arguments arguments = parse("--json --exec -- tool -s {} --echo --json");
    EXPECT_EQ(arguments.command, command);
    EXPECT_EQ(arguments.rig.device.echo, Options::Echo::None);
    EXPECT_EQ(parse("--exec --json -- tool -s {} --echo --json").command, command);
}

TEST(SimArguments, TakeVersionsInHexadecimalWithAndWithoutPrefix)
{
    EXPECT_EQ(parse("--device 0102").version, 0x0102);
    EXPECT_EQ(parse("--device 0x0102").version, 0x0102);
    EXPECT_EQ(parse("--device ffAA").version, 0xFFAA);
}

TEST(SimArguments, KnowTheEntryBehavioursByName)
{
    EXPECT_EQ(parse("--entry probe").rig.device.entry, Entry::Probe);
    EXPECT_EQ(parse("--entry version").rig.device.entry, Entry::Version);
    EXPECT_EQ(parse("--entry silent").rig.device.entry, Entry::Silent);
}

TEST(SimArguments, PutHelpAndVersionBeforeAnythingElse)
{
    EXPECT_EQ(parse("--list --version").action, Arguments::Action::ShowVersion);
    EXPECT_EQ(parse("--list").action, Arguments::Action::ListDevices);
    const Arguments help = parse("--list --version --help");
    EXPECT_EQ(help.action, Arguments::Action::ShowHelp);
    for (const char* option :
         {"--table",    "--device",   "--list",  "--entry", "--echo",   "--pace",   "--latency-ms",
          "--erase-ms", "--write-ms", "--fault", "--seed",  "--replay", "--memory", "--save",
          "--check",    "--state",    "--link",  "--trace", "--json",   "--exec"}) {
        EXPECT_TRUE(help.help_text.contains(QLatin1String(option))) << option;
    }
    for (const auto& row : sim::fault_kinds) {
        const sim::FaultKind kind = row.kind;
        EXPECT_TRUE(help.help_text.contains(QLatin1String(name_of(kind)))) << name_of(kind);
    }
}

TEST(SimArguments, AreRefusedWithTheReason)
{
    const std::vector<std::pair<const char*, const char*>> refusals = {
        {"--unknown", "Unknown option 'unknown'."},
        {"--device", "Missing value after '--device'."},
        {"stray", "'stray' is not an option; to run a command, write --exec -- COMMAND"},
        {"--device 12345", "--device: '12345' is not a bootloader version such as 0102 or 0x0102"},
        {"--device probe", "--device: 'probe' is not a bootloader version such as 0102 or 0x0102"},
        {"--entry loud", "--entry must be probe, version or silent, not 'loud'"},
        {"--save=", "--save needs a value"},
        {"--link=", "--link needs a value"},
        {"--echo loud", "--echo must be apart or together, not 'loud'"},
        {"--latency-ms soon",
         "--latency-ms: 'soon' is not a number of milliseconds from 0 to 600000"},
        {"--erase-ms -1", "--erase-ms: '-1' is not a number of milliseconds from 0 to 600000"},
        {"--write-ms 600001",
         "--write-ms: '600001' is not a number of milliseconds from 0 to 600000"},
        {"--fault noise=2", "--fault noise=2: '2' is not a probability from 0 to 1"},
        {"--seed x", "--seed: 'x' is not a whole number from 0 to 18446744073709551615"},
        {"--seed -1", "--seed: '-1' is not a whole number from 0 to 18446744073709551615"},
        {"--exec", "--exec needs a command: --exec -- COMMAND {} ..."},
        {"-- tool", "'tool' is not an option; to run a command, write --exec -- COMMAND"},
        {"--exec tool -s {}", "Unknown option 's'."},
    };
    for (const auto& [words, complaint] : refusals) {
        EXPECT_EQ(complaint_about_words(words), complaint);
    }
    EXPECT_THROW(
        parse_arguments({QStringLiteral("zserial-sim"), QStringLiteral("--check"), QString()}),
        Error);
}
