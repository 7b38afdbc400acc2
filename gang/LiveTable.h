#pragma once

#include "gang/Display.h"
#include "gang/TableText.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <vector>

namespace gang
{

/// Shows the table on the alternate screen of the terminal; at the end, the summary is printed on
/// the normal screen.
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

    /// Adapts the table to the current size of the terminal.
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
    std::vector<double> m_durations; ///< of ok runs, in seconds
    QStringList m_ended;             ///< one line for each run that has ended
    bool m_on_screen = false;
    bool m_clears = false; ///< true if the screen is to be cleared before the next table
};

} // namespace gang
