#pragma once

// This folder puts a device, its faults, a recorded log, the trace and the account of a run
// together. What a trace shows is the command as the device took it, after the faults of the way
// there, and the bytes as they went out, after those of the way back. docs/simulator.md has the
// formats of trace and summary; logs are those of the tool's option -x.

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

/// A simulated device with everything around it that a user may ask for: faults that happen to it,
/// a log that speaks in its place, a trace of what it does, and the account at the end.
class Rig
{
public:
    /// The profile must outlive the rig. Throws Error for stuck bits where there is no memory,
    /// std::system_error when the system gives no line.
    Rig(const Profile& profile, const RigOptions& options);

    SimulatedDevice& device() { return m_device; }

    /// From now on a log answers, see Replay; throws what read_frame_log() throws.
    void start_replay(const QString& path);
    /// Begins a trace, see Trace; throws what that throws.
    void start_trace(const QString& path);

    /// How things stand; without a check, which is the caller's.
    Summary summary() const;

    /// No line of a trace is missing in its file.
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
