#pragma once

#include "gang/Verdict.h"

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

namespace gang
{

/// The record of one run: one device on one port, from the first try to the verdict.
struct RunRecord {
    QDateTime time; ///< when the run started
    QString station;
    QString port;
    QString adapter_name;
    QString adapter_serial;
    std::optional<unsigned short> version; ///< of the bootloader
    QStringList arguments;                 ///< of zserial, as the user gave them
    QString image_sha256;                  ///< of the image without serial number, in hexadecimal
    QString table_sha256;
    int tries = 0;
    double seconds = 0;
    Verdict verdict = Verdict::Failed;
    QString message;
    QString log;                   ///< the folder with console and frame log; empty: not kept
    std::optional<quint64> number; ///< serial number given to the device
    QVector<quint64> void_numbers; ///< serial numbers of earlier tries, now void
};

/// Returns a line of the record; docs/production.md lists its keys.
QJsonObject json_of(const RunRecord& record);

/// Formats a version, such as "0x0110".
QString version_text(unsigned short version);

} // namespace gang
