#include "gang/RunRecord.h"

#include <QJsonArray>

namespace gang
{

namespace
{

QJsonArray json_of(const QVector<quint64>& numbers)
{
    QJsonArray array;
    for (const quint64 number : numbers) {
        array.append(static_cast<qint64>(number));
    }
    return array;
}

void insert_numbers(QJsonObject& json, const RunRecord& record)
{
    if (record.number) {
        json.insert(QStringLiteral("number"), static_cast<qint64>(*record.number));
    }
    if (!record.void_numbers.isEmpty()) {
        json.insert(QStringLiteral("void_numbers"), json_of(record.void_numbers));
    }
}

} // namespace

QString version_text(unsigned short version)
{
    return QStringLiteral("0x%1").arg(version, 4, 16, QLatin1Char('0'));
}

QJsonObject json_of(const RunRecord& record)
{
    QJsonObject json{
        {QStringLiteral("time"), record.time.toUTC().toString(Qt::ISODateWithMs)},
        {QStringLiteral("station"), record.station},
        {QStringLiteral("port"), record.port},
        {QStringLiteral("name"), record.adapter_name},
        {QStringLiteral("serial"), record.adapter_serial},
        {QStringLiteral("version"), record.version ? version_text(*record.version) : QString()},
        {QStringLiteral("arguments"), QJsonArray::fromStringList(record.arguments)},
        {QStringLiteral("image_sha256"), record.image_sha256},
        {QStringLiteral("table_sha256"), record.table_sha256},
        {QStringLiteral("tries"), record.tries},
        {QStringLiteral("seconds"), record.seconds},
        {QStringLiteral("verdict"), name_of(record.verdict)},
        {QStringLiteral("message"), record.message},
        {QStringLiteral("log"), record.log},
    };
    insert_numbers(json, record);
    return json;
}

} // namespace gang
