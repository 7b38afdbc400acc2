#include "gang/Report.h"

#include <QStringList>

namespace gang
{

namespace
{

const char* const page_start = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Production report</title>
<style>
body { font: 16px/1.5 system-ui, sans-serif; color: #1d2733; background: #f5f7f9; margin: 0; }
main { max-width: 64rem; margin: 0 auto; padding: 1.5rem; }
h1 { font-size: 1.5rem; margin: 0; }
h2 { font-size: 1.1rem; margin: 2rem 0 .5rem; }
p.span { color: #5a6673; margin: 0 0 1.5rem; }
.figures { display: flex; flex-wrap: wrap; gap: 1rem; }
.figure { background: #fff; border: 1px solid #d9dfe5; border-radius: 6px; padding: .75rem 1rem; min-width: 9rem; }
.figure b { display: block; font-size: 1.5rem; }
.figure span { color: #5a6673; }
.wide { overflow-x: auto; }
table { border-collapse: collapse; width: 100%; background: #fff; border: 1px solid #d9dfe5; }
th, td { padding: .4rem .75rem; text-align: left; border-bottom: 1px solid #e8ecf0; white-space: nowrap; }
th { background: #eef1f4; font-weight: 600; }
td.n, th.n { text-align: right; font-variant-numeric: tabular-nums; }
td.failures { white-space: normal; }
.bar { display: inline-block; width: 8rem; height: .7rem; background: #e5b5b0; vertical-align: middle; }
.bar i { display: block; height: 100%; background: #2f855a; }
</style>
</head>
<body>
<main>
)";

QString seconds_html(std::optional<double> value)
{
    return value ? QStringLiteral("%1&nbsp;s").arg(*value, 0, 'f', 1) : QStringLiteral("&ndash;");
}

QString figure(const QString& value, const char* what)
{
    return QStringLiteral("<div class=\"figure\"><b>%1</b><span>%2</span></div>\n")
        .arg(value, QLatin1String(what));
}

QString figures(const Report& report)
{
    const RunGroup& all = report.all;
    return QStringLiteral("<div class=\"figures\">\n") + figure(percent(all.yield()), "yield") +
           figure(QString::number(all.runs), "runs") + figure(QString::number(all.ok), "ok") +
           figure(QString::number(all.ok_at_once), "ok at the first try") +
           figure(seconds_html(quantile(all.ok_seconds, 0.5)), "median") +
           figure(seconds_html(quantile(all.ok_seconds, 0.9)), "nine in ten up to") +
           figure(seconds_html(quantile(all.ok_seconds, 1)), "longest") +
           QStringLiteral("</div>\n");
}

QString failures_html(const RunGroup& group)
{
    QStringList parts;
    for (auto failure = group.failures.begin(); failure != group.failures.end(); ++failure) {
        parts << QStringLiteral("%1&nbsp;%2")
                     .arg(QString::number(failure.value()), failure.key().toHtmlEscaped());
    }
    return parts.join(QStringLiteral(", "));
}

QString failure_table(const RunGroup& group)
{
    if (group.failures.isEmpty()) {
        return {};
    }
    QString rows;
    for (auto failure = group.failures.begin(); failure != group.failures.end(); ++failure) {
        rows +=
            QStringLiteral("<tr><td>%1</td><td class=\"n\">%2</td><td class=\"n\">%3</td></tr>\n")
                .arg(failure.key().toHtmlEscaped(), QString::number(failure.value()),
                     percent(static_cast<double>(failure.value()) / group.runs));
    }
    return QStringLiteral(
               "<h2>Failures by verdict</h2>\n<div class=\"wide\"><table>\n<tr><th>Verdict"
               "</th><th class=\"n\">Runs</th><th class=\"n\">Share</th></tr>\n") +
           rows + QStringLiteral("</table></div>\n");
}

QString port_row(const QString& name, const RunGroup& group)
{
    return QStringLiteral("<tr><td>%1</td><td class=\"n\">%2</td><td class=\"n\">%3</td><td><span "
                          "class=\"bar\"><i style=\"width:%4\"></i></span> %4</td><td "
                          "class=\"n\">%5</td><td class=\"failures\">%6</td></tr>\n")
        .arg(name.toHtmlEscaped(), QString::number(group.runs), QString::number(group.ok),
             percent(group.yield()), seconds_html(quantile(group.ok_seconds, 0.5)),
             failures_html(group));
}

QString port_table(const Report& report)
{
    QString rows;
    for (auto port = report.ports.begin(); port != report.ports.end(); ++port) {
        rows += port_row(port.key(), port.value());
    }
    return QStringLiteral(
               "<h2>By station and port</h2>\n<div class=\"wide\"><table>\n<tr><th>Station "
               "and port</th><th class=\"n\">Runs</th><th class=\"n\">ok</th><th>Yield</th>"
               "<th class=\"n\">Median</th><th>Failures</th></tr>\n") +
           rows + QStringLiteral("</table></div>\n");
}

QString number_table(const Report& report)
{
    if (report.numbers == 0) {
        return {};
    }
    QString rows;
    for (const VoidNumber& number : report.void_numbers) {
        rows += QStringLiteral("<tr><td class=\"n\">%1</td><td>%2</td></tr>\n")
                    .arg(QString::number(number.number), number.reason.toHtmlEscaped());
    }
    return QStringLiteral("<h2>Serial numbers: %1 given out, %2 void</h2>\n<div "
                          "class=\"wide\"><table>\n<tr><th "
                          "class=\"n\">Number</th><th>Why it is void</th></tr>\n")
               .arg(QString::number(report.numbers),
                    QString::number(static_cast<int>(report.void_numbers.size()))) +
           rows + QStringLiteral("</table></div>\n");
}

} // namespace

QString html_of(const Report& report)
{
    return QLatin1String(page_start) + QStringLiteral("<h1>Production report</h1>\n") +
           QStringLiteral("<p class=\"span\">%1 to %2</p>\n")
               .arg(report.first.toHtmlEscaped(), report.last.toHtmlEscaped()) +
           figures(report) + failure_table(report.all) + port_table(report) + number_table(report) +
           QStringLiteral("</main>\n</body>\n</html>\n");
}

} // namespace gang
