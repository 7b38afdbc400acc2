#include "sim/device/Names.h"
#include "sim/rig/Summary.h"

#include <QJsonArray>

namespace sim
{

namespace
{

/// JSON knows one kind of number, which holds whole ones up to 2 to the 53rd.
QJsonValue number(qint64 value)
{
    return {static_cast<double>(value)};
}

QJsonObject commands_of(const Tally& commands)
{
    QJsonObject object;
    for (const auto& row : command_kinds) {
        object.insert(QLatin1String(row.name), number(commands.number_of(row.kind)));
    }
    return object;
}

QJsonObject flash_of(const DeviceMemory::Statistics& memory)
{
    return {
        {QStringLiteral("pages_erased"), number(memory.pages_erased)},
        {QStringLiteral("rows_programmed"), number(memory.flash_rows_programmed)},
        {QStringLiteral("cells_programmed_without_erase"),
         number(memory.cells_programmed_without_erase)},
    };
}

QJsonObject faults_of(const std::map<FaultKind, unsigned int>& faults)
{
    QJsonObject object;
    for (const auto& [kind, count] : faults) {
        object.insert(QLatin1String(name_of(kind)), number(count));
    }
    return object;
}

QJsonObject pace_of(const Summary::Pace& pace)
{
    const Lateness& lateness = pace.lateness;
    return {
        {QStringLiteral("busy_us"), number(pace.use.busy_ns() / 1000)},
        {QStringLiteral("span_us"), number(pace.use.span_ns() / 1000)},
        {QStringLiteral("last_bytes"), number(lateness.count())},
        {QStringLiteral("mean_lateness_us"), number(lateness.mean_ns() / 1000)},
        {QStringLiteral("max_lateness_us"), number(lateness.most_ns() / 1000)},
    };
}

QJsonObject replay_of(const Summary::Replayed& replayed)
{
    QJsonArray unmatched;
    for (const Replay::Unmatched& request : replayed.unmatched) {
        unmatched.append(
            QJsonObject{{QStringLiteral("payload"), QString::fromLatin1(request.payload.toHex())},
                        {QStringLiteral("times"), request.times}});
    }
    return {
        {QStringLiteral("recorded"), replayed.recorded},
        {QStringLiteral("matched"), replayed.matched},
        {QStringLiteral("unmatched"), unmatched},
        {QStringLiteral("further_unmatched"), number(replayed.further_unmatched)},
    };
}

QJsonObject end_of(const CommandEnd& end)
{
    switch (end.kind) {
    case CommandEnd::Kind::Exited:
        return {{QStringLiteral("status"), end.number}};
    case CommandEnd::Kind::Killed:
        return {{QStringLiteral("signal"), end.number}};
    case CommandEnd::Kind::NotStarted:
        break;
    }
    return {{QStringLiteral("started"), false}};
}

/// The keys that only some runs have.
void add_extras(QJsonObject& object, const Summary& summary)
{
    if (summary.seed) {
        // As text: seeds have more digits than JSON's numbers.
        object.insert(QStringLiteral("seed"), QString::number(*summary.seed));
        object.insert(QStringLiteral("faults"), faults_of(summary.faults));
    }
    if (summary.pace) {
        object.insert(QStringLiteral("pace"), pace_of(*summary.pace));
    }
    if (summary.replayed) {
        object.insert(QStringLiteral("replay"), replay_of(*summary.replayed));
    }
    if (summary.check) {
        const QJsonObject check = {
            {QStringLiteral("matches"), summary.check->matches},
            {QStringLiteral("outside"), number(summary.check->outside_bytes)},
            {QStringLiteral("report"), summary.check->report}};
        object.insert(QStringLiteral("check"), check);
    }
    if (summary.command) {
        object.insert(QStringLiteral("command"), end_of(*summary.command));
    }
}

} // namespace

QJsonObject json_of(const Summary& summary)
{
    QJsonObject object = {
        {QStringLiteral("commands"), commands_of(summary.commands)},
        {QStringLiteral("refused"), number(summary.commands.refused())},
        {QStringLiteral("repeated"), number(summary.commands.repeated())},
        {QStringLiteral("bytes_from_host"), number(summary.bytes_from_host)},
        {QStringLiteral("bytes_to_host"), number(summary.bytes_to_host)},
        {QStringLiteral("bytes_lost"), number(summary.lost_bytes)},
        {QStringLiteral("frames_dropped"), number(summary.dropped_frames)},
        {QStringLiteral("flash"), flash_of(summary.memory)},
        {QStringLiteral("eeprom_writes"), number(summary.memory.eeprom_writes)},
    };
    add_extras(object, summary);
    return object;
}

} // namespace sim
