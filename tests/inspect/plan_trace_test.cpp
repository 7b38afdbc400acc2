#include "tests/inspect/InspectTest.h"
#include "tests/inspect/ProcessRun.h"
#include "tests/support/RowName.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>
#include <ostream>

// A plan leaves no trace in the folder where it is made, whatever files the command line names.

using namespace test;

namespace
{

struct Line {
    const char* name;
    const char* words;
};

void PrintTo(const Line& line, std::ostream* stream)
{
    *stream << line.words;
}

class PlannedInAFolder : public InspectTest, public testing::WithParamInterface<Line>
{
protected:
    PlannedInAFolder()
    {
        put_file(QStringLiteral("device.txt"), table_row());
        put_file(QStringLiteral("image.hex"),
                 hex_record(0, 0x800, QByteArray::fromHex("01020304")) + end_record);
        put_file(QStringLiteral("back.hex"), "was here before\n");
        put_file(QStringLiteral("frames.log"), "\nTX:00\n");
        EXPECT_TRUE(QFile::link(QStringLiteral("nowhere.hex"), path(QStringLiteral("link.hex"))));
    }

    /// Every name in the folder, and the folder itself, with all that can be observed of it.
    std::vector<std::string> everything() const
    {
        std::vector<std::string> entries;
        QDirIterator it(path(QString()), QDir::AllEntries | QDir::Hidden | QDir::System,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo info(it.next());
            if (info.fileName() == QLatin1String("..")) {
                continue;
            }
            const bool is_file = info.isFile();
            entries.push_back(QStringLiteral("%1 %2 %3 %4 %5")
                                  .arg(info.fileName())
                                  .arg(info.size())
                                  .arg(info.lastModified().toMSecsSinceEpoch())
                                  .arg(info.metadataChangeTime().toMSecsSinceEpoch())
                                  .arg(QString::fromLatin1(is_file ? file(info.fileName()).toHex()
                                                                   : QByteArray()))
                                  .toStdString());
        }
        std::sort(entries.begin(), entries.end());
        return entries;
    }
};

} // namespace

TEST_P(PlannedInAFolder, LeavesNoTrace)
{
    const std::vector<std::string> before = everything();
    QProcess process;
    process.setWorkingDirectory(path(QString()));
    process.start(QStringLiteral(INSPECT_PROGRAM),
                  QString::fromLatin1("plan --device 0110 -- -s /dev/ttyNONE %1")
                      .arg(QLatin1String(GetParam().words))
                      .split(QLatin1Char(' ')));
    ASSERT_TRUE(process.waitForFinished());
    EXPECT_NE(process.exitCode(), 2) << process.readAllStandardError().constData();
    EXPECT_EQ(everything(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Of, PlannedInAFolder,
    testing::Values(
        Line{"write", "-e -w image.hex -v image.hex -R"}, Line{"write_and_verify", "-wv image.hex"},
        Line{"read_into_a_file", "-r back.hex"}, Line{"read_into_no_file", "-r missing.hex"},
        Line{"read_through_a_link", "-r link.hex"},
        Line{"limited_read_into_no_file", "-l 0x800 0x900 missing.hex"},
        Line{"log", "-w image.hex -x frames.log"}, Line{"new_log", "-w image.hex -x new.log"},
        Line{"missing_image", "-w missing.hex"}, Line{"missing_image_to_verify", "-v missing.hex"},
        Line{"read_and_verified", "-r missing.hex -v missing.hex -x new.log"},
        Line{"image_as_log", "-e -w image.hex -x image.hex"},
        Line{"refused", "-r missing.hex -x new.log -l 0 0 other.hex"}),
    row_name);
