#include "gang/EventLines.h"

namespace gang
{

QString line_of(const QString& port_name, const RunRecord& record)
{
    QStringList parts{QStringLiteral("%1: %2").arg(port_name, name_of(record.verdict)),
                      QStringLiteral("%1 s").arg(record.seconds, 0, 'f', 1)};
    if (record.version) {
        parts << QStringLiteral("version %1").arg(version_text(*record.version));
    }
    if (record.number) {
        parts << QStringLiteral("number %1").arg(*record.number);
    }
    if (record.tries > 1) {
        parts << QStringLiteral("%1 tries").arg(record.tries);
    }
    if (!record.message.isEmpty()) {
        parts << record.message;
    }
    return parts.join(QStringLiteral(", "));
}

void EventLines::print(const QString& line)
{
    m_out.print(line.toLocal8Bit() + '\n');
}

void EventLines::started(const RunStates& states, int run)
{
    print(QStringLiteral("%1: started").arg(state_of(states, run).port.name));
}

void EventLines::failed_try(const RunStates& states, int run)
{
    const RunState& state = state_of(states, run);
    print(QStringLiteral("%1: try %2: %3, %4")
              .arg(state.port.name, QString::number(state.attempt), name_of(state.verdict),
                   state.message));
}

void EventLines::ended(const RunStates& states, int run, const RunRecord& record)
{
    print(line_of(state_of(states, run).port.name, record));
}

void EventLines::summed_up(const RunStates&, const Tally& tally)
{
    print(QStringLiteral("%1, %2 s").arg(text_of(tally), QString::number(tally.seconds, 'f', 1)));
}

} // namespace gang
