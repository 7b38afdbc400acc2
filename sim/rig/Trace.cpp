#include "sim/rig/Trace.h"

#include "sim/device/Error.h"
#include "sim/device/FrameCodec.h"
#include "sim/device/MemoryGeometry.h"

#include <QStringList>

#include <fcntl.h>
#include <sys/stat.h>

namespace sim
{

namespace
{

QString field(const char* name, qint64 value)
{
    return QStringLiteral("%1=%2").arg(QString::fromLatin1(name), QString::number(value));
}

/// The number of bytes that a read requests or a write sends.
qint64 data_size(const Profile& profile, const Command& command)
{
    if (command.kind == Command::Kind::Write) {
        return command.data().size();
    }
    const MemoryGeometry memory = geometry_of(profile, command.is_eeprom());
    return qint64{command.count()} * static_cast<qint64>(memory.word_size);
}

QStringList access_fields(const Profile& profile, const Command& command)
{
    const auto address = static_cast<qulonglong>(byte_address_of(profile, command));
    QStringList fields = {
        command.is_eeprom() ? QStringLiteral("eeprom") : QStringLiteral("flash"),
        field("count", command.count()),
        QStringLiteral("address=0x%1").arg(address, 8, 16, QLatin1Char('0')),
    };
    if (command.kind != Command::Kind::Erase) {
        fields.append(field("data", data_size(profile, command)));
    }
    return fields;
}

qint64 request_size(const Command& command)
{
    return command.kind == Command::Kind::Probe ? 1 : make_frame(command.payload).size();
}

const char* answer_name(const Command& command, const Outcome& outcome)
{
    if (command.ignored) {
        return "unheard";
    }
    if (outcome.answer.isEmpty()) {
        return command.refused ? "refused" : "none";
    }
    if (outcome.is_recorded) {
        return "recorded";
    }
    switch (command.kind) {
    case Command::Kind::Read:
        return "data";
    case Command::Kind::Write:
    case Command::Kind::Erase:
        return "ack";
    default:
        return "version";
    }
}

QString fault_names(const std::vector<FaultKind>& faults)
{
    QStringList names;
    for (const FaultKind kind : faults) {
        names.append(QString::fromLatin1(name_of(kind)));
    }
    return names.isEmpty() ? QStringLiteral("none") : names.join(QLatin1Char(','));
}

/// Never waits, neither for a pipe to get a reader nor for the reader: a device that waited would
/// miss its deadlines.
int open_trace(const QString& path)
{
    constexpr mode_t by_umask = 0666;
    return ::open(QFile::encodeName(path).constData(),
                  O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, by_umask);
}

} // namespace

QString trace_line(const Profile& profile, const Command& command, const Outcome& outcome)
{
    QStringList fields = {
        QStringLiteral("#%1").arg(command.sequence + 1),
        QStringLiteral("%1").arg(command.baud),
        QString::fromLatin1(name_of(command.kind)),
    };
    if (command.is_access()) {
        fields += access_fields(profile, command);
    }
    fields += {
        field("request", request_size(command)),
        QStringLiteral("answer=") + QLatin1String(answer_name(command, outcome)),
        field("sent", outcome.bytes_sent),
        QStringLiteral("faults=") + fault_names(outcome.faults),
        QStringLiteral("payload=") + QString::fromLatin1(command.payload.toHex()),
    };
    return fields.join(QLatin1Char(' '));
}

Trace::Trace(const QString& path, const Profile& profile) : m_profile(profile)
{
    const int descriptor = open_trace(path);
    if (descriptor < 0 || !m_file.open(descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered,
                                       QFileDevice::AutoCloseHandle)) {
        throw Error(QStringLiteral("%1: cannot be opened for writing").arg(path));
    }
    m_clock.start();
}

void Trace::add(const Command& command, const Outcome& outcome)
{
    const double ms = static_cast<double>(m_clock.nsecsElapsed()) / 1e6;
    const QString fields = trace_line(m_profile, command, outcome);
    const QByteArray line =
        QStringLiteral("%1 %2\n").arg(QString::number(ms, 'f', 3), fields).toUtf8();
    m_is_whole = m_file.write(line) == line.size() && m_is_whole;
}

} // namespace sim
