#include "tests/device/AbortTriggers.h"
#include "tests/device/TargetFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace test;

namespace
{

using Lines = SignalRecorder::Lines;

bool read(OperationBench& bench)
{
    TargetFile target;
    return bench.line.device.read(target.file, bench.abort, true, true);
}

bool read_range(OperationBench& bench)
{
    TargetFile target;
    return bench.line.device.read_range(target.file, bench.abort, true, true, 0x280, 0x1030);
}

bool write(OperationBench& bench)
{
    return bench.line.device.write(&bench.image, bench.abort, true, true);
}

bool write_range(OperationBench& bench)
{
    return bench.line.device.write_range(&bench.image, 0x280, 0x1020, bench.abort, true, true);
}

bool verify(OperationBench& bench)
{
    return bench.verify();
}

bool compare_and_write(OperationBench& bench)
{
    return bench.write_with_verify(false);
}

bool write_uncompared(OperationBench& bench)
{
    return bench.write_with_verify(true);
}

const char* const aborted = "sig_error upload_firmware() aborted by user";
const char* const verify_aborted = "sig_error verify_firmware() aborted by user";

/// The number of commands that an operation has sent in total when a stop is requested at each of
/// its commands, at each of its progress reports, and before it begins. All of them: it was too
/// late.
struct AbortPoints {
    const char* name;
    bool (*operation)(OperationBench&);
    const char* message;
    const char* device;
    Extents image;
    std::vector<unsigned int> at_command;
    std::vector<unsigned int> at_progress;
    unsigned int before;
    bool installed = false;          ///< whether the device holds the image
    unsigned int differing_byte = 0; ///< except for this byte
};

const Extents two_pages_and_eeprom{{0x100, 0x100}, {0x1000, 4}};

const AbortPoints abort_points[] = {
    {"Read", read, aborted, "small", {}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, {}, 0},
    {"ReadWithoutEeprom", read, aborted, "no-eeprom", {}, {1, 2, 3, 4, 5, 6, 7, 8}, {}, 0},
    {"ReadWithoutFlash", read, aborted, "no-flash-range", {}, {1, 2, 3}, {}, 0},
    // Each step is one request of two commands.
    {"ReadOfWideBlocks",
     read,
     aborted,
     "wide-blocks",
     {},
     {2, 2, 4, 4, 6, 6, 8, 8, 9, 10, 11},
     {},
     0},
    // Two rows, and EEPROM in one request of three commands.
    {"ReadRange", read_range, aborted, "small", {}, {1, 2, 5, 5, 5}, {}, 0},
    {"Write",
     write,
     aborted,
     "small",
     {{0x100, 0x80}, {0x1000, 0x20}},
     {1, 2, 3, 4},
     {0, 1, 2, 3, 4},
     0},
    {"WriteOfFlash", write, aborted, "no-eeprom", {{0x100, 0x80}}, {1, 2}, {0, 1, 2}, 0},
    {"WriteOfEeprom", write, aborted, "small", {{0x1000, 0x20}}, {1, 2}, {0, 1, 2}, 0},
    {"WriteRange",
     write_range,
     aborted,
     "small",
     {{0x280, 0x80}},
     {1, 2, 3, 4},
     {0, 1, 2, 3, 4},
     0},
    {"Verify",
     verify,
     verify_aborted,
     "small",
     {{0x100, 0x80}, {0x1000, 4}},
     {1, 2, 3},
     {1, 2, 3},
     0,
     true},
    // The first row takes two commands.
    {"VerifyBesideTheRows",
     verify,
     verify_aborted,
     "small",
     {{0x110, 0x40}, {0x1000, 4}},
     {2, 2, 3},
     {2, 3},
     0,
     true},
    // A page that differs is erased, a row that is written is read back, and only then is asked.
    {"CompareAndWrite",
     compare_and_write,
     aborted,
     "small",
     two_pages_and_eeprom,
     {2, 2, 4, 4, 6, 6, 8, 8, 10, 10, 12, 12, 13},
     {0, 4, 6, 10, 12, 13},
     0},
    {"CompareAndWriteWhatDiffersInItsSecondRow",
     compare_and_write,
     aborted,
     "small",
     {{0x100, 0x80}},
     {1, 3, 3, 5, 5, 7, 7},
     {0, 5, 7},
     0,
     true,
     0x140},
    {"CompareWhatIsTheSame",
     compare_and_write,
     aborted,
     "small",
     two_pages_and_eeprom,
     {1, 2, 3, 4, 5},
     {0, 2, 4, 5},
     0,
     true},
    {"WriteUncompared",
     write_uncompared,
     aborted,
     "small",
     two_pages_and_eeprom,
     {1, 3, 3, 6, 6, 6, 8, 8, 10, 10, 11},
     {1, 3, 6, 8, 10, 11},
     1},
    {"WriteEepromAlone",
     write_uncompared,
     aborted,
     "small",
     {{0x1000, 0x20}, {0x1020, 1}},
     {1, 2, 3},
     {0, 1, 2, 3},
     0},
};

class Abort : public testing::TestWithParam<AbortPoints>
{
protected:
    /// The device, ready for the operation.
    struct Subject : OperationBench {
        Subject() : OperationBench(GetParam().device, GetParam().image)
        {
            if (GetParam().installed) {
                install_image();
            }
            if (GetParam().differing_byte != 0) {
                line.simulated.memory().preset(GetParam().differing_byte, bytes("5A"));
            }
        }
    };

