#include "gang/Display.h"

#include <numeric>

namespace gang
{

const RunState& state_of(const RunStates& states, int run)
{
    return states.at(static_cast<std::size_t>(run));
}

int Tally::runs() const
{
    const QList<int> counts = verdicts.values();
    return std::accumulate(counts.begin(), counts.end(), 0);
}

QString text_of(const Tally& tally)
{
    QStringList parts;
    for (const Verdict verdict : all_verdicts) {
        if (const int count = tally.verdicts.value(verdict)) {
            parts << QStringLiteral("%1 %2").arg(QString::number(count), name_of(verdict));
        }
    }
    if (tally.not_started != 0) {
        parts << QStringLiteral("%1 not started").arg(tally.not_started);
    }
    const int runs = tally.runs();
    return QStringLiteral("%1 %2: %3")
        .arg(QString::number(runs), runs == 1 ? QStringLiteral("run") : QStringLiteral("runs"),
             parts.isEmpty() ? QStringLiteral("none") : parts.join(QStringLiteral(", ")));
}

} // namespace gang
