#include "inspect/Subcommand.h"
#include "tests/inspect/InspectTest.h"
#include "tests/support/RowName.h"

using namespace test;
using CommandLine = InspectTest;

TEST_F(CommandLine, WithoutASubcommandCannotBeCarriedOut)
{
    const inspect::Outcome outcome = inspect_run({});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, QByteArray());
    EXPECT_EQ(outcome.err.toStdString(),
              "zserial-inspect: no subcommand is named; --help lists them\n");
}

TEST_F(CommandLine, NamesAnUnknownSubcommand)
{
    const inspect::Outcome outcome = inspect_run({QStringLiteral("tabel")});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err.toStdString(),
              "zserial-inspect: there is no subcommand tabel; --help lists them\n");
}

TEST_F(CommandLine, ListsEverySubcommandInItsHelp)
{
    const inspect::Outcome outcome = inspect_run({QStringLiteral("--help")});
    EXPECT_EQ(outcome.status, 0);
    for (const inspect::Subcommand* subcommand : inspect::subcommands()) {
        EXPECT_TRUE(outcome.out.contains(subcommand->summary)) << outcome.out.constData();
    }
}

TEST_F(CommandLine, OfEverySubcommandHasHelpVersionAndJson)
{
    for (const inspect::Subcommand* subcommand : inspect::subcommands()) {
        const QString name = QString::fromLatin1(subcommand->name);
        const inspect::Outcome help = inspect_run({name, QStringLiteral("--help")});
        EXPECT_EQ(help.status, 0);
        EXPECT_TRUE(help.out.contains("--json")) << help.out.constData();
        EXPECT_EQ(inspect_run({name, QStringLiteral("--version")}).status, 0);
    }
}

namespace
{

struct WrongLine {
    const char* name;
    const char* words;
    const char* reason;
};

class WrongCommandLine : public InspectTest, public testing::WithParamInterface<WrongLine>
{
};

} // namespace

TEST_P(WrongCommandLine, IsRefusedWithAReason)
{
    const inspect::Outcome outcome =
        inspect_run(QString::fromLatin1(GetParam().words).split(QLatin1Char(' ')));
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, QByteArray());
    EXPECT_EQ(outcome.err.toStdString(),
              std::string("zserial-inspect: ") + GetParam().reason + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    Each, WrongCommandLine,
    testing::Values(
        WrongLine{"unknown_option", "table --colour", "Unknown option 'colour'."},
        WrongLine{"two_tables", "table examples/device.txt examples/device.txt",
                  "table takes one file"},
        WrongLine{"no_version", "table examples/device.txt --explain LARK",
                  "LARK is not a version; write up to four hexadecimal digits"},
        WrongLine{"unknown_version", "table examples/device.txt --explain 0999",
                  "examples/device.txt has no usable row for version 0999"},
        WrongLine{"empty_version",
                  "table examples/device.txt --explain=", "--explain needs a value"},
        WrongLine{"no_image", "image", "image needs a file"},
        WrongLine{"which_device", "image examples/blink.hex --table examples/device.txt",
                  "examples/device.txt has several devices: choose one with --device"},
        WrongLine{"no_device_at_all", "image examples/blink.hex --table examples/README.md",
                  "examples/README.md has no usable device"},
        WrongLine{"no_table", "image examples/blink.hex --table no_such.txt",
                  "cannot read the table no_such.txt: there is no such file"},
        WrongLine{"drawing_of_two", "image --svg x.svg examples/blink.hex examples/wren-32e.hex",
                  "--svg draws one image, but 2 are named"},
        WrongLine{"drawing_over_the_image", "image --svg examples/blink.hex examples/blink.hex",
                  "examples/blink.hex is read by this command and would be overwritten"},
        WrongLine{"no_log", "log", "log takes one file"},
        WrongLine{"two_logs", "log a.log b.log", "log takes one file"},
        WrongLine{"plan_of_which_device", "plan --table examples/device.txt -- -s p -e",
                  "name the device that will answer with --device, because the command line has "
                  "no -B"},
        WrongLine{"plan_without_content",
                  "plan --table examples/device.txt --device 0110 --before no_such.hex -- -s p -e",
                  "cannot read no_such.hex: there is no such file"},
        WrongLine{"plan_of_a_folder",
                  "plan --table examples/device.txt --device 0110 --before examples -- -s p -e",
                  "cannot read examples: it is not a regular file"},
        WrongLine{"ports_of_a_file", "ports /dev/ttyUSB0", "ports takes no file"},
        WrongLine{"drawing_over_the_table",
                  "image --svg examples/device.txt examples/blink.hex --table examples/device.txt "
                  "--device 0110",
                  "examples/device.txt is read by this command and would be overwritten"}),
    row_name);

TEST_F(CommandLine, TakesAVersionAsTheTableTheSimulatorOrTheUploaderHaveIt)
{
    for (const char* version : {"0110", "110", "0x0110", "v0110:"}) {
        const inspect::Outcome outcome =
            inspect_run({QStringLiteral("table"), QStringLiteral("examples/device.txt"),
                         QStringLiteral("--explain"), QString::fromLatin1(version)});
        EXPECT_EQ(outcome.status, 0) << version;
        EXPECT_TRUE(outcome.out.contains("0110 LARK-32")) << version;
    }
}

TEST_F(CommandLine, NeedsNoVersionForATableOfOneDevice)
{
    const QString table = put_file(QStringLiteral("one.txt"), table_row());
    const QJsonObject report =
        inspect_json({QStringLiteral("image"), QStringLiteral("examples/blink.hex"),
                      QStringLiteral("--table"), table});
    EXPECT_EQ(report[QStringLiteral("device")][QStringLiteral("name")], QStringLiteral("LARK-32"));
}
