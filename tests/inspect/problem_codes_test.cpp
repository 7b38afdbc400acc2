#include "inspect/ProblemCodes.h"
#include "tests/inspect/InspectTest.h"
#include "tests/inspect/PlanTest.h"
#include "tests/inspect/Triggers.h"

#include <QRegularExpression>
#include <gmock/gmock.h>

#include <map>
#include <set>

using namespace test;
using testing::Contains;

namespace
{

QByteArray documentation()
{
    QFile file(QStringLiteral(SOURCE_FOLDER "/docs/inspect.md"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

class TriggeredProblem : public InspectTest, public testing::WithParamInterface<std::size_t>
{
protected:
    const Trigger& trigger() const { return triggers().at(GetParam()); }

    QStringList words() const
    {
        const QString name = QString::fromLatin1(trigger().subcommand());
        QStringList words = {name, trigger().content.isNull() ? path(name)
                                                              : put_file(name, trigger().content)};
        if (!trigger().other.isNull()) {
            words << QString::fromLatin1(trigger().other_option())
                  << put_file(QStringLiteral("other.txt"), trigger().other);
        }
        return words;
    }
};

std::string name_of_trigger(const testing::TestParamInfo<std::size_t>& info)
{
    return std::string(triggers().at(info.param).code) + "_" + std::to_string(info.param);
}

} // namespace

TEST(ProblemCodes, StandInTheOrderOfTheirTable)
{
    for (std::size_t i = 0; i < inspect::problem_kinds().size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(inspect::problem_kinds().at(i).code), i);
    }
    EXPECT_EQ(inspect::problem_kinds().back().code, inspect::Code::NothingSelected);
}

TEST(ProblemCodes, AreNumberedWithoutGaps)
{
    std::map<char, int> numbers; // by the letter
    for (const inspect::ProblemKind& kind : inspect::problem_kinds()) {
        const int number = ++numbers[kind.name[0]];
        EXPECT_EQ(QString::fromLatin1(kind.name + 1),
                  QString::number(number).rightJustified(3, QLatin1Char('0')));
    }
}

TEST(ProblemCodes, HaveAnEntryInTheDocumentation)
{
    const QByteArray page = documentation();
    for (const inspect::ProblemKind& kind : inspect::problem_kinds()) {
        const QByteArray heading = QByteArray("### ") + kind.name + ": " + kind.title + " (" +
                                   inspect::name_of(kind.severity).toLatin1() + ")\n";
        EXPECT_TRUE(page.contains(heading)) << heading.constData();
    }
}

TEST(ProblemCodes, OfTheDocumentationExist)
{
    static const QRegularExpression entry(QStringLiteral("^### ([A-Z][0-9]{3}):"),
                                          QRegularExpression::MultilineOption);
    std::set<QString> known;
    for (const inspect::ProblemKind& kind : inspect::problem_kinds()) {
        known.insert(QString::fromLatin1(kind.name));
    }
    auto matches = entry.globalMatch(QString::fromUtf8(documentation()));
    std::size_t entries = 0;
    for (; matches.hasNext(); ++entries) {
        EXPECT_THAT(known, Contains(matches.next().captured(1)));
    }
    EXPECT_EQ(entries, known.size());
}

TEST(ProblemCodes, AreTriggered)
{
    std::set<std::string> triggered;
    for (const Trigger& trigger : triggers()) {
        triggered.insert(trigger.code);
    }
    for (const PlanTrigger& trigger : plan_triggers()) {
        triggered.insert(trigger.code);
    }
    for (const inspect::ProblemKind& kind : inspect::problem_kinds()) {
        const bool is_of_ports = kind.name[0] == 'S';
        EXPECT_TRUE(is_of_ports || triggered.count(kind.name) != 0) << kind.name;
    }
}

TEST_P(TriggeredProblem, IsReportedWithItsPlace)
{
    EXPECT_THAT(places(inspect_json(words())), Contains(QStringLiteral("%1:%2:%3")
                                                            .arg(QLatin1String(trigger().code))
                                                            .arg(trigger().line)
                                                            .arg(trigger().column)
                                                            .toStdString()));
}

TEST_P(TriggeredProblem, IsInTheTextWithItsCode)
{
    const inspect::Outcome outcome = inspect_run(words());
    EXPECT_TRUE(outcome.out.contains(QByteArray(trigger().code) + ": ")) << outcome.out.constData();
    EXPECT_NE(outcome.status, 0);
}

TEST_P(TriggeredProblem, FitsIntoEightyColumns)
{
    for (const QByteArray& line : inspect_run(words()).out.split('\n')) {
        EXPECT_TRUE(line.size() <= 80 || line.contains(path(QString()).toLocal8Bit()))
            << line.constData();
    }
}

INSTANTIATE_TEST_SUITE_P(Each, TriggeredProblem, testing::Range(std::size_t{0}, triggers().size()),
                         name_of_trigger);
