#include "app/Console.h"
#include "tests/support/RowName.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

using namespace test;

namespace
{

struct ProgressCase {
    const char* name;
    unsigned int processed;
    unsigned int total;
    const char* printed;
};

std::ostream& operator<<(std::ostream& stream, const ProgressCase& progress)
{
    return stream << progress.processed << " of " << progress.total;
}

const ProgressCase progress_cases[] = {
    {"nothing_of_nothing", 0, 0, "\rProgress 0%"},
    {"something_of_nothing", 32, 0, "\rProgress 0%"},
    {"start", 0, 64, "\rProgress 0%"},
    {"half", 32, 64, "\rProgress 50%"},
    {"fraction_cut_off", 199, 200, "\rProgress 99%"},
    {"end", 64, 64, "\rProgress 100%"},
    {"beyond_the_total", 96, 32, "\rProgress 300%"},
    {"largest_product_that_fits", 42949672, 42949672, "\rProgress 100%"},
    // 42949673 * 100 is 4 beyond the 32 bits.
    {"product_that_wraps", 42949673, 42949673, "\rProgress 0%"},
    // 50000000 * 100 wraps to 705032704.
    {"product_that_wraps_far", 50000000, 100000000, "\rProgress 7%"},
    {"largest_counts", 0xFFFFFFFF, 0xFFFFFFFF, "\rProgress 0%"},
};

class ProgressLine : public testing::TestWithParam<ProgressCase>
{
};

/// The frame log, open on a temporary file.
class FrameLog : public testing::Test
{
protected:
    FrameLog() { serial_record.setFileName(m_folder.filePath(QStringLiteral("frames.log"))); }

    ~FrameLog() override { serial_record.close(); }

    static void open() { ASSERT_TRUE(serial_record.open(QIODevice::Append)); }

    /// What has reached the file, whether or not the log is still open.
    static std::string contents()
    {
        QFile file(serial_record.fileName());
        return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "no file";
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_P(ProgressLine, IsRewrittenWithThePercentage)
{
    testing::internal::CaptureStdout();
    slot_progress(GetParam().processed, GetParam().total);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), GetParam().printed);
}

TEST(Progress, ReachesTheConsoleAtOnce)
{
    testing::internal::CaptureStdout();
    slot_progress(1, 2);
    QFile console(QStringLiteral("/dev/stdout"));
    const bool is_open = console.open(QIODevice::ReadOnly);
    const std::string shown = console.readAll().toStdString();
    testing::internal::GetCapturedStdout();
    EXPECT_TRUE(is_open);
    EXPECT_EQ(shown, "\rProgress 50%");
}

INSTANTIATE_TEST_SUITE_P(Console, ProgressLine, testing::ValuesIn(progress_cases), row_name);

TEST(ErrorLine, EndsInANewline)
{
    testing::internal::CaptureStdout();
    slot_error(QStringLiteral("no answer at 50% (%1)"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "no answer at 50% (%1)\n");
}

TEST(ErrorLine, OvertakesWhatTheConsoleStillHolds)
{
    testing::internal::CaptureStdout();
    out << "held";
    slot_error(QStringLiteral("error"));
    slot_progress(1, 2);
    out.flush();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "error\n\rProgress 50%held");
}

TEST_F(FrameLog, TakesFramesInBothDirections)
{
    open();
    slot_command_transmitted(QByteArray::fromHex("55550002FE04"));
    slot_command_received(QByteArray::fromHex("55550002ABCD8604"));
    EXPECT_EQ(contents(), "\nTX:55550002fe04\nRX:55550002abcd8604");
}

TEST_F(FrameLog, ShowsAnEmptyFrameAsItsDirectionAlone)
{
    open();
    slot_command_transmitted({});
    slot_command_received({});
    EXPECT_EQ(contents(), "\nTX:\nRX:");
}

TEST_F(FrameLog, IsUpToDateAfterEachFrame)
{
    open();
    slot_command_transmitted("\x01");
    EXPECT_EQ(contents(), "\nTX:01");
    slot_command_received("\x02");
    EXPECT_EQ(contents(), "\nTX:01\nRX:02");
}

TEST_F(FrameLog, IsNotWrittenWhileClosed)
{
    slot_command_transmitted("\x01");
    slot_command_received("\x02");
    EXPECT_EQ(contents(), "no file");
}

TEST_F(FrameLog, CausesNoWarningWhileClosed)
{
    static int messages = 0;
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) { ++messages; });
    slot_command_transmitted("\x01");
    slot_command_received("\x02");
    qInstallMessageHandler(previous);
    EXPECT_EQ(messages, 0);
}

TEST(EventCallback, ProcessesWhatIsPending)
{
    bool processed = false;
    QTimer::singleShot(0, [&processed] { processed = true; });
    process_events_handler();
    EXPECT_TRUE(processed);
}

// A coarse timer fires up to 50 ms early if the second would end shortly after a full second of the
// clock.
TEST(ClosingSecond, IsNeverShort)
{
    QElapsedTimer clock;
    do {
        clock.start();
    } while (clock.msecsSinceReference() % 1000 < 20 || clock.msecsSinceReference() % 1000 > 40);
    let_pending_events_pass();
    EXPECT_GE(clock.nsecsElapsed(), 1000000000);
}

TEST(ClosingSecond, ProcessesWhatIsPending)
{
    bool processed = false;
    QTimer::singleShot(0, [&processed] { processed = true; });
    let_pending_events_pass();
    EXPECT_TRUE(processed);
}
