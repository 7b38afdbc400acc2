#include "inspect/AnswerCheck.h"

#include "device/FrameCodec.h"
#include "device/Protocol.h"
#include "profile/Profile.h"

namespace inspect
{

namespace
{

using Command = SentCommand::Kind;
using Kind = AnswerVerdict::Kind;

const QByteArray& frame_begin()
{
    static const QByteArray syncs(2, frame::sync);
    return syncs;
}

/// A good frame begins somewhere after the first byte. Its two sync bytes may be any two of
/// several.
bool ends_in_a_frame(const QByteArray& received)
{
    constexpr int places_to_look_at = 16;
    QByteArray payload;
    int at = received.indexOf(frame_begin(), 1);
    for (int i = 0; i < places_to_look_at && at != -1; ++i) {
        if (!frame::decode(received.mid(at), payload)) {
            return true;
        }
        at = received.indexOf(frame_begin(), at + 1);
    }
    return false;
}

/// The payload of the first of several frames; empty where there are not several, one directly
/// after the other.
QByteArray first_of_several_frames(const QByteArray& received)
{
    QByteArray payload;
    const int next = received.indexOf(frame::terminator + frame_begin());
    const bool is_frame = next != -1 && !frame::decode(received.left(next + 1), payload);
    return is_frame && ends_in_a_frame(received) ? payload : QByteArray();
}

/// Erases and writes are acknowledged with one byte: only a host sends them with an address.
bool is_of_a_host(const QByteArray& payload)
{
    const Command command = command_of(payload).kind;
    return command == Command::Erase || command == Command::Write;
}

/// One of the frames, each directly after the one before, is that of a host.
bool holds_a_frame_of_a_host(const QByteArray& received)
{
    QByteArray payload;
    for (int at = 0; at != -1;) {
        const int next = received.indexOf(frame::terminator + frame_begin(), at);
        const int end = next == -1 ? received.size() : next + 1;
        if (!frame::decode(received.mid(at, end - at), payload) && is_of_a_host(payload)) {
            return true;
        }
        at = next == -1 ? -1 : end;
    }
    return false;
}

/// Lengths are compared in 16 bits. Empty when they are the same.
QString difference(int received, int expected)
{
    const auto left = static_cast<unsigned short>(received);
    const auto right = static_cast<unsigned short>(expected);
    return left == right
               ? QString()
               : QStringLiteral("response contained %1 bytes, expected %2").arg(left).arg(right);
}

} // namespace

AnswerCheck::AnswerCheck(const Profile* profile)
{
    if (profile != nullptr) {
        m_word_sizes = {profile->get_word_size(MEMORY_FLASH),
                        profile->get_word_size(MEMORY_EEPROM)};
    }
}

AnswerVerdict AnswerCheck::judge(const QByteArray& payload, const QByteArray& received)
{
    AnswerVerdict verdict;
    if (const Reason reason = frame::decode(received, verdict.payload)) {
        verdict.reason = *reason;
        verdict.payload = first_of_several_frames(received);
        verdict.kind = !verdict.payload.isEmpty()  ? Kind::SeveralFrames
                       : ends_in_a_frame(received) ? Kind::StrayBytes
                                                   : Kind::Undecodable;
    } else {
        verdict = judge_payload(payload, verdict.payload);
    }
    if (verdict.kind != Kind::Accepted &&
        (received.contains(frame::encode(payload)) || holds_a_frame_of_a_host(received))) {
        verdict.kind = Kind::Echo;
    }
    return verdict;
}

AnswerVerdict AnswerCheck::judge_payload(const QByteArray& payload, const QByteArray& received)
{
    AnswerVerdict verdict{Kind::Accepted, {}, received, received};
    protocol::repair_second_byte(payload, verdict.data);
    if (!protocol::strip_command(payload, verdict.data)) {
        verdict.kind = Kind::OtherCommand;
        verdict.reason =
            QStringLiteral("response was not prefixed with the command but was supposed to be");
        return verdict;
    }
    verdict.reason = length_problem(command_of(payload), verdict.data.size());
    verdict.kind = verdict.reason.isEmpty() ? Kind::Accepted : Kind::OtherLength;
    return verdict;
}

QString AnswerCheck::length_problem(const SentCommand& command, int length)
{
    switch (command.kind) {
    case SentCommand::Kind::Version:
        return difference(length, protocol::version_length);
    case SentCommand::Kind::Erase:
    case SentCommand::Kind::Write:
        return difference(length, protocol::acknowledgement_length);
    case SentCommand::Kind::Read:
        return read_problem(command, length);
    default:
        return {}; // the uploader does not send it
    }
}

/// Without a word size, any whole number of bytes for each word is right, and is so from then on.
QString AnswerCheck::read_problem(const SentCommand& command, int length)
{
    unsigned int& word_size = m_word_sizes.at(command.memory);
    const auto received = static_cast<unsigned int>(length);
    if (word_size == 0 && (received == 0 || command.count == 0 || received % command.count != 0)) {
        return QStringLiteral("response contained %1 bytes").arg(length);
    }
    word_size = word_size == 0 ? received / command.count : word_size;
    return difference(length, static_cast<int>(command.count * word_size));
}

} // namespace inspect
