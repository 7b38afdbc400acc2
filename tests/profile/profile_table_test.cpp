#include "profile/ProfileTable.h"
#include "tests/profile/ProfileFields.h"
#include "tests/profile/TestData.h"
#include "tests/support/RowName.h"

#include <QBuffer>
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

using namespace test;
using Kind = ProfileTableLine::Kind;

namespace
{

std::vector<ProfileTableLine> read_lines(QByteArray table)
{
    QBuffer device(&table);
    device.open(QIODevice::ReadOnly);
    std::vector<ProfileTableLine> lines;
    while (auto line = read_profile_table_line(device)) {
        lines.push_back(*line);
    }
    return lines;
}

std::vector<Kind> kinds_of(const std::vector<ProfileTableLine>& lines)
{
    std::vector<Kind> kinds;
    kinds.reserve(lines.size());
    for (const ProfileTableLine& line : lines) {
        kinds.push_back(line.kind);
    }
    return kinds;
}

QByteArray example_row()
{
    QStringList fields = example_fields();
    fields.first() = QStringLiteral("v0102:");
    return fields.join(QLatin1Char('\t')).toUtf8();
}

struct TableFile {
    std::string name;
    std::vector<Kind> kinds;
};

class TableFileLines : public testing::TestWithParam<TableFile>
{
};

TEST_P(TableFileLines, AreTakenForWhatTheyAre)
{
    const QByteArray table = test_data((GetParam().name + ".txt").c_str());
    EXPECT_EQ(kinds_of(read_lines(table)), GetParam().kinds);
}

INSTANTIATE_TEST_SUITE_P(
    Files, TableFileLines,
    testing::Values(TableFile{"header_only", {Kind::Header}},
                    TableFile{
                        "no_row_of_25_fields",
                        {Kind::Remark, Kind::Remark, Kind::Remark, Kind::Remark, Kind::Remark}},
                    TableFile{"two_devices", {Kind::Header, Kind::Row, Kind::Remark, Kind::Row}},
                    TableFile{"header_repeated",
                              {Kind::Header, Kind::Row, Kind::Header, Kind::Row, Kind::Header}},
                    TableFile{"one_tab_at_end", {Kind::Row}},
                    TableFile{"two_tabs_at_end", {Kind::Row}},
                    TableFile{"runs_of_tabs_between_columns", {Kind::Row}},
                    TableFile{"blanks_between_columns", {Kind::Remark, Kind::Remark}},
                    TableFile{"blanks_within_a_field", {Kind::Row}},
                    TableFile{"tab_at_start", {Kind::Unparsable}},
                    TableFile{"tab_before_a_whole_row", {Kind::Remark}},
                    TableFile{"version_title_in_lower_case", {Kind::Unparsable}},
                    TableFile{"version_title_in_upper_case", {Kind::Unparsable}},
                    TableFile{"version_with_capital_v", {Kind::Unparsable}},
                    TableFile{"version_of_five_characters", {Kind::Unparsable}},
                    TableFile{"version_of_seven_characters", {Kind::Unparsable}},
                    TableFile{"version_without_colon", {Kind::Unparsable}},
                    TableFile{"version_not_hexadecimal", {Kind::Row}},
                    TableFile{"bad_row_after_a_good_one", {Kind::Row, Kind::Unparsable}}),
    row_name);

TEST(ProfileTableRow, HoldsItsFieldsWithTheVersionAsANumber)
{
    for (const char* file :
         {"one_tab_at_end.txt", "two_tabs_at_end.txt", "runs_of_tabs_between_columns.txt"}) {
        const auto lines = read_lines(test_data(file));
        ASSERT_EQ(lines.size(), 1U) << file;
        EXPECT_EQ(lines.front().fields, example_fields()) << file;
    }
}

TEST(ProfileTableRow, KeepsWhatStandsBetweenVAndColon)
{
    const auto lines = read_lines(test_data("version_not_hexadecimal.txt"));
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines.front().fields.first(), QLatin1String("0x12G4"));
}

