#pragma once

#include "gang/PortNames.h"
#include "gang/Verdict.h"

#include <QElapsedTimer>
#include <QString>

namespace gang
{

/// The state of a port, for displays.
struct RunState {
    enum class Phase { Waiting, Running, Writing, Verifying, Certifying, Pausing, Done, Skipped };

    PortNames port;
    Phase phase = Phase::Waiting;
    int percentage = -1; ///< progress of the phase; -1: unknown
    double done = 0;     ///< progress of the whole upload, 0 to 1
    int attempt = 0;
    QElapsedTimer since;
    double seconds = 0; ///< duration of the run, once it is done
    Verdict verdict = Verdict::Failed;
    QString message;

    bool is_active() const { return phase >= Phase::Running && phase <= Phase::Pausing; }

    bool is_failed() const { return phase == Phase::Done && verdict != Verdict::Ok; }
};

} // namespace gang
