#include "gang/Judge.h"
#include "gang/ToolCommand.h"
#include "tests/gang/GangTest.h"
#include "tests/support/RowName.h"

#include <csignal>

using namespace test;

namespace
{

using gang::Judgement;
using gang::ToolResult;

const QByteArray closing = "\nAll operations completed succesfully!\n";

Settings settings(const char* arguments)
{
    return gang::settings_from(words(arguments));
}

ToolResult exited(int status, const QByteArray& out, const QByteArray& err = {})
{
    return {ToolResult::How::Exited, status, out, err, {}};
}

std::string shown(const Judgement& judgement)
{
    return gang::name_of(judgement.verdict).toStdString() + ": " + judgement.message.toStdString();
}

std::string judged(const char* arguments, int status, const QByteArray& out)
{
    return shown(judge(exited(status, out), settings(arguments)));
}

/// A console and the judgement expected for it.
struct ConsoleCase {
    const char* name;
    const char* arguments;
    int status;
    QByteArray out;
    const char* shown;
};

std::ostream& operator<<(std::ostream& stream, const ConsoleCase& row)
{
    return stream << row.name;
}

class Judge : public testing::TestWithParam<ConsoleCase>
{
};

TEST_P(Judge, GoesByTheConsole)
{
    const ConsoleCase& row = GetParam();
    EXPECT_EQ(judged(row.arguments, row.status, row.out), row.shown);
}

const QByteArray version = "Retrieved version number during QV entry procedure: 0x0110\n";
const QByteArray set_version = "Version set to 0x0110 successfully!";

const std::vector<ConsoleCase> console_cases = {
    {"VersionAlone", "-s p", 0, version + closing, "ok: "},
    {"ProgressBeforeTheBlock", "-s p -w f", 0,
     "\rProgress 100%" + version + "Now writingMemory written!\n" + closing, "ok: "},
    {"EverythingInOneRun", "-s p -e -w f -r g -v f -R", 0,
     "\rProgress 100%" + version +
         "Erased all flash!\nNow writingMemory written!\nMemory read!\nVerifying firmware\n"
         "\rProgress 100%\nVerified!\nResetting device\n" +
         closing,
     "ok: "},
    {"WriteAndVerifyAlone", "-s p -B 110 -wv f -e -r g", 0,
     set_version + "Uploading firmware\n\rProgress 100%\nUploaded!\n" + closing, "ok: "},
    {"ErrorsThatWereOvercome", "-s p -B 110 -w f", 0,
     set_version +
         "\rProgress 5%response checksum mismatch (expected FE, got FD)\n\rProgress 100%" +
         "Now writingMemory written!\n" + closing,
     "ok: "},
    {"StatusZeroWithoutTheEnd", "-s p -w f", 0, version + "Now writingMemory written!\n",
     "failed: ended with status 0; its last lines: Retrieved version number during QV entry "
     "procedure: 0x0110 / Now "
     "writingMemory written!"},
    {"StatusZeroWithoutAnOperation", "-s p -w f -v f", 0,
     version + "Now writingMemory written!\n" + closing,
     "failed: ended with status 0; its last lines: Retrieved version number during QV entry "
     "procedure: 0x0110 / Now "
     "writingMemory written! / All operations completed succesfully!"},
    {"StatusZeroOfAnotherOperation", "-s p -w f", 0, version + "Erased all flash!\n" + closing,
     "failed: ended with status 0; its last lines: Retrieved version number during QV entry "
     "procedure: 0x0110 / Erased all "
     "flash! / All operations completed succesfully!"},
    {"StatusZeroAndMoreAfterTheEnd", "-s p", 0, version + closing + "more\n",
     "failed: ended with status 0; its last lines: Retrieved version number during QV entry "
     "procedure: 0x0110 / All "
     "operations completed succesfully! / more"},
    {"AnotherStatus", "-s p", 7, "what\n", "failed: ended with status 7; its last lines: what"},
    {"NothingAtAll", "-s p", 1, "", "failed: ended with status 1 and printed nothing"},
    {"UnknownText", "-s p", 1, "one\ntwo\nthree\nfour\n",
     "failed: ended with status 1; its last lines: two / three / four"},
    {"ReadFileLost", "-s p -r g", 0,
     version + "Could not open file to read data into!Memory read!\n" + closing,
     "unsaved: g could not be opened to save what was read"},
    {"ReadFileLostAndReadFailed", "-s p -r g", 1,
     "giving up after having made 2 attempts, with errors (Response wait timed out\nResponse wait "
     "timed out\n)\nread() at 00000800 could not be performed\n" +
         version + "Could not open file to read data into!Failed to read memory, aborting...\n",
     "read: read() at 00000800 could not be performed"},
    {"Port", "-s p", 1, "Port p cannot be opened. Aborting...\n",
     "port: Port p cannot be opened. Aborting..."},
    {"PortLaterOn", "-s p -B 110 -w f", 1,
     set_version + "cannot open port p (No such file or directory)\nunable to write flash row at "
                   "address 0x00000800\nNow writingFailed to write memory, aborting...\n",
     "port: cannot open port p (No such file or directory)"},
    {"PortBeforeWriteAndVerify", "-s p -B 110 -wv f", 1,
     set_version + "Uploading firmware\ncannot open port p (No such file or "
                   "directory)\n\nWrite-and-verify failure!\n",
     "port: cannot open port p (No such file or directory)"},
    {"PortDuringEntry", "-s p", 1,
     "cannot open port p (Permission denied)\nDid not succeed in QV entry procedure, aborting...",
     "port: cannot open port p (Permission denied)"},
    {"Silent", "-s p", 1,
     "giving up after having made 3 attempts, with errors (Response wait timed out\n)\nDid not "
     "succeed in QV entry procedure, aborting...",
     "silent: Did not succeed in QV entry procedure, aborting..."},
    {"VersionNotInTheTable", "-s p", 1,
     "no profile for device (bootloader version = 0112)\nFound version 0x0112 but could not load "
     "profile for this version. Aborting...",
     "unknown-version: Found version 0x0112 but could not load profile for this version. "
     "Aborting..."},
    {"GivenVersionNotInTheTable", "-s p -B 10112", 1,
     "Could not find device profile matching specified 0x10112, aborting...",
     "unknown-version: Could not find device profile matching specified 0x10112, aborting..."},
    {"VersionRequest", "-s p -V", 1, "Version request failed, aborting...\n",
     "unknown-version: Version request failed, aborting..."},
    {"FileInUse", "-s p -w f", 1, "Could not open file f for write op, aborting...\n",
     "file: Could not open file f for write op, aborting..."},
    {"LogInUse", "-s p -x f", 1, "Could not open f for writing!\n",
     "file: Could not open f for writing!"},
    {"BadImageOfWrite", "-s p -w f", 1,
     version + "Could not process firmware file f as intel hex 32 format during write, aborting...",
     "file: Could not process firmware file f as intel hex 32 format during write, aborting..."},
    {"BadImageAfterTheErase", "-s p -B 110 -e -w f", 1,
     set_version + "Erased all flash!\nCould not process firmware file f as intel hex 32 format "
                   "during write, aborting...",
     "file: Could not process firmware file f as intel hex 32 format during write, aborting..."},
    {"Erase", "-s p -e", 1,
     "unable to erase 4 flash pages at address 0x00000800\n" + version +
         "Erase all flash failed? Aborting...\n",
     "erase: unable to erase 4 flash pages at address 0x00000800"},
    {"EraseWithoutAWord", "-s p -E 1 2", 1, version + "Failed to erase flash range, aborting...\n",
     "erase: Failed to erase flash range, aborting..."},
    {"UnusableGeometry", "-s p -w f", 1,
     "unusable geometry in device profile 'X': flash_row_size is 0, expected 1 to 2\n" + version +
         "Now writingFailed to write memory, aborting...\n",
     "table: unusable geometry in device profile 'X': flash_row_size is 0, expected 1 to 2"},
    {"WriteInTheMiddle", "-s p -B 110 -w f", 1,
     set_version + "\rProgress 50%giving up after having made 2 attempts, with errors (Response "
                   "wait timed out\nResponse wait timed out\n)\nunable to write flash row at "
                   "address 0x00000900\nNow writingFailed to write memory, aborting...\n",
     "write: unable to write flash row at address 0x00000900"},
    {"RangeOutside", "-s p -W 1 2 f", 1,
     "Cannot write to address range 0x1 0x1 outside                 of flash addresses 0x1 0x1 or "
     "eeprom addresses 0x1 0x1\n" +
         version + "Now writingFailed to write memory range, aborting...\n",
     "write: Cannot write to address range 0x1 0x1 outside                 of flash addresses 0x1 "
     "0x1 or eeprom addresses 0x1 0x1"},
    {"VerifyTimesOut", "-s p -v f", 1,
     version +
         "Verifying firmware\ngiving up after having made 3 attempts, with errors (Response "
         "wait timed out\nCould not decode message\nResponse wait timed out\n)\n\nVerification "
         "failure!\n",
     "read: giving up after having made 3 attempts, with errors (Response wait timed out; Could "
     "not decode message)"},
    {"VerifyFindsNothing", "-s p -v f", 1,
     version + "Verifying firmware\n\nVerification failure!\n",
     "file: the image holds nothing for this device"},
    {"VerifyDiffers", "-s p -B 110 -v f", 1,
     set_version + "Verifying firmware\n\rProgress 10%data mismatch starting at address "
                   "0x00000840\ndevice data size 2: 01 02\nexpected data 2: 01 03\n\nVerification "
                   "failure!\n",
     "mismatch: data mismatch starting at address 0x00000840"},
    {"VerifyDiffersAfterErrors", "-s p -e -v f", 1,
     "response checksum mismatch (expected FE, got FD)\n" + version +
         "Erased all flash!\nVerifying firmware\ndata mismatch starting at address "
         "0x00000840\ndevice data size 1: 01\nexpected data 1: 02\n\nVerification failure!\n",
     "mismatch: data mismatch starting at address 0x00000840"},
    {"WriteAndVerifyErase", "-s p -wv f", 1,
     version + "Uploading firmware\n\rProgress 0%unable to erase flash page at address "
               "0x00000800\n\nWrite-and-verify failure!\n",
     "erase: unable to erase flash page at address 0x00000800"},
    {"WriteAndVerifyRead", "-s p -wv f", 1,
     version + "Uploading firmware\nunable to verify read flash row at address "
               "0x00000800\n\nWrite-and-verify failure!\n",
     "read: unable to verify read flash row at address 0x00000800"},
    {"WriteAndVerifyDiffers", "-s p -wv f", 1,
     version + "Uploading firmware\nRow verify failure at address 0x00000800\n\nWrite-and-verify "
               "failure!\n",
     "mismatch: Row verify failure at address 0x00000800"},
    // The failure message of an operation that was not requested proves nothing.
    {"FailureOfAnotherOperation", "-s p -w f", 1,
     version + "Verifying firmware\n\nVerification failure!\n",
     "failed: ended with status 1; its last lines: Retrieved version number during QV entry "
     "procedure: 0x0110 / Verifying "
     "firmware / Verification failure!"},
};

INSTANTIATE_TEST_SUITE_P(Console, Judge, testing::ValuesIn(console_cases), row_name);

TEST(JudgeNames, AFileNameLikeAMessageChangesNothing)
{
    EXPECT_EQ(judged("-s p -r Verification_failure!", 1,
                     "read() at 00000800 could not be performed\n" + version +
                         "Failed to read memory, aborting...\n"),
              "read: read() at 00000800 could not be performed");
    EXPECT_EQ(judged("-s p -w x", 1,
                     "Could not open file Port x cannot be opened. for write op, "
                     "aborting...\n"),
              "file: Could not open file Port x cannot be opened. for write op, aborting...");
}

TEST(JudgeVersion, IsThatOfTheConsole)
{
    EXPECT_EQ(judge(exited(0, version + closing), settings("-s p")).version, 0x0110);
    EXPECT_EQ(judge(exited(0, "Version set to 0x10110 successfully!" + closing),
                    settings("-s p -B 10110"))
                  .version,
              0x0110);
    EXPECT_EQ(judge(exited(1, "Found version 0x0112 but could not load profile for this version. "
                              "Aborting..."),
                    settings("-s p"))
                  .version,
              0x0112);
    EXPECT_FALSE(judge(exited(1, "Port p cannot be opened. Aborting...\n"), settings("-s p"))
                     .version.has_value());
}

TEST(JudgeTouch, AnOperationMayHaveChangedTheDevice)
{
    EXPECT_FALSE(
        judge(exited(1, "Port p cannot be opened. Aborting...\n"), settings("-s p -w f")).touched);
    EXPECT_FALSE(judge(exited(1, "Did not succeed in QV entry procedure, aborting..."),
                       settings("-s p -w f"))
                     .touched);
    EXPECT_FALSE(
        judge(exited(0, version + "Memory read!\n" + closing), settings("-s p -r f")).touched);
    EXPECT_TRUE(
        judge(exited(0, version + "Now writingMemory written!\n" + closing), settings("-s p -w f"))
            .touched);
    EXPECT_TRUE(judge(exited(1, "what"), settings("-s p -w f")).touched);
}

ToolResult signalled(int signal, const QByteArray& err = {})
{
    return {ToolResult::How::Signalled, signal, {}, err, {}};
}

TEST(JudgeSignal, AnAbortIsTheTablesOnlyIfTheToolSaysSo)
{
    const Settings any = settings("-s p");
    EXPECT_EQ(shown(judge(
                  signalled(SIGABRT, "\"file not found: ./device.txt\"\nterminate called\n"), any)),
              "table: file not found: ./device.txt");
    EXPECT_EQ(shown(judge(signalled(SIGABRT, "Trying\n\"unparsable profile data\"\n"), any)),
              "table: unparsable profile data");
    EXPECT_EQ(
        shown(judge(signalled(SIGABRT, "could not open 'file not found: ./device.txt'\n"), any)),
        "crashed: ended by signal 6");
    EXPECT_EQ(shown(judge(signalled(SIGSEGV, "\"unparsable profile data\"\n"), any)),
              "crashed: ended by signal 11");
    EXPECT_EQ(shown(judge(signalled(SIGKILL), any)), "crashed: ended by signal 9");
}

TEST(JudgeSignal, OneThatAsksForTheEndInterrupts)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EQ(judge(signalled(signal), settings("-s p")).verdict, gang::Verdict::Interrupted);
    }
}

} // namespace
