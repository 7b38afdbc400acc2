#include "sim/Arguments.h"

#include <gtest/gtest.h>

using sim::Arguments;
using sim::Entry;
using sim::Options;
using sim::parse_arguments;
using sim::UsageError;

namespace
{

Arguments parse(const char* words = "")
{
    return parse_arguments(QString::fromLatin1("zserial-sim %1")
                               .arg(QString::fromLatin1(words))
                               .split(QLatin1Char(' '), Qt::SkipEmptyParts));
}

std::string complaint_about(const char* words)
{
    try {
        parse(words);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "nothing thrown";
}

} // namespace

TEST(SimArguments, ServeAProbedDeviceOfTheTableInTheFolderWithoutMore)
{
    const Arguments arguments = parse();
    EXPECT_EQ(arguments.action, Arguments::Action::Serve);
    EXPECT_EQ(arguments.table, QStringLiteral("./device.txt"));
    EXPECT_EQ(arguments.version, std::nullopt);
    EXPECT_EQ(arguments.options.entry, Entry::Probe);
    EXPECT_EQ(arguments.options.echo, Options::Echo::None);
    EXPECT_TRUE(arguments.memory_image.isEmpty());
    EXPECT_TRUE(arguments.save_image.isEmpty());
    EXPECT_TRUE(arguments.check_image.isEmpty());
}

TEST(SimArguments, CarryEverythingAskedFor)
{
    const Arguments arguments = parse("--table t.txt --device 0203 --entry silent --echo "
                                      "--memory m.hex --save s.hex --check c.hex");
    EXPECT_EQ(arguments.table, QStringLiteral("t.txt"));
    EXPECT_EQ(arguments.version, 0x0203);
    EXPECT_EQ(arguments.options.entry, Entry::Silent);
    EXPECT_EQ(arguments.options.echo, Options::Echo::Apart);
    EXPECT_EQ(arguments.memory_image, QStringLiteral("m.hex"));
    EXPECT_EQ(arguments.save_image, QStringLiteral("s.hex"));
    EXPECT_EQ(arguments.check_image, QStringLiteral("c.hex"));
}

TEST(SimArguments, TakeVersionsInHexadecimalWithAndWithoutPrefix)
{
    EXPECT_EQ(parse("--device 0102").version, 0x0102);
    EXPECT_EQ(parse("--device 0x0102").version, 0x0102);
    EXPECT_EQ(parse("--device ffAA").version, 0xFFAA);
}

TEST(SimArguments, KnowTheEntryBehavioursByName)
{
    EXPECT_EQ(parse("--entry probe").options.entry, Entry::Probe);
    EXPECT_EQ(parse("--entry version").options.entry, Entry::Version);
    EXPECT_EQ(parse("--entry silent").options.entry, Entry::Silent);
}

TEST(SimArguments, PutHelpAndVersionBeforeAnythingElse)
{
    EXPECT_EQ(parse("--list --version").action, Arguments::Action::ShowVersion);
    EXPECT_EQ(parse("--list").action, Arguments::Action::ListDevices);
    const Arguments help = parse("--list --version --help");
    EXPECT_EQ(help.action, Arguments::Action::ShowHelp);
    for (const char* option :
         {"--table", "--device", "--list", "--entry", "--echo", "--memory", "--save", "--check"}) {
        EXPECT_TRUE(help.help_text.contains(QLatin1String(option))) << option;
    }
}

TEST(SimArguments, AreRefusedWithTheReason)
{
    const std::vector<std::pair<const char*, const char*>> refusals = {
        {"--unknown", "Unknown option 'unknown'."},
        {"--device", "Missing value after '--device'."},
        {"stray", "'stray' is no option"},
        {"--device 12345", "'12345' is no bootloader version such as 0102 or 0x0102"},
        {"--device probe", "'probe' is no bootloader version such as 0102 or 0x0102"},
        {"--entry loud", "'loud' is no --entry behaviour: probe, version or silent"},
        {"--save=", "--save needs the name of an image"},
    };
    for (const auto& [words, complaint] : refusals) {
        EXPECT_EQ(complaint_about(words), complaint);
    }
    EXPECT_THROW(
        parse_arguments({QStringLiteral("zserial-sim"), QStringLiteral("--check"), QString()}),
        UsageError);
}
