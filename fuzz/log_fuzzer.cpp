#include "fuzz/MemoryFile.h"
#include "inspect/LogAnalysis.h"
#include "inspect/LogFacts.h"
#include "profile/Profile.h"

#include <numeric>

namespace
{

const Profile& device()
{
    static const Profile profile(
        QStringLiteral("0x0110 115200 LARK-32 0x8000 0x8000 0x0 0x800 0x400 0x80 2 2 0x80 "
                       "0xFFFF0000 2 0x10000 0x10200 1 1 0x10 0x10 0xFF000000 1 0x200 0x800 0x4000")
            .split(QLatin1Char(' ')));
    return profile;
}

void check_counts(const inspect::LogCounts& counts, quint64 runs)
{
    const quint64 commands =
        std::accumulate(counts.commands.begin(), counts.commands.end(), quint64{0});
    must_hold(counts.failed <= counts.awaited);
    must_hold(counts.awaited <= commands + counts.retries);
    must_hold(counts.longest_streak <= counts.retries);
    must_hold(runs <= commands && (runs != 0 || commands == 0));
}

void check_runs(const inspect::LogSummary& log)
{
    qint64 last_line = 0;
    quint64 retries = 0;
    for (const inspect::LoggedRun& run : log.runs) {
        must_hold(last_line < run.first_line && run.first_line <= run.last_line);
        last_line = run.last_line;
        retries += run.counts.retries;
        check_counts(run.counts, 1);
    }
    must_hold(log.runs.size() < log.run_count || retries == log.counts.retries);
}

void analyse(QFile& file, const Profile* profile, qint64 lines)
{
    must_hold(file.seek(0));
    inspect::LogDiagnosis diagnosis(profile, std::nullopt);
    inspect::LogAnalysis analysis(profile, diagnosis);
    inspect::LogReader reader(file);
    while (const auto line = reader.next()) {
        must_hold(line->number > 0 && line->number <= lines);
        analysis.take(*line);
    }
    const inspect::LogSummary& log = analysis.finish();
    check_counts(log.counts, log.run_count);
    check_runs(log);
    for (const inspect::Problem& problem : diagnosis.problems(QStringLiteral("log"), log.counts)) {
        must_hold(problem.place.line > 0 && problem.place.line <= lines);
        must_hold(!problem.message.isEmpty());
    }
    inspect::TextPage page(false);
    inspect::print(page, log, profile);
    must_hold(!inspect::json_of(log, profile).isEmpty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const MemoryFile memory;
    const QByteArray text = bytes_of(data, size);
    memory.fill(text);
    QFile file(memory.path());
    must_hold(file.open(QIODevice::ReadOnly));
    const qint64 lines = text.count('\n') + 1;
    analyse(file, nullptr, lines);
    analyse(file, &device(), lines);
    return 0;
}
