#include "app/CommandLine.h"
#include "app/OperationDispatch.h"
#include "tests/app/Words.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

// A command line as a whole: its words, its checks in their order, and its operations.

namespace
{

/// What was done to files, such as "check a.hex".
std::vector<std::string>& done()
{
    static std::vector<std::string> all;
    return all;
}

bool note_check(const QString& name)
{
    done().push_back("check " + name.toStdString());
    return true;
}

bool note_log(const QString& name)
{
    done().push_back("log " + name.toStdString());
    return !name.startsWith(QLatin1String("nowhere/"));
}

std::string refusal_of(const char* line)
{
    done().clear();
    Settings settings;
    const auto failure = command_line::take(words(line), {note_check, note_log}, settings);
    return failure ? failure->message.toStdString() : std::string();
}

/// "-w(a.hex)" for an option with its arguments, "(a)" for another word.
std::vector<std::string> split(const char* line)
{
    std::vector<std::string> texts;
    for (const command_line::GivenWord& word : command_line::split(words(line))) {
        const std::string arguments = word.following.join(QLatin1Char(' ')).toStdString();
        texts.push_back(word.option == nullptr ? "(" + word.text.toStdString() + ")"
                                               : word.text.toStdString() + "(" + arguments + ")");
    }
    return texts;
}

std::vector<Operation> operations_in(const char* line)
{
    Settings settings;
    EXPECT_FALSE(command_line::scan(words(line), note_check, settings).has_value());
    return operations_of(settings);
}

} // namespace

TEST(SplitLine, GivesEachOptionItsArguments)
{
    EXPECT_THAT(split("-W 0 1 a.hex stray -e -w -R"),
                ElementsAre("-W(0 1 a.hex)", "(stray)", "-e()", "-w(-R)"));
}

TEST(SplitLine, GivesTheLastOptionAsManyArgumentsAsThereAre)
{
    EXPECT_THAT(split("-l 0x800"), ElementsAre("-l(0x800)"));
    EXPECT_THAT(split("-s"), ElementsAre("-s()"));
}

TEST(TakenLine, NeedsAnArgument)
{
    EXPECT_EQ(refusal_of(""), "Please specify an argument");
}

TEST(TakenLine, OpensTheLogOnceNothingConflicts)
{
    EXPECT_EQ(refusal_of("-x f.log -w a.hex"), "");
    EXPECT_THAT(done(), ElementsAre("check a.hex", "log f.log"));
    EXPECT_NE(refusal_of("-x f.log -w a.hex -W 0 1 a.hex"), "");
    EXPECT_THAT(done(), ElementsAre("check a.hex", "check a.hex"));
    EXPECT_EQ(refusal_of("-w a.hex"), "");
    EXPECT_THAT(done(), ElementsAre("check a.hex"));
}

TEST(TakenLine, OpensTheLogBeforeItAsksForARequest)
{
    EXPECT_NE(refusal_of("-x f.log -V -b"), "");
    EXPECT_THAT(done(), ElementsAre("log f.log"));
    EXPECT_EQ(refusal_of("-x nowhere/f.log -V -b"), "Could not open nowhere/f.log for writing!\n");
}

TEST(Operations, AreInTheOrderInWhichTheyAreCarriedOut)
{
    EXPECT_THAT(
        operations_in("-v a.hex -r b.hex -w c.hex -e"),
        ElementsAre(Operation::Erase, Operation::Write, Operation::Read, Operation::Verify));
    EXPECT_THAT(operations_in("-l 0 1 b.hex -W 0 1 c.hex -E 0 1"),
                ElementsAre(Operation::Erase, Operation::Write, Operation::Read));
    EXPECT_THAT(operations_in("-R"), IsEmpty());
}

TEST(Operations, AreOnlyOneWithWriteAndVerify)
{
    EXPECT_THAT(operations_in("-wv a.hex -e -r b.hex -w c.hex -v d.hex"),
                ElementsAre(Operation::WriteAndVerify));
}
