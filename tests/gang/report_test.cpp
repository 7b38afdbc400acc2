#include "gang/Report.h"
#include "tests/gang/GangTest.h"

#include <QJsonArray>

using namespace test;

namespace
{

using gang::RecordedRuns;
using gang::Report;

class Reports : public GangTest
{
protected:
    Report report(const QByteArray& record, const std::vector<gang::GivenNumber>& given = {}) const
    {
        put_file(QStringLiteral("record"), record);
        RecordedRuns runs;
        gang::read_record(path(QStringLiteral("record")), runs);
        return gang::report_on(runs, given);
    }
};

QByteArray line(const char* port, const char* verdict, double seconds, const char* more = "")
{
    return QStringLiteral(
               "{\"time\":\"2026-11-21T17:00:00.000Z\",\"station\":\"s\",\"port\":\"%1\","
               "\"verdict\":\"%2\",\"seconds\":%3,\"tries\":1%4}\n")
        .arg(QLatin1String(port), QLatin1String(verdict))
        .arg(seconds)
        .arg(QLatin1String(more))
        .toUtf8();
}

const QByteArray sample = line("/dev/a", "ok", 2) + line("/dev/a", "ok", 4) +
                          line("/dev/b", "silent", 7) + line("/dev/b", "write", 3) +
                          line("/dev/b", "silent", 7) + line("/dev/b", "ok", 3);

TEST_F(Reports, CountByVerdictAndPort)
{
    EXPECT_EQ(text_of(report(sample)).toStdString(),
              "6 runs from 2026-11-21T17:00:00.000Z to 2026-11-21T17:00:00.000Z\n"
              "Yield: 50.0% (3 ok, 3 of them at the first try)\n"
              "Failures: 2 silent, 1 write\n"
              "Durations: median 3.0 s, nine in ten up to 4.0 s, longest 4.0 s\n"
              "\n"
              "By station and port:\n"
              "  s /dev/a  2 of 2 ok  100.0%  median 2.0 s\n"
              "  s /dev/b  1 of 4 ok   25.0%  median 3.0 s  2 silent, 1 write\n");
}

TEST_F(Reports, CountASingleRun)
{
    EXPECT_EQ(text_of(report(line("/dev/a", "ok", 2))).section(QLatin1Char('\n'), 0, 0),
              QStringLiteral("1 run from 2026-11-21T17:00:00.000Z to 2026-11-21T17:00:00.000Z"));
}

TEST_F(Reports, AlignTheNumbersOfAllPorts)
{
    const QByteArray many = line("/dev/b", "ok", 2).repeated(12);
    EXPECT_TRUE(text_of(report(line("/dev/a", "ok", 2) + many))
                    .endsWith(QStringLiteral("  s /dev/a   1 of  1 ok  100.0%  median 2.0 s\n"
                                             "  s /dev/b  12 of 12 ok  100.0%  median 2.0 s\n")));
}

TEST_F(Reports, SkipWhatIsNoRecord)
{
    const Report whole = report(sample + "{\"time\":\n[]\n\n{}\n" + sample.left(40));
    EXPECT_EQ(whole.all.runs, 6);
    EXPECT_EQ(whole.skipped, 4);
}

TEST_F(Reports, SkipATornLineThatLooksWhole)
{
    QByteArray torn = sample;
    torn.chop(1);
    EXPECT_EQ(report(torn).all.runs, 5) << "the line may have been meant to go on";
}

TEST_F(Reports, CountNoNumberThatNobodyGives)
{
    const Report odd = report(line("/dev/a", "ok", 2, ",\"number\":-1") +
                              line("/dev/a", "ok", 2, ",\"number\":1e300") +
                              line("/dev/a", "ok", 2, ",\"number\":\"7\",\"void_numbers\":[-7]"));
    EXPECT_EQ(odd.all.runs, 3);
    EXPECT_EQ(odd.numbers, 0);
}

TEST_F(Reports, HaveNothingToSayOfNothing)
{
    EXPECT_EQ(text_of(report("")).toStdString(), "No runs\n");
    EXPECT_EQ(json_of(report("")).value(QStringLiteral("yield")).toDouble(), 0);
}

TEST_F(Reports, ShowNoDurationOfAPortWithoutAGoodRun)
{
    const Report failures = report(line("/dev/a", "silent", 7));
    EXPECT_TRUE(text_of(failures).endsWith(
        QStringLiteral("  s /dev/a  0 of 1 ok    0.0%  median -  1 silent\n")));
    EXPECT_TRUE(html_of(failures).contains(QStringLiteral("<td class=\"n\">&ndash;</td>")));
    const QJsonObject seconds = json_of(failures).value(QStringLiteral("seconds")).toObject();
    EXPECT_TRUE(seconds.contains(QStringLiteral("median")));
    EXPECT_TRUE(seconds.value(QStringLiteral("median")).isNull());
}

TEST_F(Reports, ListVoidNumbers)
{
    const QByteArray record = line("/dev/a", "ok", 1, ",\"number\":3,\"void_numbers\":[1,2]") +
                              line("/dev/b", "write", 1, ",\"number\":4");
    const Report with_numbers =
        report(record, {{3, QStringLiteral("x")}, {5, QStringLiteral("then here")}});
    std::string numbers;
    for (const auto& number : with_numbers.void_numbers) {
        numbers += std::to_string(number.number) + ": " + number.reason.toStdString() + "; ";
    }
    EXPECT_EQ(numbers, "1: another try; 2: another try; 4: write; 5: not recorded: then here; ");
    EXPECT_EQ(with_numbers.numbers, 5);
    EXPECT_TRUE(
        text_of(with_numbers)
            .contains(QStringLiteral("Serial numbers: 5 given out, 4 void\n  1  another try\n")));
}

TEST_F(Reports, AreOnePageThatTakesNothingFromElsewhere)
{
    const QString page = html_of(report(sample + line("<script>", "<b>", 1)));
    EXPECT_FALSE(page.contains(QStringLiteral("<script")));
    EXPECT_FALSE(page.contains(QStringLiteral("<b>&")));
    EXPECT_TRUE(page.contains(QStringLiteral("s &lt;script&gt;")));
    EXPECT_FALSE(page.contains(QStringLiteral("http")));
    EXPECT_FALSE(page.contains(QStringLiteral("src=")));
}

TEST_F(Reports, ListFailuresAndVoidNumbersOnThePageIfThereAreAny)
{
    const QString good = html_of(report(line("/dev/a", "ok", 1)));
    EXPECT_FALSE(good.contains(QStringLiteral("<h2>Failures")));
    EXPECT_FALSE(good.contains(QStringLiteral("<h2>Serial numbers")));
    const QString bad = html_of(report(
        line("/dev/a", "ok", 1, ",\"number\":3") + line("/dev/b", "write", 1, ",\"number\":4"),
        {{3, QStringLiteral("x")}, {5, QStringLiteral("<then> here")}}));
    EXPECT_TRUE(bad.contains(QStringLiteral("<h2>Failures by verdict</h2>")));
    EXPECT_TRUE(
        bad.contains(QStringLiteral("<td>write</td><td class=\"n\">1</td><td class=\"n\">50.0%")));
    EXPECT_TRUE(bad.contains(QStringLiteral("<h2>Serial numbers: 3 given out, 2 void</h2>")));
    EXPECT_TRUE(bad.contains(QStringLiteral(
        "<tr><td class=\"n\">4</td><td>write</td></tr>\n"
        "<tr><td class=\"n\">5</td><td>not recorded: &lt;then&gt; here</td></tr>\n")));
    EXPECT_FALSE(bad.contains(QStringLiteral("<td class=\"n\">3</td><td>")));
}

TEST_F(Reports, SayTheSameAsJson)
{
    const QJsonObject json = json_of(report(sample));
    EXPECT_EQ(json.value(QStringLiteral("ok")).toInt(), 3);
    const QJsonObject port = json.value(QStringLiteral("ports")).toArray().at(1).toObject();
    EXPECT_EQ(text(port, "station"), "s");
    EXPECT_EQ(text(port, "port"), "/dev/b");
    EXPECT_EQ(
        port.value(QStringLiteral("failures")).toObject().value(QStringLiteral("silent")).toInt(),
        2);
}

TEST(Quantile, IsOneOfTheValues)
{
    EXPECT_EQ(gang::quantile({}, 0.5), std::nullopt);
    EXPECT_EQ(gang::quantile({3, 1, 2}, 0.5), 2);
    EXPECT_EQ(gang::quantile({3, 1, 2}, 1), 3);
    EXPECT_EQ(gang::quantile({1}, 0), 1);
}

TEST_F(Reports, ByTheProgram)
{
    put_file(QStringLiteral("record"), sample);
    EXPECT_EQ(run(words("report record record")).out.left(8), "12 runs ");
    EXPECT_EQ(run(words("report missing")).status, 2);
    const GangResult empty = run(words("report"));
    EXPECT_EQ(empty.status, 2);
    EXPECT_EQ(empty.err.toStdString(), "zserial-gang: report needs record files, and takes --json "
                                       "or --html but not both\n");
    EXPECT_EQ(run(words("report --json --html record")).status, 2);
    EXPECT_TRUE(run(words("report --html record")).out.startsWith("<!DOCTYPE html>"));
}

TEST_F(Reports, HaveHelp)
{
    const GangResult result = run(words("report --help"));
    EXPECT_EQ(result.status, 0) << result;
    EXPECT_THAT(result.out.toStdString(), testing::HasSubstr("zserial-gang [options] file...\n"));
    EXPECT_THAT(result.out.toStdString(), testing::HasSubstr("--serial-file <file>"));
    EXPECT_FALSE(result.out.contains("--watch")) << result;
}

TEST_F(Reports, CannotBePrintedOnAFullDisk)
{
    put_file(QStringLiteral("record"), sample);
    const GangResult result =
        GangProcess(folder(), words("report record"), QStringLiteral("exec >/dev/full")).result();
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err.toStdString(),
              "zserial-gang: cannot write the report to standard output\n");
}

TEST_F(Reports, CountWhatTheySkip)
{
    put_file(QStringLiteral("record"), sample + "{\"torn\n");
    const GangResult result = run(words("report record"));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err.toStdString(), "zserial-gang: skipped lines that are not records: 1\n");
}

} // namespace
