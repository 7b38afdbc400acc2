#include "inspect/LogAnalysis.h"

#include "device/FrameCodec.h"
#include "device/Protocol.h"
#include "util/Util.h"

#include <algorithm>

namespace inspect
{

namespace
{

using Kind = SentCommand::Kind;

/// The entry procedure asks for the version in so many rounds, between its probes.
constexpr int entry_rounds = 5;

int most_attempts(Kind kind)
{
    return kind == Kind::Version ? protocol::entry_attempts : protocol::attempts;
}

bool is_flash(const SentCommand& command, Kind kind)
{
    return command.kind == kind && command.memory == MEMORY_FLASH;
}

} // namespace

LogAnalysis::LogAnalysis(const Profile* profile, LogDiagnosis& diagnosis)
    : m_diagnosis(diagnosis),
      m_answers(profile)
{
}

template <typename Change>
void LogAnalysis::count(Change change)
{
    change(m_summary.counts);
    change(m_run.counts);
}

void LogAnalysis::take(const LogLine& line)
{
    switch (line.kind) {
    case LogLine::Kind::Sent:
        take_sent(line);
        break;
    case LogLine::Kind::Received:
        take_received(line);
        break;
    case LogLine::Kind::Damaged:
        take_damaged(line.number, line.damage);
        break;
    case LogLine::Kind::Other:
        m_diagnosis.note(Code::LogOtherText, line.number,
                         QStringLiteral("The line does not begin with TX: or RX:."));
        break;
    }
}

const LogSummary& LogAnalysis::finish()
{
    settle();
    if (m_run.number != 0) {
        end_run();
    }
    return m_summary;
}

/// The uploader sends whole frames only.
void LogAnalysis::take_sent(const LogLine& line)
{
    QByteArray payload;
    if (const Reason reason = frame::decode(line.frame, payload)) {
        take_damaged(line.number, QStringLiteral("what was sent is no whole frame"));
        return;
    }
    settle();
    const bool again = is_retry(payload);
    if (!again) {
        begin_command(line, payload);
    }
    const bool is_reset = m_command->command.kind == Kind::Reset;
    m_command->last_line = line.number;
    m_command->is_awaited = !is_reset;
    m_command->end = is_reset ? AttemptEnd::NotAwaited : AttemptEnd::NoAnswer;
    ++m_command->attempts;
    count_sent(line, again);
    m_is_after_damage = false;
    m_listed_command.reset();
    if (list(entry(line))) {
        m_listed_command = m_summary.frames.size() - 1;
    }
    if (is_reset) {
        m_run.end = RunEnd::Reset;
    }
}

void LogAnalysis::count_sent(const LogLine& line, bool again)
{
    const bool is_version = m_command->command.kind == Kind::Version;
    m_version_attempts += is_version ? 1 : 0;
    count([&](LogCounts& counts) {
        counts.of(m_command->command.kind) += again ? 0U : 1U;
        counts.retries += again ? 1U : 0U;
        counts.longest_streak =
            std::max(counts.longest_streak, static_cast<quint64>(m_command->attempts - 1));
        counts.awaited += m_command->is_awaited ? 1U : 0U;
        counts.bytes_to_device += static_cast<quint64>(line.frame.size());
    });
    m_run.last_line = line.number;
}

/// The answer that is missing, or its command, may have been in this line.
void LogAnalysis::take_damaged(qint64 line, const QString& damage)
{
    m_diagnosis.note(Code::LogDamagedLine, line, QStringLiteral("In this line, %1.").arg(damage));
    m_is_after_damage = true;
    if (m_command && m_command->is_awaited) {
        end_attempt(AttemptEnd::Unclear);
    }
}

void LogAnalysis::take_received(const LogLine& line)
{
    if (!frame::is_terminated(line.frame)) { // the uploader logs nothing that does not end a frame
        take_damaged(line.number, QStringLiteral("what was received does not end like a frame"));
        return;
    }
    count([&](LogCounts& counts) {
        counts.bytes_from_device += static_cast<quint64>(line.frame.size());
    });
    LoggedFrame frame = entry(line);
    if (m_command && m_command->is_awaited) {
        m_run.last_line = line.number;
        take_answer(line, frame);
    } else {
        take_stray_answer(frame);
    }
    list(frame);
}

void LogAnalysis::take_stray_answer(LoggedFrame& frame)
{
    frame.end = AttemptEnd::Unclear;
    frame.note = m_is_after_damage ? QStringLiteral("its command is damaged")
                                   : QStringLiteral("no command goes before it");
    if (!m_is_after_damage) {
        m_diagnosis.note(Code::AnswerWithoutCommand, frame.line,
                         QStringLiteral("Nothing was sent since the last answer."));
    }
}

void LogAnalysis::take_answer(const LogLine& line, LoggedFrame& frame)
{
    const AnswerVerdict verdict = m_answers.judge(m_command->payload, line.frame);
    frame.end = AttemptEnd::Accepted;
    if (verdict.kind == AnswerVerdict::Kind::Accepted) {
        take_accepted(verdict, frame);
    } else {
        frame.end = AttemptEnd::Refused;
        frame.note = verdict.reason;
        m_diagnosis.take_refused(*m_command, verdict, line.number);
    }
    end_attempt(frame.end);
}

void LogAnalysis::take_accepted(const AnswerVerdict& verdict, LoggedFrame& frame)
{
    switch (m_command->command.kind) {
    case Kind::Version:
        frame.version = protocol::version_in(verdict.data);
        m_diagnosis.take_version(*frame.version, frame.line);
        break;
    case Kind::Read:
        frame.data_bytes = verdict.data.size();
        compare_with_written(verdict.data, frame.line);
        break;
    case Kind::Erase:
    case Kind::Write:
        take_acknowledgement(verdict, frame);
        break;
    default:
        break;
    }
    m_written_row = is_flash(m_command->command, Kind::Write) ? m_command->payload : QByteArray();
    if (frame.end == AttemptEnd::Accepted) {
        m_diagnosis.take_accepted(*m_command);
    }
}

/// A wrong one is final: it is not asked for again.
void LogAnalysis::take_acknowledgement(const AnswerVerdict& verdict, LoggedFrame& frame)
{
    const unsigned int received = static_cast<unsigned char>(verdict.data.at(0));
    if (verdict.data.at(0) == m_command->payload.at(0)) {
        return;
    }
    frame.end = AttemptEnd::Refused;
    frame.note = QStringLiteral("a wrong acknowledgement, 0x") + Util::uint_to_hex(received, 2);
    m_run.end = RunEnd::Failure;
    m_diagnosis.take_wrong_acknowledgement(*m_command, verdict, frame.line);
}

/// What is read right after a row has been written, and from its address, is the row.
void LogAnalysis::compare_with_written(const QByteArray& data, qint64 line)
{
    constexpr int header_length = 5;
    constexpr int address_at = 2;
    const auto address_of = [](const QByteArray& payload) {
        return payload.mid(address_at, header_length - address_at);
    };
    if (m_written_row.isEmpty() || !is_flash(m_command->command, Kind::Read) ||
        address_of(m_written_row) != address_of(m_command->payload)) {
        return;
    }
    const QByteArray written = m_written_row.mid(header_length);
    const auto [in_written, in_read] =
        std::mismatch(written.begin(), written.end(), data.begin(), data.end());
    if (in_written != written.end() && in_read != data.end()) {
        m_diagnosis.take_difference(*m_command, static_cast<int>(in_read - data.begin()), line);
    }
}

/// Nothing was received for the last attempt.
void LogAnalysis::settle()
{
    if (m_command && m_command->is_awaited) {
        end_attempt(AttemptEnd::NoAnswer);
    }
}

void LogAnalysis::end_attempt(AttemptEnd end)
{
    LoggedCommand& command = *m_command;
    command.end = end;
    command.is_awaited = false;
    command.unanswered += end == AttemptEnd::NoAnswer ? 1 : 0;
    command.refused += end == AttemptEnd::Refused ? 1 : 0;
    if (m_listed_command) {
        m_summary.frames.at(*m_listed_command).end = end;
    }
    count([&](LogCounts& counts) { counts.failed += command.has_failed() ? 1U : 0U; });
    if (command.has_failed() && command.attempts == most_attempts(command.command.kind) &&
        m_run.end == RunEnd::Open) {
        give_up();
    }
}

void LogAnalysis::give_up()
{
    m_command->is_given_up = true;
    const bool is_version = m_command->command.kind == Kind::Version;
    if (is_version && m_version_attempts < entry_rounds * protocol::entry_attempts) {
        return; // probes follow
    }
    m_order.give_up();
    m_run.end = RunEnd::Failure;
    m_diagnosis.take_given_up(*m_command, m_run.counts);
}

bool LogAnalysis::is_retry(const QByteArray& payload) const
{
    return m_command && m_run.end == RunEnd::Open && m_command->payload == payload &&
           m_command->end != AttemptEnd::Accepted &&
           m_command->attempts < most_attempts(m_command->command.kind);
}

void LogAnalysis::begin_command(const LogLine& line, const QByteArray& payload)
{
    const SentCommand command = command_of(payload);
    if (const auto reason = reason_for_new_run(command)) {
        begin_run(line.number, *reason);
        m_order.take(command);
    }
    m_run.end = RunEnd::Open;
    m_command = LoggedCommand();
    m_command->command = command;
    m_command->payload = payload;
    m_command->line = line.number;
    m_diagnosis.begin(payload);
}

std::optional<RunBegin> LogAnalysis::reason_for_new_run(const SentCommand& command)
{
    if (m_run.number == 0) {
        return RunBegin::Start;
    }
    if (const auto reason = reason_after_last_command()) {
        return reason;
    }
    switch (command.kind) {
    case Kind::Version:
        return can_ask_for_version() ? std::nullopt : std::optional(RunBegin::Version);
    case Kind::Reset:
    case Kind::Unknown:
        return std::nullopt;
    default:
        break;
    }
    if (m_order.take(command)) {
        return std::nullopt;
    }
    return m_run.end == RunEnd::Failure ? RunBegin::Failure : RunBegin::Order;
}

/// A row that cannot be read for a comparison counts as different, and the run goes on.
std::optional<RunBegin> LogAnalysis::reason_after_last_command() const
{
    const bool is_given_up_read =
        m_command->is_given_up && is_flash(m_command->command, Kind::Read);
    if (m_run.end == RunEnd::Reset) {
        return RunBegin::Reset;
    }
    if (m_run.end == RunEnd::Failure && !is_given_up_read) {
        return RunBegin::Failure;
    }
    if (m_command->has_failed() && !m_command->is_given_up) {
        return RunBegin::Break;
    }
    return std::nullopt;
}

bool LogAnalysis::can_ask_for_version() const
{
    return m_command->command.kind == Kind::Version && m_command->end != AttemptEnd::Accepted;
}

void LogAnalysis::begin_run(qint64 line, RunBegin begin)
{
    if (m_run.number != 0) {
        end_run();
    }
    m_run = LoggedRun{m_run.number + 1, line, line, begin, RunEnd::Open, {}};
    m_diagnosis.begin_run();
    m_order = RunOrder();
    m_version_attempts = 0;
    m_written_row.clear();
}

/// Without an accepted answer to its last command a run has broken off, or goes on still.
void LogAnalysis::end_run()
{
    if (m_run.end == RunEnd::Open && m_command->has_failed() && !m_command->is_given_up) {
        m_run.end = RunEnd::Break;
        m_diagnosis.take_break(*m_command);
    }
    ++m_summary.run_count;
    if (m_summary.runs.size() < LogSummary::most_runs) {
        m_summary.runs.push_back(m_run);
    }
}

LoggedFrame LogAnalysis::entry(const LogLine& line) const
{
    LoggedFrame frame;
    frame.line = line.number;
    frame.is_sent = line.kind == LogLine::Kind::Sent;
    frame.run = m_run.number;
    frame.bytes = line.frame.size();
    if (m_command) {
        frame.command = m_command->command;
        frame.attempt = m_command->attempts;
        frame.end = m_command->end;
    }
    return frame;
}

bool LogAnalysis::list(const LoggedFrame& frame)
{
    ++m_summary.frame_count;
    if (m_summary.frames.size() == LogSummary::most_frames) {
        return false;
    }
    m_summary.frames.push_back(frame);
    return true;
}

} // namespace inspect
