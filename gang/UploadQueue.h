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

/// Runs the uploads, at most --jobs at a time; the other ports wait in list order.
class UploadQueue : public QObject
{
    Q_OBJECT

public:
    /// `record` may be null.
    UploadQueue(const Assignment& assignment, RecordFile* record, Display& display);

    /// Adds a port that is neither waiting nor running. Adding a port again programs its next
    /// device; the port keeps its number. Ignored after wind_down().
    void add(const QString& port);

    /// Starts no further run or try; running uploads finish.
    void wind_down();
    /// Kills all running uploads. Call wind_down() first: it keeps waiting ports from starting.
    void stop();

    /// True if no run is active or waiting.
    bool is_idle() const;

    bool is_winding_down() const { return m_winding_down; }

    Tally tally() const;

    const RunStates& states() const { return m_states; }

Q_SIGNALS:
    void ended(const QString& port);
    /// No run is active or waiting any more.
    void became_idle();
    /// The gang itself has failed, for example because a run could not be recorded; no further run
    /// starts.
    void failed(const QString& reason);

private:
    void begin_waiting();
    void begin(int index);
    void on_changed(int index);
    void on_failed_try(int index);
    void on_finished(int index, RunRecord record);
    void skip(int index, const QString& reason);
    void give_up(const QString& reason);
    void release(int index);
    int running() const;

    const Assignment& m_assignment;
    RecordFile* m_record;
    Display& m_display;
    RunStates m_states;
    std::vector<std::unique_ptr<PortRun>> m_runs; ///< parallel to m_states; null: not running
    Tally m_tally;
    QElapsedTimer m_since;
    bool m_winding_down = false;
};

} // namespace gang
