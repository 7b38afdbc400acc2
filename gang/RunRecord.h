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

/// What is kept of one run: one device on one port, from the first try to the verdict.
struct RunRecord {
    QDateTime time; ///< of the beginning
    QString station;
    QString port;
    QString adapter_name;
    QString adapter_serial;
    std::optional<unsigned short> version; ///< of the bootloader
    QStringList arguments;                 ///< of the tool, as the user gave them
    QString image_sha256;                  ///< of the image as it was given, in hexadecimal
    QString table_sha256;
    int tries = 0;
    double seconds = 0;
    Verdict verdict = Verdict::Failed;
    QString message;
    QString log;                   ///< the folder with console and frame log; empty: not kept
    std::optional<quint64> number; ///< the serial number that the device was given
    QVector<quint64> void_numbers; ///< those of earlier tries, which no device has for good
};

/// With the keys of a line of the record.
QJsonObject json_of(const RunRecord& record);

/// "0x0110".
QString version_text(unsigned short version);

} // namespace gang
