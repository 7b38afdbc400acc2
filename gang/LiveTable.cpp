#include "gang/LiveTable.h"

#include "gang/EventLines.h"
#include "gang/Terminal.h"
#include "util/Platform.h"

#include <algorithm>
#include <utility>

namespace gang
{

namespace
{

constexpr int refresh_ms = 250;

constexpr const char* enter_screen = "\033[?1049h\033[?25l\033[2J";
constexpr const char* exit_screen = "\033[?25h\033[?1049l";
constexpr const char* clear_screen = "\033[2J";
constexpr const char* home = "\033[H";
constexpr const char* clear_rest_of_line = "\033[K";
constexpr const char* clear_rest = "\033[J";

void write_to_terminal(const QByteArray& bytes)
{
    Platform::write_all(Platform::StandardStream::Output, bytes);
}

} // namespace

LiveTable::LiveTable()
{
    resize();
    m_since.start();
    connect(&m_refresh, &QTimer::timeout, this, &LiveTable::draw);
    m_refresh.start(refresh_ms);
    write_to_terminal(enter_screen);
    m_on_screen = true;
}

LiveTable::~LiveTable()
{
    leave_screen();
}

void LiveTable::leave_screen()
{
    m_refresh.stop();
    if (m_on_screen) {
        write_to_terminal(exit_screen);
        m_on_screen = false;
    }
}

void LiveTable::resize()
{
    const TerminalSize size = terminal_size();
    m_look = {size.columns, size.lines, !wants_no_colour()};
    m_clears = m_on_screen;
    draw();
}

void LiveTable::note(const RunStates& states)
{
    m_states = &states;
}

void LiveTable::started(const RunStates& states, int)
{
    note(states);
}

void LiveTable::changed(const RunStates& states, int)
{
    note(states);
}

void LiveTable::failed_try(const RunStates& states, int)
{
    note(states);
}

void LiveTable::ended(const RunStates& states, int run, const RunRecord& record)
{
    note(states);
    if (record.verdict == Verdict::Ok) {
        m_durations.push_back(record.seconds);
    }
    m_ended << line_of(state_of(states, run).port.name, record);
}

/// Returns the median duration of ok runs so far; 0 if there are none.
double LiveTable::expected_s() const
{
    if (m_durations.empty()) {
        return 0;
    }
    std::vector<double> durations = m_durations;
    const auto middle = durations.begin() + static_cast<std::ptrdiff_t>(durations.size() / 2);
    std::nth_element(durations.begin(), middle, durations.end());
    return *middle;
}

/// Draws nothing while the terminal accepts no output: a stopped terminal must not stop the
/// uploads.
void LiveTable::draw()
{
    if (m_states == nullptr || !takes_output()) {
        return;
    }
    const double elapsed_s = static_cast<double>(m_since.elapsed()) / 1000.0;
    const QStringList lines = table_text(*m_states, m_look, elapsed_s, expected_s());
    QByteArray screen(std::exchange(m_clears, false) ? clear_screen : "");
    screen += home;
    for (int i = 0; i < lines.size(); ++i) {
        screen += (i == 0 ? "" : "\r\n") + lines.at(i).toLocal8Bit() + clear_rest_of_line;
    }
    write_to_terminal(screen + clear_rest);
}

void LiveTable::summed_up(const RunStates& states, const Tally& tally)
{
    note(states);
    leave_screen();
    for (const QString& line : m_ended) {
        write_to_terminal(line.toLocal8Bit() + '\n');
    }
    write_to_terminal(QStringLiteral("%1, %2 s\n")
                          .arg(text_of(tally), QString::number(tally.seconds, 'f', 1))
                          .toLocal8Bit());
}

} // namespace gang
