#pragma once

#include "gang/Assignment.h"
#include "gang/Display.h"
#include "gang/PortRun.h"
#include "gang/RecordFile.h"

#include <QElapsedTimer>
#include <QObject>

#include <memory>
#include <vector>

namespace gang
{

/// Runs the uploads: as many at once as are allowed, the others in order after them.
class Crew : public QObject
{
    Q_OBJECT

public:
    /// `record` may be null.
    Crew(const Assignment& assignment, RecordFile* record, Display& display);

    /// Takes a port in that is not waiting or running; the same port again is the next device on
    /// it. Its number is kept.
    void take(const QString& port);

    /// Begins no further run or try; those that run go on to their end.
    void wind_down();
    /// Ends all runs at once.
    void stop();

    bool is_idle() const;

    bool is_winding_down() const { return m_winding_down; }

    Tally tally() const;

    const RunStates& states() const { return m_states; }

Q_SIGNALS:
    void ended(const QString& port);
    /// Nothing runs, and nothing is left to begin.
    void became_idle();
    /// Something of the gang's own went wrong, and nothing more is begun.
    void troubled(const QString& reason);

private:
    void begin_waiting();
    void begin(int index);
    void take_state(int index);
    void take_failed_try(int index);
    void take_record(int index, RunRecord record);
    void skip(int index, const QString& reason);
    void give_up(const QString& reason);
    void release(int index);
    int running() const;

    const Assignment& m_assignment;
    RecordFile* m_record;
    Display& m_display;
    RunStates m_states;
    std::vector<std::unique_ptr<PortRun>> m_runs; ///< one for each state; null: not running
    Tally m_tally;
    QElapsedTimer m_since;
    bool m_winding_down = false;
};

} // namespace gang
