#pragma once

// This folder combines a device, its faults, a recorded log, the trace and the summary of a run. A
// trace shows the command as the device received it, after faults on the way there, and the bytes
// as they were sent, after faults on the way back. docs/simulator.md describes the formats of trace
// and summary; logs are those of the tool's option -x.

#include "sim/device/SimulatedDevice.h"
#include "sim/faults/FaultInjector.h"
#include "sim/rig/Replay.h"
#include "sim/rig/Summary.h"
#include "sim/rig/Trace.h"

#include <optional>

namespace sim
{

struct RigOptions {
    Options device;
    FaultSettings faults;
};

/// A simulated device with everything that a user may request: faults, a recorded log that answers
/// in its place, a trace of what it does, and the summary at the end.
class Rig
{
public:
    /// The profile must outlive the rig. Throws Error for stuck bits outside of its memory,
    /// std::system_error if the system provides no line.
    Rig(const Profile& profile, const RigOptions& options);

    SimulatedDevice& device() { return m_device; }

    /// From now on a log answers, see Replay; throws what read_frame_log() throws.
    void start_replay(const QString& path);
    /// Begins a trace, see Trace; throws what that throws.
    void start_trace(const QString& path);

    /// The summary so far, without the check, which is up to the caller.
    Summary summary() const;

    /// Whether every line of the trace is in its file.
    bool is_trace_whole() const { return !m_trace || m_trace->is_whole(); }

private:
    std::vector<Delivery> reply_to(const Command& command, const QByteArray& answer);
    QByteArray recorded_answer(const Command& command, const QByteArray& answer);

    const Profile& m_profile;
    RigOptions m_options;
    SimulatedDevice m_device;
    FaultInjector m_faults;
    std::optional<Replay> m_replay;
    std::optional<Trace> m_trace;
    Tally m_tally;
};

} // namespace sim
