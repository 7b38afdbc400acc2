#include "sim/FrameLog.h"

#include "sim/UsageError.h"

#include <QFile>

#include <algorithm>

namespace sim
{

namespace
{

constexpr int prefix_length = 3;

bool is_hexadecimal(const QByteArray& digits)
{
    const auto is_digit = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
    };
    return digits.size() % 2 == 0 && std::all_of(digits.begin(), digits.end(), is_digit);
}

/// False when the line is none of a log.
bool add_line(FrameLog& log, const QByteArray& line)
{
    const QByteArray digits = line.mid(prefix_length);
    const bool is_sent = line.startsWith("TX:");
    if ((!is_sent && !line.startsWith("RX:")) || !is_hexadecimal(digits)) {
        return false;
    }
    if (is_sent) {
        log.entries.push_back({QByteArray::fromHex(digits), {}});
    } else if (!log.entries.empty()) {
        log.entries.back().response.append(QByteArray::fromHex(digits));
    }
    return true;
}

} // namespace

FrameLog parse_frame_log(const QByteArray& content, const QString& path)
{
    FrameLog log;
    int number = 0;
    for (const QByteArray& raw : content.split('\n')) {
        ++number;
        const QByteArray line = raw.trimmed();
        if (!line.isEmpty() && !add_line(log, line)) {
            throw UsageError(QStringLiteral("--replay %1: line %2 is no frame of a log")
                                 .arg(path, QString::number(number)));
        }
    }
    return log;
}

FrameLog read_frame_log(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw UsageError(QStringLiteral("--replay %1: cannot read the log").arg(path));
    }
    FrameLog log = parse_frame_log(file.readAll(), path);
    if (log.entries.empty()) {
        throw UsageError(QStringLiteral("--replay %1: nothing was sent in this log").arg(path));
    }
    return log;
}

} // namespace sim
