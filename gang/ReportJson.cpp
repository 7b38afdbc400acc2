#include "gang/Report.h"

#include <QJsonArray>

namespace gang
{

namespace
{

QJsonValue number_or_null(std::optional<double> value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QJsonObject durations(const RunGroup& group)
{
    return {{QStringLiteral("median"), number_or_null(quantile(group.ok_seconds, 0.5))},
            {QStringLiteral("nine_in_ten"), number_or_null(quantile(group.ok_seconds, 0.9))},
            {QStringLiteral("longest"), number_or_null(quantile(group.ok_seconds, 1))}};
}

QJsonObject json_of(const RunGroup& group)
{
    QJsonObject failures;
    for (auto failure = group.failures.begin(); failure != group.failures.end(); ++failure) {
        failures.insert(failure.key(), failure.value());
    }
    return {{QStringLiteral("runs"), group.runs},
            {QStringLiteral("ok"), group.ok},
            {QStringLiteral("ok_at_first_try"), group.ok_at_once},
            {QStringLiteral("yield"), group.yield()},
            {QStringLiteral("failures"), failures},
            {QStringLiteral("seconds"), durations(group)}};
}

} // namespace

QJsonObject json_of(const Report& report)
{
    QJsonArray ports;
    for (auto port = report.ports.begin(); port != report.ports.end(); ++port) {
        QJsonObject object = json_of(port.value());
        object.insert(QStringLiteral("station"), port.key().section(QLatin1Char(' '), 0, -2));
        object.insert(QStringLiteral("port"), port.key().section(QLatin1Char(' '), -1));
        ports.append(object);
    }
    QJsonArray void_numbers;
    for (const VoidNumber& number : report.void_numbers) {
        void_numbers.append(
            QJsonObject{{QStringLiteral("number"), static_cast<qint64>(number.number)},
                        {QStringLiteral("reason"), number.reason}});
    }
    QJsonObject json = json_of(report.all);
    json.insert(QStringLiteral("from"), report.first);
    json.insert(QStringLiteral("to"), report.last);
    json.insert(QStringLiteral("ports"), ports);
    json.insert(QStringLiteral("numbers"), report.numbers);
    json.insert(QStringLiteral("void_numbers"), void_numbers);
    json.insert(QStringLiteral("skipped_lines"), report.skipped);
    return json;
}

} // namespace gang