    Abort()
    {
        Subject subject;
        EXPECT_TRUE(GetParam().operation(subject));
        uninterrupted = subject.line.recorder.lines();
        commands = subject.line.sent();
    }

    /// Exactly this many commands with all their signals, and then the message.
    void expect_stop(Subject& subject, unsigned int sent)
    {
        ASSERT_LE(sent, commands.size());
        const bool too_late = sent == commands.size();
        EXPECT_EQ(GetParam().operation(subject), too_late);
        EXPECT_EQ(subject.line.sent(),
                  std::vector<std::string>(commands.begin(), commands.begin() + sent));
        EXPECT_EQ(subject.line.recorder.lines(),
                  too_late ? uninterrupted : then(until_command(sent), GetParam().message));
    }

    std::ptrdiff_t reports_of_progress() const
    {
        return std::count_if(
            uninterrupted.begin(), uninterrupted.end(),
            [](const std::string& line) { return line.find("_progress ") != std::string::npos; });
    }

    std::vector<std::string> commands;

private:
    /// The signals of the whole operation before it begins with the command of this index.
    Lines until_command(unsigned int index) const
    {
        Lines lines;
        for (const std::string& line : uninterrupted) {
            const bool begins_command = line.rfind("sig_unencoded_command", 0) == 0;
            if (begins_command && index-- == 0) {
                break;
            }
            lines.push_back(line);
        }
        return lines;
    }

    Lines uninterrupted;
};

} // namespace

TEST_P(Abort, IsSeenAtTheNextStepWhenItIsAskedForDuringACommand)
{
    const auto& points = GetParam().at_command;
    ASSERT_EQ(points.size(), commands.size());
    for (unsigned int i = 0; i < points.size(); ++i) {
        SCOPED_TRACE(i + 1);
        Subject subject;
        abort_at_command(subject, i + 1);
        expect_stop(subject, points[i]);
    }
}

TEST_P(Abort, IsSeenAtTheNextStepWhenItIsAskedForAtAReportOfProgress)
{
    const auto& points = GetParam().at_progress;
    ASSERT_EQ(static_cast<std::ptrdiff_t>(points.size()), reports_of_progress());
    for (unsigned int i = 0; i < points.size(); ++i) {
        SCOPED_TRACE(i + 1);
        Subject subject;
        abort_at_progress(subject, i + 1);
        expect_stop(subject, points[i]);
    }
}

TEST_P(Abort, IsSeenAtTheFirstStepWhenItIsAskedForBeforehand)
{
    Subject subject;
    subject.abort = true;
    expect_stop(subject, GetParam().before);
}

INSTANTIATE_TEST_SUITE_P(, Abort, testing::ValuesIn(abort_points), row_name);
