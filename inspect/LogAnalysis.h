#pragma once

#include "inspect/AnswerCheck.h"
#include "inspect/LogDiagnosis.h"
#include "inspect/LogReader.h"
#include "inspect/LogSummary.h"
#include "inspect/LoggedCommand.h"
#include "inspect/RunOrder.h"

#include <optional>

namespace inspect
{

/// Joins the lines of a log to commands with their attempts and answers, and those to runs. Its
/// memory does not grow with the log.
class LogAnalysis
{
public:
    /// `profile` may be null. It and the diagnosis, which what happens is reported to, must outlive
    /// the analysis.
    LogAnalysis(const Profile* profile, LogDiagnosis& diagnosis);

    /// Takes the lines of the log in order.
    void take(const LogLine& line);
    /// There are no more lines. Returns what they add up to.
    const LogSummary& finish();

private:
    void take_sent(const LogLine& line);
    void take_received(const LogLine& line);
    void take_damaged(qint64 line, const QString& damage);
    void take_stray_answer(LoggedFrame& frame);
    void take_answer(const LogLine& line, LoggedFrame& frame);
    void take_accepted(const AnswerVerdict& verdict, LoggedFrame& frame);
    void take_acknowledgement(const AnswerVerdict& verdict, LoggedFrame& frame);
    void compare_with_written(const QByteArray& data, qint64 line);

    void settle();
    void end_attempt(AttemptEnd end);
    void give_up();
    bool is_retry(const QByteArray& payload) const;
    void begin_command(const LogLine& line, const QByteArray& payload);
    std::optional<RunBegin> reason_for_new_run(const SentCommand& command);
    std::optional<RunBegin> reason_after_last_command() const;
    bool can_ask_for_version() const;
    void begin_run(qint64 line, RunBegin begin);
    void end_run();

    void count_sent(const LogLine& line, bool again);
    LoggedFrame entry(const LogLine& line) const;
    bool list(const LoggedFrame& frame);
    template <typename Change>
    void count(Change change);

    LogDiagnosis& m_diagnosis;
    AnswerCheck m_answers;
    LogSummary m_summary;
    std::optional<LoggedCommand> m_command;
    std::optional<std::size_t> m_listed_command; ///< the place of its last attempt in the list
    LoggedRun m_run{0, 0, 0, RunBegin::Start, RunEnd::Open, {}};
    RunOrder m_order;
    int m_version_attempts = 0;     ///< in this run
    bool m_is_after_damage = false; ///< no whole command has been sent since a damaged line
    QByteArray m_written_row;       ///< the payload of the last command, if it wrote flash
};

} // namespace inspect
