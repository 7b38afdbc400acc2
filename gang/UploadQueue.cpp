#include "gang/UploadQueue.h"

#include <algorithm>

namespace gang
{

UploadQueue::UploadQueue(const Assignment& assignment, RecordFile* record, Display& display)
    : m_assignment(assignment),
      m_record(record),
      m_display(display)
{
}

void UploadQueue::add(const QString& port)
{
    if (m_winding_down) {
        return;
    }
    const auto known = std::find_if(m_states.begin(), m_states.end(),
                                    [&port](const RunState& s) { return s.port.path == port; });
    if (known == m_states.end()) {
        RunState state;
        state.port = names_of(port, static_cast<int>(m_states.size()) + 1);
        m_states.push_back(state);
        m_runs.emplace_back();
    } else {
        const PortNames names = known->port;
        *known = RunState();
        known->port = names;
    }
    // Queued, so that all ports are known when the first run starts.
    QMetaObject::invokeMethod(this, &UploadQueue::begin_waiting, Qt::QueuedConnection);
}

int UploadQueue::running() const
{
    return static_cast<int>(std::count_if(m_states.begin(), m_states.end(),
                                          [](const RunState& s) { return s.is_active(); }));
}

bool UploadQueue::is_idle() const
{
    return std::none_of(m_states.begin(), m_states.end(), [](const RunState& state) {
        return state.is_active() || state.phase == RunState::Phase::Waiting;
    });
}

void UploadQueue::begin_waiting()
{
    const int most = m_assignment.arguments.jobs;
    for (std::size_t i = 0; i < m_states.size() && !m_winding_down; ++i) {
        if (most != 0 && running() >= most) {
            return;
        }
        if (m_states[i].phase == RunState::Phase::Waiting) {
            begin(static_cast<int>(i));
        }
    }
}

void UploadQueue::begin(int index)
{
    if (!m_since.isValid()) {
        m_since.start();
    }
    const auto i = static_cast<std::size_t>(index);
    m_runs[i] = std::make_unique<PortRun>(m_assignment, m_states[i].port);
    PortRun& run = *m_runs[i];
    connect(&run, &PortRun::changed, this, [this, index] { on_changed(index); });
    connect(&run, &PortRun::failed_try, this, [this, index] { on_failed_try(index); });
    connect(&run, &PortRun::finished, this,
            [this, index](const RunRecord& record) { on_finished(index, record); });
    connect(&run, &PortRun::number_missing, this, &UploadQueue::give_up);
    connect(&run, &PortRun::not_started, this,
            [this, index](const QString& reason) { skip(index, reason); });
    m_states[i].phase = RunState::Phase::Running;
    m_display.started(m_states, index);
    run.start();
}

void UploadQueue::on_changed(int index)
{
    const auto i = static_cast<std::size_t>(index);
    m_states[i] = m_runs[i]->state();
    m_display.changed(m_states, index);
}

void UploadQueue::on_failed_try(int index)
{
    on_changed(index);
    m_display.failed_try(m_states, index);
}

/// A run that cannot be recorded has failed, whatever its own verdict.
void UploadQueue::on_finished(int index, RunRecord record)
{
    try {
        if (m_record != nullptr) {
            m_record->append(record);
        }
    } catch (const FileError& error) {
        record.message = QStringLiteral("%1, but not recorded: %2")
                             .arg(name_of(record.verdict), QString::fromStdString(error.what()));
        record.verdict = Verdict::Failed;
        give_up(QString::fromStdString(error.what()));
    }
    RunState& state = m_states[static_cast<std::size_t>(index)];
    state.phase = RunState::Phase::Done;
    state.verdict = record.verdict;
    state.message = record.message;
    state.seconds = record.seconds;
    ++m_tally.verdicts[record.verdict];
    m_display.ended(m_states, index, record);
    release(index);
}

void UploadQueue::skip(int index, const QString& reason)
{
    RunState& state = m_states[static_cast<std::size_t>(index)];
    state.phase = RunState::Phase::Skipped;
    state.message = reason;
    release(index);
}

void UploadQueue::give_up(const QString& reason)
{
    Q_EMIT failed(reason);
    wind_down();
}

/// Starts waiting ports. The run is still emitting its signal, so it is deleted later.
void UploadQueue::release(int index)
{
    m_runs[static_cast<std::size_t>(index)].release()->deleteLater();
    Q_EMIT ended(m_states[static_cast<std::size_t>(index)].port.path);
    begin_waiting();
    if (is_idle()) {
        Q_EMIT became_idle();
    }
}

void UploadQueue::wind_down()
{
    m_winding_down = true;
    for (RunState& state : m_states) {
        if (state.phase == RunState::Phase::Waiting) {
            state.phase = RunState::Phase::Skipped;
        }
    }
    // A run that is pausing finishes within this call, which resets its element of m_runs.
    for (const auto& run : m_runs) {
        if (run) {
            run->stop_retrying();
        }
    }
    if (is_idle()) {
        Q_EMIT became_idle();
    }
}

void UploadQueue::stop()
{
    for (const auto& run : m_runs) {
        if (run) {
            run->stop();
        }
    }
}

Tally UploadQueue::tally() const
{
    Tally tally = m_tally;
    tally.not_started =
        static_cast<int>(std::count_if(m_states.begin(), m_states.end(), [](const RunState& s) {
            return s.phase == RunState::Phase::Skipped;
        }));
    tally.seconds = m_since.isValid() ? static_cast<double>(m_since.elapsed()) / 1000.0 : 0;
    return tally;
}

} // namespace gang
