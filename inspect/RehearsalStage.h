#pragma once

#include "device/ZarnSerialDevice.h"
#include "inspect/ContentWatch.h"
#include "inspect/Rehearsal.h"
#include "sim/device/SimulatedDevice.h"

#include <functional>

namespace inspect
{

/// An attempt at a command, as seen from both ends.
struct Attempt {
    sim::Command command; ///< as it was heard
    int sent = 0;         ///< bytes
    int answered = 0;     ///< bytes; 0 for no answer
    bool is_awaited = true;
    bool has_answer = false; ///< the uploader's end has got it
};

/// Where a rehearsal takes place: the uploader's end and the device's end of a line, and what is
/// observed at both.
class RehearsalStage
{
public:
    RehearsalStage(const RehearsedProfiles& profiles, const Settings& settings,
                   const RehearsalOptions& options);
    ~RehearsalStage();
    RehearsalStage(const RehearsalStage&) = delete;
    RehearsalStage& operator=(const RehearsalStage&) = delete;

    ZarnSerialDevice& host() { return m_host; }

    /// Takes a step and counts what it does. `step` returns why it has failed.
    void take(std::optional<Operation> operation,
              const std::function<std::optional<Failure>()>& step);

    bool has_failed() const { return !m_result.steps.empty() && m_result.steps.back().fails; }

    /// Whether the machine has kept an answer from the uploader for too long.
    bool was_disturbed() const { return m_disturbed; }

    Rehearsed take_result();

private:
    quint64 heard() const;
    quint64 answered() const;

    Traffic& traffic() { return m_result.steps.back().traffic; }

    void keep_frame_log(const QString& name);
    void watch_host();
    void watch_device(bool keeps_commands);
    void note(const sim::Command& command, const QByteArray& answer, bool keeps_command);
    void begin_attempt(const QByteArray& frame);
    void end_attempt();
    double seconds_of(const Attempt& attempt);
    void let_bytes_arrive();
    void find_unerased(const sim::Command& command, const QByteArray& data);

    const Profile& m_device_profile;
    const unsigned int m_rate;
    const bool m_half_duplex;
    sim::SimulatedDevice m_simulated;
    ZarnSerialDevice m_host;
    std::optional<ContentWatch> m_content; ///< only where the present content is known
    QByteArray m_reset_frame;
    std::optional<Attempt> m_attempt;
    quint64 m_sent = 0; ///< bytes, by the uploader
    bool m_disturbed = false;
    Rehearsed m_result;
};

} // namespace inspect
