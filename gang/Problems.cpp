#include "gang/Problems.h"

namespace gang
{

bool prevents_start(const inspect::Problem& problem)
{
    return problem.severity() == inspect::Severity::Error ||
           problem.code == inspect::Code::RecordsAfterEnd ||
           problem.code == inspect::Code::NoEndRecord;
}

QString text_of(const inspect::Problem& problem)
{
    const inspect::ProblemKind& kind = inspect::kind_of(problem.code);
    return QStringLiteral("%1 (%2): %3")
        .arg(QLatin1String(kind.title), QLatin1String(kind.name), problem.message);
}

QString line_of(const inspect::Problem& problem, const QString& file)
{
    QString place = file;
    if (problem.place.line != 0) {
        place += QStringLiteral(", line %1").arg(problem.place.line);
    }
    return QStringLiteral("%1: %2").arg(place, text_of(problem));
}

} // namespace gang
