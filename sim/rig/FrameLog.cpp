#include "sim/rig/FrameLog.h"

#include "sim/device/Error.h"
#include "sim/rig/InputFile.h"

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
    return std::all_of(digits.begin(), digits.end(), is_digit);
}

/// Whether the line is the beginning of a line of a log.
bool may_be_cut(const QByteArray& line)
{
    const QByteArray prefix = line.left(prefix_length);
    const bool has_prefix =
        QByteArray("TX:").startsWith(prefix) || QByteArray("RX:").startsWith(prefix);
    return has_prefix && is_hexadecimal(line.mid(prefix_length));
}

/// False when the line is not one of a log.
bool add_line(FrameLog& log, const QByteArray& line)
{
    const QByteArray digits = line.mid(prefix_length);
    const bool is_sent = line.startsWith("TX:");
    const bool has_prefix = is_sent || line.startsWith("RX:");
    if (!has_prefix || !is_hexadecimal(digits) || digits.size() % 2 != 0) {
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
    const QList<QByteArray> lines = content.split('\n');
    for (int number = 1; number <= lines.size(); ++number) {
        const QByteArray line = lines.at(number - 1).trimmed();
        const bool is_cut = number == lines.size() && may_be_cut(line);
        if (!line.isEmpty() && !add_line(log, line) && !is_cut) {
            throw Error(QStringLiteral("%1: line %2 is not a line of a frame log")
                            .arg(path, QString::number(number)));
        }
    }
    return log;
}

FrameLog read_frame_log(const QString& path)
{
    refuse_device(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw Error(QStringLiteral("%1: cannot read the log: %2").arg(path, file.errorString()));
    }
    FrameLog log = parse_frame_log(file.readAll(), path);
    if (log.entries.empty()) {
        throw Error(QStringLiteral("%1: the log has no line that begins with TX:").arg(path));
    }
    return log;
}

} // namespace sim
