#include "tests/inspect/InspectTest.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

#include <ostream>

using namespace test;

// Typical mistakes in a table, each in the row of the first device of the sample table.

using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace
{

using TableSlips = InspectTest;

} // namespace

TEST_F(TableSlips, LeaveAGoodRowWithoutProblems)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row());
    EXPECT_THAT(places(inspect_json({QStringLiteral("table"), table})), IsEmpty());
    EXPECT_EQ(inspect_run({QStringLiteral("table"), table}).status, 0);
}

namespace
{

struct Slip {
    const char* name;
    Changes changes;
    std::vector<std::string> reported;
};

void PrintTo(const Slip& slip, std::ostream* stream)
{
    *stream << slip.name;
}

class TableSlip : public InspectTest, public testing::WithParamInterface<Slip>
{
};

} // namespace

TEST_P(TableSlip, IsReported)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row(GetParam().changes));
    EXPECT_THAT(codes(inspect_json({QStringLiteral("table"), table})),
                testing::UnorderedElementsAreArray(GetParam().reported));
}

TEST_P(TableSlip, ShowsAgainstAnIndependentTable)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row(GetParam().changes));
    const QString right = put_file(QStringLiteral("right.txt"), table_row());
    EXPECT_THAT(
        codes(inspect_json({QStringLiteral("table"), table, QStringLiteral("--against"), right})),
        testing::Contains("T043"));
}

INSTANTIATE_TEST_SUITE_P(
    Each, TableSlip,
    testing::Values(
        // A table alone cannot show these two.
        Slip{"page_doubled", {{8, "0x800"}}, {}}, Slip{"page_halved", {{8, "0x200"}}, {}},
        Slip{"row_doubled", {{9, "0x100"}}, {"T023"}},
        Slip{"block_doubled", {{12, "0x100"}}, {"T023"}},
        Slip{"word_size_1_for_2", {{10, "1"}}, {"T010", "T039"}},
        Slip{"words_per_address_2_for_1", {{18, "2"}}, {"T010"}},
        Slip{"words_per_address_1_for_2", {{11, "1"}}, {"T027", "T033", "T037"}},
        Slip{"flash_end_halved", {{5, "0x4000"}}, {"T037"}},
        Slip{"flash_end_doubled", {{5, "0x10000"}}, {"T037"}},
        Slip{"eeprom_end_halved", {{16, "0x8100"}}, {"T014"}},
        Slip{"eeprom_size_halved", {{16, "0x10100"}}, {"T038"}},
        Slip{"eeprom_start_moved_by_half_a_row", {{15, "0x10008"}}, {"T017", "T025", "T038"}},
        Slip{"filler_from_the_wrong_end", {{13, "0xFFFF"}}, {"T031"}},
        Slip{"bootloader_end_0", {{7, "0"}}, {"T030"}}),
    row_name);

TEST_F(TableSlips, ShowBlanksForTabs)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row().replace('\t', "    "));
    EXPECT_THAT(codes(inspect_json({QStringLiteral("table"), table})),
                UnorderedElementsAre("T002", "T008"));
}

TEST_F(TableSlips, ShowAMissingBootloaderEnd)
{
    const QString table = put_file(QStringLiteral("device.txt"), table_row({{7, ""}}));
    EXPECT_THAT(codes(inspect_json({QStringLiteral("table"), table})),
                UnorderedElementsAre("T003", "T008"));
}
