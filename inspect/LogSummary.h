#pragma once

#include "inspect/SentCommand.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

class Profile;

namespace inspect
{

/// How an attempt ended, as far as a log shows it.
enum class AttemptEnd {
    Accepted,
    Refused,    ///< an answer came, and the uploader did not take it
    NoAnswer,   ///< no complete answer in time
    NotAwaited, ///< a reset has no answer
    Unclear,    ///< a damaged line stands where the answer should be
};

/// "accepted", "refused", "none", "not_awaited", "unclear".
QString name_of(AttemptEnd end);

/// An entry of a log.
struct LoggedFrame {
    qint64 line = 0;
    bool is_sent = false;
    quint64 run = 0;                      ///< from 1; 0 before the first command
    int bytes = 0;                        ///< of the frame, on the line
    SentCommand command;                  ///< the one that is sent or answered
    int attempt = 0;                      ///< of that command, from 1
    AttemptEnd end = AttemptEnd::Unclear; ///< of the attempt, also for a frame that is sent
    QString note;       ///< why it is refused, in the uploader's words, or what is odd about it
    int data_bytes = 0; ///< of an accepted answer
    std::optional<unsigned short> version; ///< that the answer reports
};

/// What adds up in a log or a run.
struct LogCounts {
    std::array<quint64, command_kinds.size()> commands{}; ///< by kind, without retries
    quint64 retries = 0;
    quint64 longest_streak = 0; ///< most retries of one command
    quint64 awaited = 0;        ///< attempts that an answer was awaited for
    quint64 failed = 0;         ///< of these, refused or not answered
    quint64 bytes_to_device = 0;
    quint64 bytes_from_device = 0;

    quint64& of(SentCommand::Kind kind) { return commands.at(static_cast<std::size_t>(kind)); }

    quint64 of(SentCommand::Kind kind) const { return commands.at(static_cast<std::size_t>(kind)); }

    double error_rate() const
    {
        return awaited == 0 ? 0 : static_cast<double>(failed) / static_cast<double>(awaited);
    }
};

/// Why a run is taken to begin where it does.
enum class RunBegin {
    Start,   ///< of the log
    Reset,   ///< the run before has reset the device
    Failure, ///< the run before has failed
    Break,   ///< the run before left a command without an accepted answer
    Version, ///< the version is asked for at the beginning only
    Order,   ///< one run cannot send this command after those before it
};

/// "start", "reset", "failure", "break", "version", "order".
QString name_of(RunBegin begin);

/// How a run ends, as far as a log shows it.
enum class RunEnd {
    Open,    ///< with an accepted answer
    Reset,   ///< after all of its operations had succeeded
    Failure, ///< with a command that was given up or wrongly acknowledged
    Break,   ///< in the middle of a command
};

/// "open", "reset", "failure", "break".
QString name_of(RunEnd end);

struct LoggedRun {
    quint64 number; ///< from 1
    qint64 first_line;
    qint64 last_line;
    RunBegin begin;
    RunEnd end = RunEnd::Open;
    LogCounts counts;
};

/// Everything about a log that is shown. Of long logs, the first frames and runs.
struct LogSummary {
    static constexpr std::size_t most_frames = 20000;
    static constexpr std::size_t most_runs = 1000;

    std::vector<LoggedFrame> frames;
    std::vector<LoggedRun> runs;
    quint64 frame_count = 0; ///< of all frames
    quint64 run_count = 0;   ///< of all runs
    LogCounts counts;        ///< of the whole log
};

/// "erase 30 pages of flash at word 0x000400 (byte 0x00000800)". Byte addresses need a
/// profile.
QString text_of(const SentCommand& command, const Profile* profile);

} // namespace inspect
