#include "tests/inspect/InspectTest.h"
#include "tests/inspect/PlanTest.h"
#include "tests/inspect/ProcessRun.h"
#include "tests/inspect/Triggers.h"

#include <cstring>

using namespace test;

// Every report is what the schemas say.

namespace
{

class Schema : public InspectTest
{
protected:
    /// Checks a report for each of the command lines.
    void expect_valid(const char* schema, const std::vector<QStringList>& lines) const
    {
        QJsonArray reports;
        for (const QStringList& words : lines) {
            const inspect::Outcome outcome =
                inspect_run(words + QStringList(QStringLiteral("--json")));
            const QJsonDocument document = QJsonDocument::fromJson(outcome.out);
            ASSERT_TRUE(document.isObject()) << outcome.out.constData();
            reports.append(document.object());
        }
        const ProcessResult result = run_process(
            QStringLiteral(PYTHON),
            {QStringLiteral("tests/inspect/check_schema.py"), QString::fromLatin1(schema)},
            QJsonDocument(reports).toJson());
        EXPECT_EQ(result.status, 0) << result.out.constData() << result.err.constData();
    }

    std::vector<QStringList> triggered(const char* subcommand) const
    {
        std::vector<QStringList> lines;
        for (std::size_t i = 0; i < triggers().size(); ++i) {
            const Trigger& trigger = triggers().at(i);
            if (std::strcmp(trigger.subcommand(), subcommand) == 0 && !trigger.content.isNull()) {
                const QString name = QString::number(i);
                QStringList words = {QString::fromLatin1(subcommand),
                                     put_file(name, trigger.content)};
                if (!trigger.other.isNull()) {
                    words << QString::fromLatin1(trigger.other_option())
                          << put_file(name + QStringLiteral("_other"), trigger.other);
                }
                lines.push_back(words);
            }
        }
        return lines;
    }
};

using PlanSchema = PlanTest;

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

} // namespace

TEST_F(Schema, OfTablesFitsEveryReport)
{
    std::vector<QStringList> lines = triggered("table");
    lines.push_back(words("table examples/device.txt"));
    lines.push_back(words("table examples/device.txt --explain 0140"));
    lines.push_back(words("table no_such_table"));
    expect_valid("inspect/schema/table.schema.json", lines);
}

TEST_F(Schema, OfImagesFitsEveryReport)
{
    std::vector<QStringList> lines = triggered("image");
    lines.push_back(words("image examples/blink.hex"));
    lines.push_back(words("image examples/blink.hex examples/wren-32e.hex"));
    lines.push_back(words("image examples/blink.hex --table examples/device.txt --device 0110"));
    lines.push_back(words("image no_such_image"));
    expect_valid("inspect/schema/image.schema.json", lines);
}

TEST_F(Schema, OfLogsFitsEveryReport)
{
    std::vector<QStringList> lines = triggered("log");
    lines.push_back(words("log tests/inspect/data/upload.log --table examples/device.txt"));
    lines.push_back(words("log no_such_log"));
    expect_valid("inspect/schema/log.schema.json", lines);
}

TEST_F(PlanSchema, FitsEveryReport)
{
    QJsonArray reports;
    for (const PlanTrigger& trigger : plan_triggers()) {
        reports.append(plan((std::string("--list ") + trigger.words).c_str()));
    }
    const ProcessResult result = run_process(QStringLiteral(PYTHON),
                                             {QStringLiteral("tests/inspect/check_schema.py"),
                                              QStringLiteral("inspect/schema/plan.schema.json")},
                                             QJsonDocument(reports).toJson());
    EXPECT_EQ(result.status, 0) << result.out.constData() << result.err.constData();
}

TEST_F(Schema, FitsNothingElse)
{
    const ProcessResult result = run_process(QStringLiteral(PYTHON),
                                             {QStringLiteral("tests/inspect/check_schema.py"),
                                              QStringLiteral("inspect/schema/image.schema.json")},
                                             R"([{"problems": [], "bytes": "many"}])");
    EXPECT_EQ(result.status, 1);
}
