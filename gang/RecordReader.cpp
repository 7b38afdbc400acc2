#include "gang/RecordReader.h"

#include "gang/SerialNumber.h"
#include "gang/SharedFile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace gang
{

namespace
{

/// Returns nothing if the value is not a number that a gang gives out.
std::optional<quint64> number_from(const QJsonValue& value)
{
    const double number = value.toDouble(-1);
    const bool is_given = number >= 0 && number <= static_cast<double>(largest_number);
    return is_given ? std::optional(static_cast<quint64>(number)) : std::nullopt;
}

/// A line counts as a record if it has a verdict.
std::optional<RecordedRun> run_from(const QByteArray& line)
{
    const QJsonObject json = QJsonDocument::fromJson(line).object();
    RecordedRun run;
    run.verdict = json.value(QStringLiteral("verdict")).toString();
    if (run.verdict.isEmpty()) {
        return std::nullopt;
    }
    run.time = json.value(QStringLiteral("time")).toString();
    run.station = json.value(QStringLiteral("station")).toString();
    run.port = json.value(QStringLiteral("port")).toString();
    run.seconds = json.value(QStringLiteral("seconds")).toDouble();
    run.tries = json.value(QStringLiteral("tries")).toInt(1);
    run.number = number_from(json.value(QStringLiteral("number")));
    for (const auto& value : json.value(QStringLiteral("void_numbers")).toArray()) {
        if (const auto number = number_from(value)) {
            run.void_numbers.push_back(*number);
        }
    }
    return run;
}

} // namespace

void read_record(const QString& path, RecordedRuns& runs)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw FileError(QStringLiteral("%1: %2").arg(path, file.errorString()));
    }
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        const bool is_torn = !line.endsWith('\n');
        const auto run = is_torn ? std::nullopt : run_from(line);
        if (run) {
            runs.runs.push_back(*run);
        } else if (!line.trimmed().isEmpty()) {
            ++runs.skipped;
        }
    }
    if (file.error() != QFileDevice::NoError) {
        throw FileError(QStringLiteral("%1: %2").arg(path, file.errorString()));
    }
}

} // namespace gang
