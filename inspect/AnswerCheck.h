#pragma once

#include "inspect/SentCommand.h"

#include <QString>

#include <array>

class Profile;

namespace inspect
{

/// What the uploader makes of an answer.
struct AnswerVerdict {
    enum class Kind {
        Accepted,
        Echo,          ///< holds the frame that was sent, or another that no device sends
        StrayBytes,    ///< a good frame with other bytes before it
        SeveralFrames, ///< good frames one after the other
        Undecodable,   ///< no good frame
        OtherCommand,  ///< an answer to some other command
        OtherLength,   ///< more or less data than was asked for
    };

    Kind kind = Kind::Accepted;
    QString reason;     ///< in the uploader's words; empty when accepted
    QByteArray payload; ///< of a frame that decodes, as it was received; of several, the first
    QByteArray data;    ///< what follows the repeated command
};

/// Judges answers as the uploader does.
class AnswerCheck
{
public:
    /// Without a profile, the size of a word is that of the first answer that fits.
    explicit AnswerCheck(const Profile* profile);

    /// Judges what was received after the frame of this payload was sent.
    AnswerVerdict judge(const QByteArray& payload, const QByteArray& received);

private:
    AnswerVerdict judge_payload(const QByteArray& payload, const QByteArray& received);
    QString length_problem(const SentCommand& command, int length);
    QString read_problem(const SentCommand& command, int length);

    std::array<unsigned int, 2> m_word_sizes{}; ///< by memory; 0 is unknown
};

} // namespace inspect
