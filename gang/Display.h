#pragma once

#include "gang/RunRecord.h"
#include "gang/RunState.h"

#include <QMap>

#include <vector>

namespace gang
{

using RunStates = std::vector<RunState>;

const RunState& state_of(const RunStates& states, int run);

/// Totals of all runs.
struct Tally {
    QMap<Verdict, int> verdicts;
    int not_started = 0;
    double seconds = 0; ///< since the first run started

    int runs() const;

    int ok() const { return verdicts.value(Verdict::Ok); }
};

/// "3 runs: 1 ok, 2 silent; 1 not started".
QString text_of(const Tally& tally);

/// Shows a user or a program what happens. `run` is an index into `states`.
class Display
{
public:
    Display() = default;
    virtual ~Display() = default;
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    virtual void started(const RunStates& states, int run) = 0;
    virtual void changed(const RunStates& states, int run) = 0;
    /// A try has failed and another one follows.
    virtual void failed_try(const RunStates& states, int run) = 0;
    virtual void ended(const RunStates& states, int run, const RunRecord& record) = 0;
    virtual void summed_up(const RunStates& states, const Tally& tally) = 0;
};

} // namespace gang
