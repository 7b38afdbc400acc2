#include "gang/Report.h"

#include <algorithm>
#include <cmath>

namespace gang
{

namespace
{

/// Tracks which numbers are void, and why.
class NumberAccount
{
public:
    void add(const RecordedRun& run)
    {
        for (const quint64 number : run.void_numbers) {
            m_reasons[number] = QStringLiteral("another try");
        }
        if (run.number) {
            m_reasons[*run.number] = run.verdict == QLatin1String("ok") ? QString() : run.verdict;
        }
    }

    void add(const GivenNumber& given)
    {
        if (!m_reasons.contains(given.number)) {
            m_reasons[given.number] = QStringLiteral("not recorded: ") + given.to;
        }
    }

    int count() const { return m_reasons.size(); }

    std::vector<VoidNumber> void_numbers() const
    {
        std::vector<VoidNumber> numbers;
        for (auto reason = m_reasons.begin(); reason != m_reasons.end(); ++reason) {
            if (!reason.value().isEmpty()) {
                numbers.push_back({reason.key(), reason.value()});
            }
        }
        return numbers;
    }

private:
    QMap<quint64, QString> m_reasons; ///< why a number is void; empty: a good device has it
};

void note_time(Report& report, const QString& time)
{
    if (report.first.isEmpty() || time < report.first) {
        report.first = time;
    }
    report.last = std::max(report.last, time);
}

} // namespace

void RunGroup::add(const RecordedRun& run)
{
    ++runs;
    if (run.verdict == QLatin1String("ok")) {
        ++ok;
        ok_at_once += run.tries == 1 ? 1 : 0;
        ok_seconds.push_back(run.seconds);
    } else {
        ++failures[run.verdict];
    }
}

double RunGroup::yield() const
{
    return runs == 0 ? 0 : static_cast<double>(ok) / runs;
}

std::optional<double> quantile(std::vector<double> seconds, double share)
{
    if (seconds.empty()) {
        return std::nullopt;
    }
    std::sort(seconds.begin(), seconds.end());
    const double rank = std::ceil(share * static_cast<double>(seconds.size()));
    return seconds.at(rank < 1 ? 0 : static_cast<std::size_t>(rank) - 1);
}

Report report_on(const RecordedRuns& runs, const std::vector<GivenNumber>& given)
{
    Report report;
    NumberAccount account;
    report.skipped = runs.skipped;
    for (const RecordedRun& run : runs.runs) {
        note_time(report, run.time);
        report.all.add(run);
        report.ports[run.station + QLatin1Char(' ') + run.port].add(run);
        account.add(run);
    }
    for (const GivenNumber& number : given) {
        account.add(number);
    }
    report.numbers = account.count();
    report.void_numbers = account.void_numbers();
    return report;
}

} // namespace gang
