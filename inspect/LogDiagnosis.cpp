#include "inspect/LogDiagnosis.h"

#include "device/Protocol.h"
#include "inspect/Figures.h"
#include "util/Util.h"

#include <QStringList>

#include <algorithm>
#include <numeric>
#include <utility>

namespace inspect
{

namespace
{

using Kind = SentCommand::Kind;

/// An answer can come a few commands late.
constexpr std::size_t commands_to_remember = 4;

/// The reason without the figures of this one answer.
QString kind_of_reason(const QString& reason)
{
    const auto figure = std::find_if(reason.begin(), reason.end(),
                                     [](QChar c) { return c.isDigit() || c == QLatin1Char('('); });
    QString kind = reason.left(static_cast<int>(figure - reason.begin())).trimmed();
    if (kind.endsWith(QLatin1String(" at position"))) {
        kind.chop(12);
    }
    return kind;
}

bool is_acknowledged(char opcode)
{
    return opcode == protocol::erase_command || opcode == protocol::MEMORY_WRITE_COMMANDS.at(0) ||
           opcode == protocol::MEMORY_WRITE_COMMANDS.at(1);
}

/// The answer fits this command.
bool answers(const QByteArray& payload, const QByteArray& answer)
{
    if (is_acknowledged(payload.at(0))) {
        return answer.size() == 1 && answer.at(0) == payload.at(0);
    }
    QByteArray repaired = answer;
    protocol::repair_second_byte(payload, repaired);
    return repaired.size() > payload.size() && repaired.startsWith(payload);
}

/// Two commands that are answered alike: acknowledgements name no address.
bool are_answered_alike(const QByteArray& left, const QByteArray& right)
{
    return left == right || (is_acknowledged(left.at(0)) && left.at(0) == right.at(0));
}

QString slow_erase_or_else(Code code)
{
    QString otherwise = QString::fromLatin1(kind_of(code).remedy);
    otherwise[0] = otherwise.at(0).toLower();
    return QStringLiteral("Run -v FILE. If its reads are answered, erasing takes too long: use -e "
                          "-wv, which erases one page at a time. If not, ") +
           otherwise;
}

QString with_times(const QString& text, quint64 times, const char* unit)
{
    return times < 2 ? text
                     : QStringLiteral("%1 The first of %2.").arg(text, count_text(times, unit));
}

} // namespace

LogDiagnosis::LogDiagnosis(const Profile* profile, std::optional<unsigned short> version)
    : m_profile(profile),
      m_version(version)
{
}

void LogDiagnosis::note(Code code, qint64 line, const QString& detail)
{
    Finding& finding = m_findings[code];
    finding.after_echo += m_echoes ? 1U : 0U;
    if (finding.times++ == 0) {
        finding.line = line;
        finding.detail = detail;
    }
}

void LogDiagnosis::begin_run()
{
    m_echoes = false;
}

void LogDiagnosis::begin(const QByteArray& payload)
{
    m_earlier.push_back(payload);
    if (m_earlier.size() > commands_to_remember + 1) {
        m_earlier.pop_front();
    }
}

/// Version commands that a starting device does not hear are as they should be.
void LogDiagnosis::take_accepted(const LoggedCommand& command)
{
    const bool is_erase = command.command.kind == Kind::Erase;
    const bool follows_late_erase = std::exchange(m_follows_late_erase, false);
    if (command.unanswered == 0 || command.command.kind == Kind::Version) {
        return;
    }
    m_follows_late_erase = is_erase;
    if (!is_erase && follows_late_erase) { // the device is still at the repeated erase
        m_lost_after_erase += static_cast<quint64>(command.unanswered);
        return;
    }
    Finding& finding = is_erase ? m_late_erases : m_lost;
    if (finding.times == 0) {
        finding.line = command.line;
        finding.detail = text(command);
    }
    finding.times += is_erase ? 1 : static_cast<quint64>(command.unanswered);
    m_lost_after_erase += is_erase ? static_cast<quint64>(command.unanswered) : 0;
    m_commands_with_losses += is_erase ? 0 : 1;
}

void LogDiagnosis::take_refused(const LoggedCommand& command, const AnswerVerdict& verdict,
                                qint64 line)
{
    if (is_echo(verdict)) {
        note(Code::EchoAsAnswer, line,
             QStringLiteral("The answer to %1 holds a command that was sent.").arg(text(command)));
        m_echoes = true;
        return;
    }
    if (const auto earlier = earlier_command(command.payload, verdict.payload)) {
        note(Code::LateAnswer, line,
             QStringLiteral("To %1 came the answer to: %2.")
                 .arg(text(command), text_of(*earlier, m_profile)));
        return;
    }
    const QString detail = QStringLiteral("To %1: %2.").arg(text(command), verdict.reason);
    switch (verdict.kind) {
    case AnswerVerdict::Kind::StrayBytes:
        note(Code::StrayBytes, line, detail);
        break;
    case AnswerVerdict::Kind::SeveralFrames:
        note(Code::LateAnswer, line,
             QStringLiteral("To %1 came several answers at once.").arg(text(command)));
        break;
    case AnswerVerdict::Kind::OtherLength:
        note(Code::AnswerLength, line, detail);
        break;
    default:
        note(Code::RefusedAnswer, line);
        ++m_refusals[kind_of_reason(verdict.reason)];
        break;
    }
}

void LogDiagnosis::take_wrong_acknowledgement(const LoggedCommand& command,
                                              const AnswerVerdict& verdict, qint64 line)
{
    if (const auto earlier = earlier_command(command.payload, verdict.payload)) {
        note(Code::LateAnswer, line,
             QStringLiteral("To %1 came the acknowledgement of: %2.")
                 .arg(text(command), text_of(*earlier, m_profile)));
        return;
    }
    const auto hex = [](char byte) {
        return QStringLiteral("0x") +
               Util::uint_to_hex(static_cast<unsigned int>(static_cast<unsigned char>(byte)), 2);
    };
    note(Code::WrongAcknowledgement, line,
         QStringLiteral("To %1 came %2 instead of %3.")
             .arg(text(command), hex(verdict.data.at(0)), hex(command.payload.at(0))));
}

void LogDiagnosis::take_version(unsigned short version, qint64 line)
{
    if (m_version && version != *m_version) {
        note(Code::OtherVersion, line,
             QStringLiteral("The device reports version %1, and the log is read with %2.")
                 .arg(Util::uint_to_hex(uint{version}, 4), Util::uint_to_hex(uint{*m_version}, 4)));
    }
}

void LogDiagnosis::take_difference(const LoggedCommand& command, int offset, qint64 line)
{
    note(Code::ReadBackDiffers, line,
         QStringLiteral("To %1 came other bytes than were written just before, from byte %2 of the "
                        "row on, counted from 0.")
             .arg(text(command))
             .arg(offset));
}

void LogDiagnosis::take_given_up(const LoggedCommand& command, const LogCounts& run)
{
    m_echoes = m_echoes && command.unanswered == 0; // at least an echo would come
    const bool is_silent = run.bytes_from_device == 0;
    const bool has_version = run.of(Kind::Version) != 0;
    const quint64 commands =
        static_cast<quint64>(std::accumulate(run.commands.begin(), run.commands.end(), quint64{0}));
    Code code = Code::CommandGivenUp;
    if (command.command.kind == Kind::Version) {
        code = Code::DeviceNotFound;
    } else if (is_silent) {
        code = Code::NothingAnswered;
    } else if (command.refused == 0 && has_version && commands == run.of(Kind::Version) + 1) {
        code = Code::SilentAfterVersion;
    }
    note(code, command.line, given_up_text(command));
    Finding& finding = m_findings[code];
    const bool is_silence = code == Code::NothingAnswered || code == Code::SilentAfterVersion;
    if (finding.times == 1 && is_silence && command.command.kind == Kind::Erase) {
        finding.remedy = slow_erase_or_else(code);
    }
}

void LogDiagnosis::take_break(const LoggedCommand& command)
{
    note(Code::UnfinishedRun, command.last_line,
         QStringLiteral("It ends with attempt %1 to %2; no accepted answer follows.")
             .arg(command.attempts)
             .arg(text(command)));
}

std::vector<Problem> LogDiagnosis::problems(const QString& path, const LogCounts& counts) const
{
    std::map<Code, Finding> findings = m_findings;
    add_silences(findings, counts);
    if (const auto refused = findings.find(Code::RefusedAnswer); refused != findings.end()) {
        refused->second.detail = refusal_text(refused->second.times);
        refused->second.times = 1;
    }
    std::vector<Problem> problems;
    problems.reserve(findings.size());
    for (const auto& [code, finding] : findings) {
        problems.push_back({code,
                            with_times(finding.detail, finding.times, "place"),
                            {path, finding.line, 0},
                            {},
                            remedy_of(code, finding)});
    }
    std::stable_partition(problems.begin(), problems.end(), [](const Problem& problem) {
        return problem.code == Code::EchoAsAnswer;
    });
    return problems;
}

/// The echo takes the place of the answer, which then comes late or never.
bool LogDiagnosis::follows_from_echo(Code code, const Finding& finding)
{
    const bool can_follow =
        code == Code::CommandGivenUp || code == Code::LateAnswer || code == Code::AnswerLength;
    return can_follow && finding.after_echo == finding.times;
}

QString LogDiagnosis::remedy_of(Code code, const Finding& finding)
{
    return follows_from_echo(code, finding)
               ? QStringLiteral("Use -h first: this follows from the echo (L010).")
               : finding.remedy;
}

/// The echo of a command can come after the next one has been sent.
bool LogDiagnosis::is_echo(const AnswerVerdict& verdict) const
{
    return verdict.kind == AnswerVerdict::Kind::Echo ||
           std::find(m_earlier.begin(), m_earlier.end(), verdict.payload) != m_earlier.end();
}

/// The command before the last one, or a few earlier, that this is the answer to.
std::optional<SentCommand> LogDiagnosis::earlier_command(const QByteArray& payload,
                                                         const QByteArray& answer) const
{
    if (answer.isEmpty()) {
        return std::nullopt;
    }
    const auto found =
        std::find_if(m_earlier.rbegin(), m_earlier.rend(), [&](const QByteArray& earlier) {
            return !are_answered_alike(payload, earlier) && answers(earlier, answer);
        });
    return found == m_earlier.rend() ? std::nullopt : std::optional(command_of(*found));
}

QString LogDiagnosis::text(const LoggedCommand& command) const
{
    return text_of(command.command, m_profile);
}

QString LogDiagnosis::refusal_text(quint64 answers) const
{
    QStringList reasons;
    for (const auto& [reason, times] : m_refusals) {
        reasons << QStringLiteral("%1 (%2)").arg(reason).arg(times);
    }
    return QStringLiteral("%1: %2.").arg(count_text(answers, "answer"),
                                         reasons.join(QStringLiteral(", ")));
}

QString LogDiagnosis::given_up_text(const LoggedCommand& command) const
{
    if (command.command.kind == Kind::Version) {
        return QStringLiteral("The version was asked for 15 times.");
    }
    return QStringLiteral("%1 to %2: %3 without an answer, %4 with one that was refused.")
        .arg(count_text(static_cast<quint64>(command.attempts), "attempt"), text(command))
        .arg(command.unanswered)
        .arg(command.refused);
}

/// Half of the erases or more are answered late, and hardly any other command.
bool LogDiagnosis::erases_are_slow(const LogCounts& counts) const
{
    const quint64 others = counts.of(Kind::Write) + counts.of(Kind::Read);
    return m_late_erases.times != 0 && 2 * m_late_erases.times >= counts.of(Kind::Erase) &&
           20 * m_commands_with_losses <= others;
}

void LogDiagnosis::add_silences(std::map<Code, Finding>& findings, const LogCounts& counts) const
{
    Finding lost = m_lost;
    if (erases_are_slow(counts)) {
        const QString detail =
            QStringLiteral("%1 of %2 not acknowledged before the command was "
                           "sent again; the first: %3.")
                .arg(m_late_erases.times)
                .arg(count_text(counts.of(Kind::Erase), "erase"), m_late_erases.detail);
        findings[Code::SlowErase] = {m_late_erases.line, 1, detail};
    } else if (m_late_erases.times != 0) {
        const bool is_first = lost.times == 0 || m_late_erases.line < lost.line;
        lost.line = is_first ? m_late_erases.line : lost.line;
        lost.detail = is_first ? m_late_erases.detail : lost.detail;
        lost.times += m_lost_after_erase;
    }
    if (lost.times != 0) {
        const QString detail =
            QStringLiteral(
                "%1 of %2 came to nothing, and the next one was answered; the first: %3.")
                .arg(lost.times)
                .arg(count_text(counts.awaited, "attempt"), lost.detail);
        findings[Code::LostAnswer] = {lost.line, 1, detail};
    }
}

} // namespace inspect
