#include "gang/EventJson.h"

#include <QJsonDocument>

namespace gang
{

namespace
{

constexpr int progress_step = 10;

QJsonObject of_port(const RunState& state)
{
    return {{QStringLiteral("port"), state.port.path},
            {QStringLiteral("try"), qMax(1, state.attempt)}};
}

QString phase_name(RunState::Phase phase)
{
    switch (phase) {
    case RunState::Phase::Writing:
        return QStringLiteral("write");
    case RunState::Phase::Verifying:
        return QStringLiteral("verify");
    case RunState::Phase::Certifying:
        return QStringLiteral("certify");
    default:
        return {};
    }
}

} // namespace

void EventJson::print(const char* event, QJsonObject fields)
{
    fields.insert(QStringLiteral("event"), QString::fromLatin1(event));
    const QString key = QStringLiteral("time");
    if (!fields.contains(key)) {
        fields.insert(key, QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs));
    }
    m_out.print(QJsonDocument(fields).toJson(QJsonDocument::Compact) + '\n');
}

void EventJson::started(const RunStates& states, int run)
{
    print("start", of_port(state_of(states, run)));
}

void EventJson::changed(const RunStates& states, int run)
{
    const RunState& state = state_of(states, run);
    const QString phase = phase_name(state.phase);
    const int percentage = state.percentage / progress_step * progress_step;
    const QString shown =
        QStringLiteral("%1 %2 %3").arg(QString::number(state.attempt), phase).arg(percentage);
    if (state.percentage < 0 || m_shown.value(run) == shown) {
        return;
    }
    m_shown[run] = shown;
    QJsonObject fields = of_port(state);
    fields.insert(QStringLiteral("phase"), phase);
    fields.insert(QStringLiteral("percent"), percentage);
    print("progress", fields);
}

void EventJson::failed_try(const RunStates& states, int run)
{
    const RunState& state = state_of(states, run);
    QJsonObject fields = of_port(state);
    fields.insert(QStringLiteral("verdict"), name_of(state.verdict));
    fields.insert(QStringLiteral("message"), state.message);
    print("retry", fields);
}

void EventJson::ended(const RunStates&, int, const RunRecord& record)
{
    print("end", json_of(record));
}

void EventJson::summed_up(const RunStates&, const Tally& tally)
{
    QJsonObject verdicts;
    for (auto count = tally.verdicts.begin(); count != tally.verdicts.end(); ++count) {
        verdicts.insert(name_of(count.key()), count.value());
    }
    print("summary", {{QStringLiteral("runs"), tally.runs()},
                      {QStringLiteral("ok"), tally.ok()},
                      {QStringLiteral("not_started"), tally.not_started},
                      {QStringLiteral("verdicts"), verdicts},
                      {QStringLiteral("seconds"), tally.seconds}});
}

} // namespace gang
