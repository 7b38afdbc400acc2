#pragma once

#include "gang/Display.h"
#include "gang/TableText.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <vector>

namespace gang
{

/// The table on the terminal, on a screen of its own that gives way to the summary at the end.
class LiveTable : public QObject, public Display
{
    Q_OBJECT

public:
    LiveTable();
    ~LiveTable() override;

    void started(const RunStates& states, int run) override;
    void changed(const RunStates& states, int run) override;
    void failed_try(const RunStates& states, int run) override;
    void ended(const RunStates& states, int run, const RunRecord& record) override;
    void summed_up(const RunStates& states, const Tally& tally) override;

    /// Takes the terminal's size anew.
    void resize();

private:
    void note(const RunStates& states);
    void draw();
    void leave_screen();
    double expected_s() const;

    TableLook m_look;
    const RunStates* m_states = nullptr; ///< null: none yet
    QTimer m_refresh;
    QElapsedTimer m_since;
    std::vector<double> m_durations; ///< of uploads that were ok, in seconds
    QStringList m_ended;             ///< a line for each run that has ended
    bool m_on_screen = false;
    bool m_clears = false; ///< the screen, before the next table
};

} // namespace gang
