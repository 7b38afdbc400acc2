#include "gang/TableText.h"

#include <algorithm>
#include <cmath>

namespace gang
{

namespace
{

constexpr int shortest_name = 8;
constexpr int longest_name = 24;
constexpr int phase_width = 10;
constexpr int narrowest_bar = 10;
constexpr int widest_bar = 30;
constexpr int time_width = 7;

constexpr const char* green = "\033[32m";
constexpr const char* red = "\033[31m";
constexpr const char* yellow = "\033[33m";
constexpr const char* no_colour = "\033[0m";

QString phase_text(const RunState& state)
{
    switch (state.phase) {
    case RunState::Phase::Waiting:
        return QStringLiteral("waiting");
    case RunState::Phase::Running:
        return QStringLiteral("running");
    case RunState::Phase::Writing:
        return QStringLiteral("writing");
    case RunState::Phase::Verifying:
        return QStringLiteral("verifying");
    case RunState::Phase::Certifying:
        return QStringLiteral("certifying");
    case RunState::Phase::Pausing:
        return QStringLiteral("pausing");
    case RunState::Phase::Skipped:
        return QStringLiteral("left out");
    case RunState::Phase::Done:
        return QStringLiteral("done");
    }
    return {};
}

const char* colour_of(const RunState& state)
{
    if (state.phase == RunState::Phase::Done) {
        return state.verdict == Verdict::Ok ? green : red;
    }
    return state.phase == RunState::Phase::Pausing ? yellow : no_colour;
}

/// Formats a duration, such as "9.9 s" or "1:05".
QString time_text(double seconds)
{
    if (seconds < 60) {
        return QStringLiteral("%1 s").arg(seconds, 0, 'f', 1);
    }
    const auto whole = static_cast<int>(seconds);
    return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

double elapsed_of(const RunState& state)
{
    if (state.phase == RunState::Phase::Done) {
        return state.seconds;
    }
    return state.since.isValid() ? static_cast<double>(state.since.elapsed()) / 1000.0 : 0;
}

/// Returns the expected duration of the whole upload, from its own pace if no other is known.
QString expected_text(const RunState& state, double expected_s)
{
    constexpr double enough = 0.05;
    double expected = expected_s;
    if (expected <= 0 && state.done >= enough) {
        expected = elapsed_of(state) / state.done;
    }
    return expected > 0 ? time_text(expected) : QStringLiteral("-");
}

QString bar(const RunState& state, int width)
{
    const bool ok = state.phase == RunState::Phase::Done && state.verdict == Verdict::Ok;
    const int filled = static_cast<int>(std::lround((ok ? 1.0 : state.done) * width));
    return QLatin1Char('[') + QString(filled, QLatin1Char('#')) +
           QString(width - filled, QLatin1Char('.')) + QLatin1Char(']');
}

QString percent_text(const RunState& state)
{
    if (state.phase == RunState::Phase::Done && state.verdict == Verdict::Ok) {
        return QStringLiteral("100%");
    }
    if (state.done <= 0) {
        return {};
    }
    return QStringLiteral("%1%").arg(static_cast<int>(state.done * 100));
}

/// Pads a text to a width, or cuts off its end and marks the cut.
QString fitted(const QString& text, int width)
{
    if (text.size() <= width) {
        return text.leftJustified(width);
    }
    return text.left(width - 1) + QLatin1Char('~');
}

/// Pads a name to a width, or cuts off its start: the end tells ports apart.
QString fitted_name(const QString& name, int width)
{
    if (name.size() <= width) {
        return name.leftJustified(width);
    }
    return QLatin1Char('~') + name.right(width - 1);
}

QString verdict_text(const RunState& state)
{
    QString text;
    if (state.phase == RunState::Phase::Done) {
        text = name_of(state.verdict);
    } else if (state.attempt > 1 || state.phase == RunState::Phase::Pausing) {
        text = QStringLiteral("try %1").arg(state.attempt);
    }
    const bool has_message = state.phase == RunState::Phase::Done ||
                             state.phase == RunState::Phase::Pausing ||
                             state.phase == RunState::Phase::Skipped;
    if (has_message && !state.message.isEmpty()) {
        text += (text.isEmpty() ? QString() : QStringLiteral(": ")) + state.message;
    }
    return text.simplified();
}

/// Sort key: failed, active, not started, ok.
int rank(const RunState& state)
{
    if (state.is_failed()) {
        return 0;
    }
    if (state.is_active()) {
        return 1;
    }
    return state.phase == RunState::Phase::Done ? 3 : 2;
}

struct Counts {
    int ok = 0;
    int failed = 0;
    int running = 0;
    int waiting = 0;
    int left_out = 0;
};

Counts count(RunStates::const_iterator begin, RunStates::const_iterator end)
{
    Counts counts;
    for (auto state = begin; state != end; ++state) {
        counts.failed += state->is_failed() ? 1 : 0;
        counts.running += state->is_active() ? 1 : 0;
        counts.waiting += state->phase == RunState::Phase::Waiting ? 1 : 0;
        counts.left_out += state->phase == RunState::Phase::Skipped ? 1 : 0;
        counts.ok += state->phase == RunState::Phase::Done && !state->is_failed() ? 1 : 0;
    }
    return counts;
}

QString text_of(const Counts& counts)
{
    QStringList parts;
    const auto add = [&parts](int count, const char* what) {
        if (count != 0) {
            parts << QStringLiteral("%1 %2").arg(QString::number(count), QLatin1String(what));
        }
    };
    add(counts.failed, "failed");
    add(counts.running, "running");
    add(counts.waiting, "waiting");
    add(counts.ok, "ok");
    add(counts.left_out, "left out");
    return parts.join(QStringLiteral(", "));
}

int name_width(int columns)
{
    return std::clamp(columns / 6, shortest_name, longest_name);
}

int bar_width(int columns)
{
    return std::clamp(columns / 5 - 4, narrowest_bar, widest_bar);
}

} // namespace

QString table_line(const RunState& state, const TableLook& look, double expected_s)
{
    const QString expected =
        state.is_active() ? QStringLiteral(" / ") + expected_text(state, expected_s) : QString();
    const QString times = time_text(elapsed_of(state)).rightJustified(time_width) +
                          expected.leftJustified(time_width + 3);
    const QString before = fitted_name(state.port.name, name_width(look.columns)) +
                           QLatin1Char(' ') + fitted(phase_text(state), phase_width) +
                           QLatin1Char(' ') + bar(state, bar_width(look.columns)) +
                           percent_text(state).rightJustified(5) + QLatin1Char(' ') + times +
                           QLatin1Char(' ');
    // The last column stays empty: some terminals wrap when it is written.
    const int rest = look.columns - 1 - before.size();
    if (rest < 1) {
        return before.left(std::max(0, look.columns - 1));
    }
    const QString verdict = fitted(verdict_text(state), rest);
    return look.colour
               ? before + QLatin1String(colour_of(state)) + verdict + QLatin1String(no_colour)
               : before + verdict;
}

QStringList table_text(const RunStates& states, const TableLook& look, double elapsed_s,
                       double expected_s)
{
    const int room = std::max(1, look.lines - 1);
    const auto total = static_cast<int>(states.size());
    RunStates shown = states;
    int count_shown = total;
    if (total > room) {
        std::stable_sort(shown.begin(), shown.end(),
                         [](const RunState& a, const RunState& b) { return rank(a) < rank(b); });
        count_shown = room - 1;
    }
    const QString heading =
        QStringLiteral("zserial-gang  %1 ports: %2  %3")
            .arg(QString::number(total), text_of(count(states.begin(), states.end())),
                 time_text(elapsed_s));
    QStringList lines{heading.left(look.columns - 1)};
    for (int i = 0; i < count_shown; ++i) {
        lines << table_line(shown.at(static_cast<std::size_t>(i)), look, expected_s);
    }
    if (count_shown < total) {
        lines << QStringLiteral("and %1 more: %2")
                     .arg(QString::number(total - count_shown),
                          text_of(count(shown.cbegin() + count_shown, shown.cend())))
                     .left(look.columns - 1);
    }
    return lines;
}

} // namespace gang
