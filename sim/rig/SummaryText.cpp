#include "sim/device/Names.h"
#include "sim/rig/Summary.h"

namespace sim
{

namespace
{

/// The first of many are enough to see where a host departed from the recording.
constexpr std::size_t unmatched_shown = 10;

QString command_line(const Tally& commands)
{
    QStringList numbers;
    for (const auto& row : command_kinds) {
        numbers.append(QStringLiteral("%1 %2").arg(QString::number(commands.number_of(row.kind)),
                                                   QString::fromLatin1(row.name)));
    }
    return QStringLiteral("commands: %1; %2 refused, %3 repeated")
        .arg(numbers.join(QStringLiteral(", ")))
        .arg(commands.refused())
        .arg(commands.repeated());
}

QString line_line(const Summary& summary)
{
    return QStringLiteral("line: %1 bytes from the host, %2 to the host, %3 frames dropped")
        .arg(summary.bytes_from_host)
        .arg(summary.bytes_to_host)
        .arg(summary.dropped_frames);
}

QString loss_line(qint64 lost_bytes)
{
    return QStringLiteral("line: %1 bytes lost because the host left too much unread")
        .arg(lost_bytes);
}

QStringList memory_lines(const DeviceMemory::Statistics& memory)
{
    return {
        QStringLiteral("flash: %1 pages erased, %2 rows programmed, "
                       "%3 cells programmed without erase")
            .arg(memory.pages_erased)
            .arg(memory.flash_rows_programmed)
            .arg(memory.cells_programmed_without_erase),
        QStringLiteral("EEPROM: %1 writes").arg(memory.eeprom_writes),
    };
}

QString fault_line(const Summary& summary)
{
    QStringList numbers;
    for (const auto& [kind, count] : summary.faults) {
        numbers.append(QStringLiteral("%1 %2").arg(QString::number(count),
                                                   QString::fromLatin1(name_of(kind))));
    }
    const QString list =
        numbers.isEmpty() ? QStringLiteral("none") : numbers.join(QStringLiteral(", "));
    return QStringLiteral("faults with seed %1: %2").arg(QString::number(*summary.seed), list);
}

QString pace_line(const Summary::Pace& pace)
{
    const Lateness& lateness = pace.lateness;
    return QStringLiteral("pace: line busy for %1 of %2 ms, last bytes late by %3 us in the mean "
                          "and %4 us at most, of %5")
        .arg(pace.use.busy_ns() / 1000000)
        .arg(pace.use.span_ns() / 1000000)
        .arg(lateness.mean_ns() / 1000)
        .arg(lateness.most_ns() / 1000)
        .arg(lateness.count());
}

QStringList replay_lines(const Summary::Replayed& replayed)
{
    QStringList lines = {QStringLiteral("replay: %1 of %2 recorded frames came")
                             .arg(replayed.matched)
                             .arg(replayed.recorded)};
    for (std::size_t i = 0; i < replayed.unmatched.size() && i < unmatched_shown; ++i) {
        const Replay::Unmatched& unmatched = replayed.unmatched[i];
        lines.append(QStringLiteral("replay: not in the rest of the log, %1 times: %2")
                         .arg(QString::number(unmatched.times),
                              QString::fromLatin1(unmatched.payload.toHex(' '))));
    }
    if (replayed.unmatched.size() > unmatched_shown) {
        const auto kept = static_cast<qint64>(replayed.unmatched.size() - unmatched_shown);
        lines.append(
            QStringLiteral("replay: and %1 others").arg(kept + replayed.further_unmatched));
    }
    return lines;
}

QStringList check_lines(const MemoryImage::Comparison& check)
{
    QStringList lines = {check.report};
    if (check.outside_bytes != 0) {
        lines += QStringLiteral("image: %1 bytes lie outside of the device's flash and EEPROM")
                     .arg(check.outside_bytes);
    }
    return lines;
}

QString end_line(const CommandEnd& end)
{
    switch (end.kind) {
    case CommandEnd::Kind::Exited:
        return QStringLiteral("command: ended with status %1").arg(end.number);
    case CommandEnd::Kind::Killed:
        return QStringLiteral("command: killed by signal %1").arg(end.number);
    case CommandEnd::Kind::NotStarted:
        break;
    }
    return QStringLiteral("command: not started");
}

} // namespace

QStringList text_of(const Summary& summary)
{
    QStringList lines = {command_line(summary.commands), line_line(summary)};
    if (summary.lost_bytes != 0) {
        lines += loss_line(summary.lost_bytes);
    }
    lines += memory_lines(summary.memory);
    if (summary.seed) {
        lines += fault_line(summary);
    }
    if (summary.pace) {
        lines += pace_line(*summary.pace);
    }
    if (summary.replayed) {
        lines += replay_lines(*summary.replayed);
    }
    if (summary.check) {
        lines += check_lines(*summary.check);
    }
    if (summary.command) {
        lines += end_line(*summary.command);
    }
    return lines;
}

} // namespace sim
