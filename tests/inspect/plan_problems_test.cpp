#include "tests/inspect/PlanTest.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

#include <ostream>

using testing::Contains;
using testing::Not;

using namespace test;

namespace
{

class TriggeredInAPlan : public PlanTest, public testing::WithParamInterface<std::size_t>
{
protected:
    static const PlanTrigger& trigger() { return plan_triggers().at(GetParam()); }
};

std::string name_of_plan_trigger(const testing::TestParamInfo<std::size_t>& info)
{
    return std::string(plan_triggers().at(info.param).code) + "_" + std::to_string(info.param);
}

} // namespace

TEST_P(TriggeredInAPlan, IsReported)
{
    EXPECT_THAT(codes(plan(trigger().words)), Contains(std::string(trigger().code)));
}

TEST_P(TriggeredInAPlan, IsInTheTextAndInTheStatus)
{
    const inspect::Outcome outcome = run_plan(trigger().words);
    EXPECT_TRUE(outcome.out.contains(QByteArray(trigger().code) + ": ")) << outcome.out.constData();
    EXPECT_NE(outcome.status, 0);
    EXPECT_EQ(outcome.err, QByteArray());
}

TEST_P(TriggeredInAPlan, FitsIntoEightyColumns)
{
    for (const QByteArray& line : run_plan(trigger().words).out.split('\n')) {
        EXPECT_TRUE(line.size() <= 80 || line.contains(path(QString()).toLocal8Bit()))
            << line.constData();
    }
}

INSTANTIATE_TEST_SUITE_P(Each, TriggeredInAPlan,
                         testing::Range(std::size_t{0}, plan_triggers().size()),
                         name_of_plan_trigger);

namespace
{

/// What is close to a problem and is none.
struct Harmless {
    const char* code;
    const char* words;
};

void PrintTo(const Harmless& harmless, std::ostream* stream)
{
    *stream << harmless.code << " not for " << harmless.words;
}

class NoProblem : public PlanTest, public testing::WithParamInterface<Harmless>
{
};

} // namespace

TEST_P(NoProblem, IsNotReported)
{
    EXPECT_THAT(codes(plan(GetParam().words)), Not(Contains(std::string(GetParam().code))));
}

INSTANTIATE_TEST_SUITE_P(
    Such, NoProblem,
    testing::Values(Harmless{"P001", "-- -s port -B 0110 -w @image.hex"},
                    Harmless{"P005", "-- -s port -B 0110"}, Harmless{"P005", "-- -s port -B 0x110"},
                    Harmless{"P008", "--device 0110 -- -s port -B 0110"},
                    Harmless{"P013", "-- -s port -B 0110 -e -W 0x800 0x900 @image.hex"},
                    Harmless{"P014", "-- -s port -B 0110 -l 0x800 0x900 @back.hex"},
                    Harmless{"P014", "-- -s port -B 0120 -r @back.hex"},
                    Harmless{"P013", "-- -s port -B 0110 -W 0x10000 0x10010 @eeprom.hex"},
                    Harmless{"P015", "-- -s port -B 0110 -W 0 0x900 @image.hex"},
                    Harmless{"P015", "-- -s port -B 0110 -l 00 07 @back.hex"},
                    Harmless{"P018", "-- -s port -B 0110 -e -wv @image.hex"},
                    Harmless{"P019", "-- -s port -B 0110 -w @image.hex -v @./image.hex"},
                    Harmless{"P020", "-- -s port -B 0110 -w @image.hex -v @image.hex"},
                    Harmless{"P020", "-- -s port -B 0110 -r @back.hex -x @frames.log"},
                    Harmless{"P021", "-- -s port -B 0110 -r @missing.hex -v @missing.hex"},
                    Harmless{"P024", "--before @other.hex -- -s port -B 0110 -e -w @image.hex"},
                    Harmless{"P024", "--before @image.hex -- -s port -B 0110 -w @other.hex"},
                    Harmless{"P025", "-- -s port -B 0110 -w @image.hex"},
                    Harmless{"P027", "-- -s port -B 0110 -wv @other.hex"},
                    Harmless{"P027", "--before @full.hex -- -s port -B 0110 -wv @full.hex"},
                    Harmless{"P027", "--before @full.hex -- -s port -B 0110 -wv @upper.hex"},
                    Harmless{"P027", "--before @full.hex -- -s port -B 0110 -w @other.hex"},
                    Harmless{"P027", "--before @full.hex -- -s port -B 0110 -e"},
                    Harmless{"P027", "--before @full.hex -- -s port -B 0110 -e -w @other.hex"},
                    Harmless{"P027", "--before @full.hex -- -s port -B 0110 -e -wv @other.hex"},
                    Harmless{"P028", "--before @image.hex -- -s port -B 0110 -wv @image.hex"},
                    Harmless{"P028", "-- -s port -B 0110 -W 0x10000 0x10010 @eeprom.hex"},
                    Harmless{"P028", "-- -s port -B 0110 -v @image.hex"},
                    Harmless{"P028", "-- -s port -B 0110 -v @missing.hex"},
                    Harmless{"P028", "-- -s port -B 0110 -w @outside.hex"},
                    Harmless{"I023", "-- -s port -B 0110 -r @outside.hex -v @outside.hex"}));

namespace
{

/// A plan, and what it says of one problem.
struct Said {
    const char* name;
    const char* code;
    const char* words;
    const char* key; ///< of the problem
    const char* text;
};

void PrintTo(const Said& said, std::ostream* stream)
{
    *stream << said.name;
}

class ProblemOfAPlan : public PlanTest, public testing::WithParamInterface<Said>
{
};

} // namespace

TEST_P(ProblemOfAPlan, Says)
{
    QString text;
    const QJsonObject report = plan(GetParam().words);
    for (const QJsonValue problem : report[QStringLiteral("problems")].toArray()) {
        if (problem[QStringLiteral("code")] == QLatin1String(GetParam().code)) {
            text = problem[QLatin1String(GetParam().key)].toString();
        }
    }
    EXPECT_EQ(text.toStdString(), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    That, ProblemOfAPlan,
    testing::Values(
        Said{"TheRestOfAPageIsLost", "P027", "--before @full.hex -- -s port -B 0110 -wv @other.hex",
             "message", "2 bytes of flash, the first at 0x00000804."},
        Said{"TheRestOfAnEepromRowIsLost", "P027",
             "--before @full.hex -- -s port -B 0110 -w @eeprom.hex", "message",
             "3 bytes of EEPROM, the first at 0x00010001."},
        Said{"AnEraseLeavesEepromToTheImage", "P027",
             "--before @full.hex -- -s port -B 0110 -e -w @eeprom.hex", "message",
             "3 bytes of EEPROM, the first at 0x00010001."},
        Said{"BothAreLost", "P027", "--before @full.hex -- -s port -B 0110 -wv @patch.hex",
             "message",
             "5 bytes of flash, the first at 0x00000801; 3 bytes of EEPROM, the first at "
             "0x00010001."},
        Said{"AnEraseIsMissing", "P024", "--before @other.hex -- -s port -B 0110 -w @image.hex",
             "remedy", "Erase first with -e, or use -wv."},
        Said{"TheEraseLeavesTheUpperPart", "P024",
             "--before @cleared_upper.hex -- -s port -B 0120 -e -w @upper.hex", "remedy",
             "Use -e -wv instead of -e -w: the divisor is not 1, and -e leaves these bytes as they "
             "were (T033)."}),
    row_name);