TEST(ProfileTableRow, KeepsBlanksWithinFields)
{
    const auto lines = read_lines(test_data("blanks_within_a_field.txt"));
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines.front().fields.at(Profile::device_name), QLatin1String("DEV A 128"));
}

TEST(ProfileTableFields, OfEmptyAndTabbedLines)
{
    EXPECT_EQ(parse_profile_table_line(QString()).fields, QStringList());
    EXPECT_EQ(parse_profile_table_line(QStringLiteral("\t\t\t")).fields, QStringList{QString()});
    EXPECT_EQ(parse_profile_table_line(QStringLiteral("a \t\t b\t")).fields,
              (QStringList{QStringLiteral("a "), QStringLiteral(" b")}));
}

TEST(ProfileTableLines, EndAtNewlineWithOneCarriageReturn)
{
    const auto lines = read_lines("a\r\nb\r\r\nc\n\n\r\nd");
    std::vector<QStringList> fields;
    fields.reserve(lines.size());
    for (const ProfileTableLine& line : lines) {
        fields.push_back(line.fields);
    }
    EXPECT_EQ(fields, (std::vector<QStringList>{{QStringLiteral("a")},
                                                {QStringLiteral("b\r")},
                                                {QStringLiteral("c")},
                                                {},
                                                {},
                                                {QStringLiteral("d")}}));
}

TEST(ProfileTableLines, NeedNoNewlineAtTheEndOfTheFile)
{
    const auto lines = read_lines(example_row());
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines.front().fields, example_fields());
}

TEST(ProfileTableLines, OfWindowsEditorsAreRows)
{
    // A byte order mark, line ends of two bytes, a tab left at the end.
    const auto lines = read_lines("\xEF\xBB\xBF" + example_row() + "\t\r\n");
    ASSERT_EQ(kinds_of(lines), std::vector<Kind>{Kind::Row});
    EXPECT_EQ(lines.front().fields, example_fields());
}

TEST(ProfileTableLines, OfEmptyFileAreNone)
{
    EXPECT_TRUE(read_lines(QByteArray()).empty());
}

TEST(ProfileTableLines, MayBeOfAnyLength)
{
    QStringList fields = example_fields();
    fields.first() = QStringLiteral("v0102:");
    fields[Profile::device_name] = QString(1 << 20, QLatin1Char('n'));
    const QByteArray wide = fields.join(QString(50000, QLatin1Char('\t'))).toUtf8();
    const auto lines = read_lines(wide + "\n" + QByteArray(3000000, '\t') + "\n" + example_row());
    ASSERT_EQ(kinds_of(lines), (std::vector<Kind>{Kind::Row, Kind::Remark, Kind::Row}));
    EXPECT_EQ(lines.front().fields.at(Profile::device_name).size(), 1 << 20);
    EXPECT_EQ(lines.back().fields, example_fields());
}

TEST(ProfileTableLines, ANulIsACharacterLikeAnother)
{
    const QByteArray nul(1, '\0');
    const auto lines = read_lines(example_row() + nul + "\n" + nul + "\n" + example_row());
    ASSERT_EQ(kinds_of(lines), (std::vector<Kind>{Kind::Row, Kind::Remark, Kind::Row}));
    EXPECT_EQ(lines.front().fields.last(), QLatin1String("0x10000") + QChar(0));
    EXPECT_EQ(lines.back().fields, example_fields());
}

TEST(ProfileTableLines, AreUtf8WithReplacementForOtherBytes)
{
    QByteArray row = example_row();
    row.replace("DEV-A128", "\xC2\xB5"
                            "C \xFF\xB5");
    const auto lines = read_lines(row);
    ASSERT_EQ(kinds_of(lines), std::vector<Kind>{Kind::Row});
    EXPECT_EQ(lines.front().fields.at(Profile::device_name),
              QString::fromUtf8("\xC2\xB5"
                                "C \xEF\xBF\xBD\xEF\xBF\xBD"));
}

} // namespace
