#pragma once

#include "profile/MemoryType.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <optional>

class Profile;

namespace inspect
{

/// A command as its payload shows it.
struct SentCommand {
    enum class Kind { Version, Erase, Write, Read, Reset, Unknown };

    Kind kind = Kind::Unknown;
    MemoryType memory = MEMORY_OTHER; ///< of a read, a write or an erase
    unsigned int count = 0;           ///< words to read, as announced by a write, or pages to erase
    unsigned int word_address = 0;
    int data_bytes = 0; ///< that a write carries

    bool has_address() const { return memory != MEMORY_OTHER; }
};

/// In the order of the enumeration.
inline constexpr std::array<SentCommand::Kind, 6> command_kinds = {
    SentCommand::Kind::Version, SentCommand::Kind::Erase, SentCommand::Kind::Write,
    SentCommand::Kind::Read,    SentCommand::Kind::Reset, SentCommand::Kind::Unknown};

/// "version", "erase", "write", "read", "reset", "unknown".
QString name_of(SentCommand::Kind kind);

/// What a payload, which must not be empty, asks for.
SentCommand command_of(const QByteArray& payload);

/// Where in the image the command's word address lies; nothing when the table does not say so.
std::optional<quint64> byte_address_of(const SentCommand& command, const Profile& profile);

} // namespace inspect
