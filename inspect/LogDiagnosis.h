#pragma once

#include "inspect/AnswerCheck.h"
#include "inspect/LogSummary.h"
#include "inspect/LoggedCommand.h"
#include "inspect/Problem.h"

#include <QByteArray>
#include <QString>

#include <deque>
#include <map>
#include <optional>
#include <vector>

class Profile;

namespace inspect
{

/// Finds out what is wrong on a line from what a log shows of it.
class LogDiagnosis
{
public:
    /// `profile` may be null. With a `version`, that of the device that the log should be of.
    LogDiagnosis(const Profile* profile, std::optional<unsigned short> version);

    /// Something that counts by itself.
    void note(Code code, qint64 line, const QString& detail = {});

    // What happens in the log, in its order.

    void begin_run();
    void begin(const QByteArray& payload);
    void take_accepted(const LoggedCommand& command);
    void take_refused(const LoggedCommand& command, const AnswerVerdict& verdict, qint64 line);
    void take_wrong_acknowledgement(const LoggedCommand& command, const AnswerVerdict& verdict,
                                    qint64 line);
    void take_version(unsigned short version, qint64 line);
    /// The row that was written just before reads back differently from this byte of it on.
    void take_difference(const LoggedCommand& command, int offset, qint64 line);
    void take_given_up(const LoggedCommand& command, const LogCounts& run);
    void take_break(const LoggedCommand& command);

    /// Of each kind of problem the first place, and how many there are; an echo comes first,
    /// because others follow from it. `counts`: of the whole log.
    std::vector<Problem> problems(const QString& path, const LogCounts& counts) const;

private:
    /// Of one kind.
    struct Finding {
        qint64 line = 0; ///< of the first
        quint64 times = 0;
        QString detail;         ///< of the first
        quint64 after_echo = 0; ///< places that come after an echo in the same run
        QString remedy = {};    ///< in place of that of the kind, when not empty
    };

    static bool follows_from_echo(Code code, const Finding& finding);
    static QString remedy_of(Code code, const Finding& finding);
    bool is_echo(const AnswerVerdict& verdict) const;
    std::optional<SentCommand> earlier_command(const QByteArray& payload,
                                               const QByteArray& answer) const;
    QString text(const LoggedCommand& command) const;
    QString refusal_text(quint64 answers) const;
    QString given_up_text(const LoggedCommand& command) const;
    bool erases_are_slow(const LogCounts& counts) const;
    void add_silences(std::map<Code, Finding>& findings, const LogCounts& counts) const;

    const Profile* m_profile;
    std::optional<unsigned short> m_version;
    std::map<Code, Finding> m_findings;
    std::map<QString, quint64> m_refusals; ///< answers that nothing is known of but the reason
    bool m_echoes = false;                 ///< the line, in this run so far
    std::deque<QByteArray> m_earlier;      ///< payloads of the last commands, the newest at the end
    Finding m_late_erases;                 ///< erases that were answered at a later attempt
    quint64 m_lost_after_erase = 0; ///< attempts of these, and of the next ones, not answered
    bool m_follows_late_erase = false;
    Finding m_lost; ///< attempts of other commands that were not answered
    quint64 m_commands_with_losses = 0;
};

} // namespace inspect
