#include "gang/Report.h"

#include <QStringList>

namespace gang
{

namespace
{

QString failures_text(const RunGroup& group)
{
    QStringList parts;
    for (auto failure = group.failures.begin(); failure != group.failures.end(); ++failure) {
        parts << QStringLiteral("%1 %2").arg(QString::number(failure.value()), failure.key());
    }
    return parts.join(QStringLiteral(", "));
}

QString seconds(std::optional<double> value)
{
    return value ? QStringLiteral("%1 s").arg(*value, 0, 'f', 1) : QStringLiteral("-");
}

void add_ports(QStringList& lines, const Report& report)
{
    lines << QString() << QStringLiteral("By station and port:");
    int widest = 0;
    int digits = 0;
    for (auto port = report.ports.begin(); port != report.ports.end(); ++port) {
        widest = qMax(widest, port.key().size());
        digits = qMax(digits, QString::number(port.value().runs).size());
    }
    for (auto port = report.ports.begin(); port != report.ports.end(); ++port) {
        const RunGroup& group = port.value();
        lines << QStringLiteral("  %1  %2 of %3 ok  %4  median %5  %6")
                     .arg(port.key().leftJustified(widest),
                          QString::number(group.ok).rightJustified(digits),
                          QString::number(group.runs).rightJustified(digits),
                          percent(group.yield()).rightJustified(6),
                          seconds(quantile(group.ok_seconds, 0.5)), failures_text(group))
                     .trimmed()
                     .prepend(QStringLiteral("  "));
    }
}

void add_numbers(QStringList& lines, const Report& report)
{
    if (report.numbers == 0) {
        return;
    }
    lines << QString()
          << QStringLiteral("Serial numbers: %1 given out, %2 void")
                 .arg(QString::number(report.numbers),
                      QString::number(static_cast<int>(report.void_numbers.size())));
    for (const VoidNumber& number : report.void_numbers) {
        lines << QStringLiteral("  %1  %2").arg(QString::number(number.number), number.reason);
    }
}

} // namespace

QString percent(double share)
{
    return QStringLiteral("%1%").arg(share * 100, 0, 'f', 1);
}

QString text_of(const Report& report)
{
    const RunGroup& all = report.all;
    QStringList lines{
        (all.runs == 1 ? QStringLiteral("%1 run from %2 to %3")
                       : QStringLiteral("%1 runs from %2 to %3"))
            .arg(QString::number(all.runs), report.first, report.last),
        QStringLiteral("Yield: %1 (%2 ok, %3 of them at the first try)")
            .arg(percent(all.yield()), QString::number(all.ok), QString::number(all.ok_at_once))};
    if (all.runs == 0) {
        lines = QStringList{QStringLiteral("No runs")};
    }
    if (!all.failures.isEmpty()) {
        lines << QStringLiteral("Failures: ") + failures_text(all);
    }
    if (!all.ok_seconds.empty()) {
        lines << QStringLiteral("Durations: median %1, nine in ten up to %2, longest %3")
                     .arg(seconds(quantile(all.ok_seconds, 0.5)),
                          seconds(quantile(all.ok_seconds, 0.9)),
                          seconds(quantile(all.ok_seconds, 1)));
    }
    if (all.runs != 0) {
        add_ports(lines, report);
    }
    add_numbers(lines, report);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

} // namespace gang
