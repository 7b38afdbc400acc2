#include "sim/rig/FrameLog.h"
#include "tests/sim/Complaint.h"
#include "tests/support/Bytes.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

using namespace test;
using sim::FrameLog;
using sim::parse_frame_log;
using sim::read_frame_log;

namespace
{

using Entries = std::vector<std::pair<QByteArray, QByteArray>>;

Entries entries_of(const QByteArray& content)
{
    Entries entries;
    for (const FrameLog::Entry& entry : parse_frame_log(content, QStringLiteral("log")).entries) {
        entries.emplace_back(entry.request, entry.response);
    }
    return entries;
}

std::string complaint_about_log(const QByteArray& content)
{
    return test::complaint_of([&] { entries_of(content); });
}

} // namespace

TEST(SimFrameLog, HasEachFrameSentWithWhatFollowedIt)
{
    EXPECT_EQ(entries_of("\nTX:55550002fe04\nRX:555500020123da04\nTX:55550000\nTX:5503\nRX:0a"),
              (Entries{{bytes("55550002fe04"), bytes("555500020123da04")},
                       {bytes("55550000"), {}},
                       {bytes("5503"), bytes("0a")}}));
}

TEST(SimFrameLog, JoinsSeveralAnswersAndForgetsThoseToNothing)
{
    EXPECT_EQ(entries_of("\nRX:01\nTX:02\nRX:03\nRX:\nRX:04"),
              (Entries{{bytes("02"), bytes("03 04")}}));
}

TEST(SimFrameLog, MayHaveBeenThroughAnEditor)
{
    EXPECT_EQ(entries_of("TX:AbCd\r\n\r\nRX:eF\r\n"), (Entries{{bytes("ABCD"), bytes("EF")}}));
    EXPECT_EQ(entries_of(""), Entries());
}

TEST(SimFrameLog, IsRefusedWithTheLineThatIsNone)
{
    for (const char* line : {"hello", "TX:5", "TX:5g", "tx:55", "RX 55", "TX: 55"}) {
        EXPECT_EQ(complaint_about_log(QByteArray("\nTX:55\n") + line + '\n'),
                  "log: line 3 is not a line of a frame log")
            << line;
    }
}

TEST(SimFrameLog, MayEndInTheMiddleOfALine)
{
    for (const char* cut : {"T", "TX", "TX:", "TX:5", "TX:555", "R", "RX", "RX:", "RX:5"}) {
        EXPECT_EQ(entries_of(QByteArray("\nTX:55\nRX:66\n") + cut).front(),
                  (Entries::value_type{bytes("55"), bytes("66")}))
            << cut;
    }
    EXPECT_EQ(complaint_about_log("\nTX:55\nhello"), "log: line 3 is not a line of a frame log");
    EXPECT_EQ(complaint_about_log("\nTX:55\nTX:5g"), "log: line 3 is not a line of a frame log");
}

TEST(SimFrameLog, IsReadFromAFileInWhichSomethingWasSent)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("log"));
    const auto read = [&path] {
        read_frame_log(path);
    };
    EXPECT_EQ(test::complaint_of(read),
              path.toStdString() + ": cannot read the log: No such file or directory");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("\nRX:55");
    file.flush();
    EXPECT_EQ(test::complaint_of(read),
              path.toStdString() + ": the log has no line that begins with TX:");
    file.write("\nTX:55");
    file.flush();
    EXPECT_EQ(read_frame_log(path).entries.size(), 1U);
}
