#include "tests/inspect/InspectTest.h"
#include "tests/support/RowName.h"

#include <ostream>

using namespace test;

// Whole reports, as text and as JSON, on the sample files, on damaged files and on empty ones.

namespace
{

struct Golden {
    const char* name; ///< of the files with the reports
    const char* words;
    int status;
};

void PrintTo(const Golden& golden, std::ostream* stream)
{
    *stream << golden.name;
}

class GoldenReport : public testing::TestWithParam<Golden>
{
protected:
    static QStringList words()
    {
        return QString::fromLatin1(GetParam().words).split(QLatin1Char(' '));
    }

    static QByteArray expected(const char* ending)
    {
        QFile file(QStringLiteral("tests/inspect/data/%1.%2")
                       .arg(QLatin1String(GetParam().name), QLatin1String(ending)));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
        return file.readAll();
    }
};

} // namespace

TEST_P(GoldenReport, IsTheSameAsText)
{
    const inspect::Outcome outcome = inspect_run(words());
    EXPECT_EQ(outcome.out.toStdString(), expected("txt").toStdString());
    EXPECT_EQ(outcome.err.toStdString(), "");
    EXPECT_EQ(outcome.status, GetParam().status);
}

TEST_P(GoldenReport, IsTheSameAsJson)
{
    QStringList all = words();
    all.insert(1, QStringLiteral("--json"));
    const inspect::Outcome outcome = inspect_run(all);
    EXPECT_EQ(outcome.out.toStdString(), expected("json").toStdString());
    EXPECT_EQ(outcome.status, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    Of, GoldenReport,
    testing::Values(
        Golden{"sample_table", "table examples/device.txt", 0},
        Golden{"explained_device", "table examples/device.txt --explain 0132", 0},
        Golden{"damaged_table", "table tests/inspect/data/damaged_device.txt", 1},
        Golden{"damaged_against_sample",
               "table tests/inspect/data/damaged_device.txt --against examples/device.txt", 1},
        Golden{"empty_table", "table tests/memory/data/empty.hex", 1},
        Golden{"missing_table", "table tests/inspect/data/no_such_device.txt", 2},
        Golden{"blink", "image examples/blink.hex", 0},
        Golden{"blink_in_device",
               "image examples/blink.hex --table examples/device.txt --device 0110", 0},
        Golden{"plover", "image examples/plover-96.hex --table examples/device.txt --device 0140",
               0},
        Golden{"image_of_another_device",
               "image examples/siskin-64.hex --table examples/device.txt --device 0110", 1},
        Golden{"two_images", "image examples/wren-32e.hex examples/dunlin-48.hex", 0},
        Golden{"segmented_image", "image tests/memory/data/extended_segment_address.hex", 1},
        Golden{"bad_checksum", "image tests/memory/data/bad_checksum_in_second_record.hex", 1},
        Golden{"suspicious_image", "image tests/inspect/data/suspicious.hex", 1},
        Golden{"empty_image", "image tests/memory/data/empty.hex", 1},
        Golden{"missing_image", "image tests/inspect/data/no_such_image.hex", 2},
        Golden{"folder", "image examples", 2},
        Golden{"upload_log", "log tests/inspect/data/upload.log --table examples/device.txt", 1},
        Golden{"upload_log_without_device", "log tests/inspect/data/upload.log", 1},
        Golden{"echo_log",
               "log tests/inspect/data/echo.log --table examples/device.txt --device 0110", 1},
        Golden{"damaged_log", "log tests/inspect/data/damaged.log --table examples/device.txt", 1},
        Golden{"empty_log", "log tests/memory/data/empty.hex", 1},
        Golden{"missing_log", "log tests/inspect/data/no_such.log", 2},
        Golden{"plan_of_a_write",
               "plan --table examples/device.txt --device 0110 -- -s /dev/ttyUSB0 -e -w "
               "examples/blink.hex -v examples/blink.hex -R",
               0},
        Golden{"plan_with_a_list",
               "plan --table examples/device.txt --list -- -s /dev/ttyUSB0 -B 0x110 -h -l 0x800 "
               "0xA00 no_such.hex",
               0},
        Golden{"plan_of_an_update",
               "plan --table examples/device.txt --device 0110 --before examples/blink.hex -- -s "
               "/dev/ttyUSB0 -wv examples/blink.hex",
               0},
        Golden{"plan_of_surprises",
               "plan --table examples/device.txt -- -s /dev/ttyUSB0 -B 110 -E 0x800 0x1000 -W "
               "0x800 0x900 examples/blink.hex -M 010 stray",
               1},
        Golden{"plan_of_a_refused_line", "plan -- -s /dev/ttyUSB0 -w", 1},
        Golden{"plan_of_what_cannot_be_foreseen",
               "plan --table examples/device.txt --device 0110 -- -s /dev/ttyUSB0 -w /dev/null",
               2}),
    row_name);
