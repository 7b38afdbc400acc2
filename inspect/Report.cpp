#include "inspect/Report.h"

#include "inspect/Figures.h"

#include <QJsonArray>

#include <algorithm>

namespace inspect
{

namespace
{

QJsonValue number_or_null(qint64 number)
{
    return number == 0 ? QJsonValue() : QJsonValue(number);
}

QJsonObject json_of(const Problem& problem)
{
    const ProblemKind& kind = kind_of(problem.code);
    return {
        {QStringLiteral("code"), QString::fromLatin1(kind.name)},
        {QStringLiteral("severity"), name_of(kind.severity)},
        {QStringLiteral("title"), QString::fromLatin1(kind.title)},
        {QStringLiteral("message"), problem.message},
        {QStringLiteral("uploader"), problem.effect()},
        {QStringLiteral("remedy"), problem.advice()},
        {QStringLiteral("file"),
         problem.place.file.isEmpty() ? QJsonValue() : QJsonValue(problem.place.file)},
        {QStringLiteral("line"), number_or_null(problem.place.line)},
        {QStringLiteral("column"), number_or_null(problem.place.column)},
    };
}

QString text_of(const Place& place)
{
    QString text = place.file;
    if (place.line != 0) {
        text += QStringLiteral(", line %1").arg(place.line);
    }
    if (place.column != 0) {
        text += QStringLiteral(", column %1").arg(place.column);
    }
    return text;
}

void print(TextPage& page, const Problem& problem)
{
    const ProblemKind& kind = kind_of(problem.code);
    const bool is_error = kind.severity == Severity::Error;
    page.line();
    page.line(page.styled(name_of(kind.severity) + QLatin1Char(' ') + QLatin1String(kind.name),
                          is_error ? Style::Error : Style::Warning) +
              QStringLiteral(": ") + page.styled(QLatin1String(kind.title), Style::Heading));
    if (!problem.place.file.isEmpty()) {
        page.labelled(QStringLiteral("where"), text_of(problem.place), 2, 10);
    }
    page.labelled(QStringLiteral("what"), problem.message, 2, 10);
    page.labelled(QStringLiteral("uploader"), problem.effect(), 2, 10);
    page.labelled(QStringLiteral("instead"), problem.advice(), 2, 10);
}

void print_verdict(TextPage& page, const std::vector<Problem>& problems)
{
    if (problems.empty()) {
        page.line(page.styled(QStringLiteral("No problems found."), Style::Good));
        return;
    }
    const auto errors = static_cast<quint64>(
        std::count_if(problems.begin(), problems.end(), [](const Problem& problem) {
            return problem.severity() == Severity::Error;
        }));
    page.line(page.styled(count_text(errors, "error") + QStringLiteral(", ") +
                              count_text(problems.size() - errors, "warning") +
                              QStringLiteral(". See docs/inspect.md, or man zserial-inspect."),
                          errors == 0 ? Style::Warning : Style::Error));
}

} // namespace

ExitStatus Report::status() const
{
    if (incomplete) {
        return ExitCannot;
    }
    return problems.empty() ? ExitFine : ExitProblems;
}

QJsonObject json_of(const Report& report)
{
    QJsonArray problems;
    for (const Problem& problem : report.problems) {
        problems.append(json_of(problem));
    }
    QJsonObject object = report.facts ? report.facts() : QJsonObject();
    object.insert(QStringLiteral("problems"), problems);
    return object;
}

QString text_of(const Report& report, bool colour)
{
    TextPage page(colour);
    if (report.print_text) {
        report.print_text(page);
    }
    for (const Problem& problem : report.problems) {
        print(page, problem);
    }
    if (!page.text().isEmpty()) {
        page.line();
    }
    print_verdict(page, report.problems);
    return page.text();
}

} // namespace inspect
