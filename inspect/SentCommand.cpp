#include "inspect/SentCommand.h"

#include "device/Protocol.h"
#include "profile/Profile.h"

namespace inspect
{

namespace
{

/// Operation, count and word address.
constexpr int header_length = 5;

unsigned int byte_at(const QByteArray& payload, int position)
{
    return static_cast<unsigned char>(payload.at(position));
}

/// What a payload of this length can be that begins with this operation.
SentCommand operation_of(char opcode, bool has_data)
{
    using Kind = SentCommand::Kind;
    SentCommand command;
    for (const MemoryType memory : {MEMORY_FLASH, MEMORY_EEPROM}) {
        if (!has_data && opcode == protocol::MEMORY_READ_COMMANDS.at(memory)) {
            command.kind = Kind::Read;
            command.memory = memory;
        } else if (has_data && opcode == protocol::MEMORY_WRITE_COMMANDS.at(memory)) {
            command.kind = Kind::Write;
            command.memory = memory;
        }
    }
    if (!has_data && opcode == protocol::erase_command) {
        command.kind = Kind::Erase;
        command.memory = MEMORY_FLASH;
    }
    return command;
}

} // namespace

QString name_of(SentCommand::Kind kind)
{
    switch (kind) {
    case SentCommand::Kind::Version:
        return QStringLiteral("version");
    case SentCommand::Kind::Erase:
        return QStringLiteral("erase");
    case SentCommand::Kind::Write:
        return QStringLiteral("write");
    case SentCommand::Kind::Read:
        return QStringLiteral("read");
    case SentCommand::Kind::Reset:
        return QStringLiteral("reset");
    case SentCommand::Kind::Unknown:
        break;
    }
    return QStringLiteral("unknown");
}

SentCommand command_of(const QByteArray& payload)
{
    SentCommand command;
    if (payload == protocol::version_request()) {
        command.kind = SentCommand::Kind::Version;
    } else if (payload == protocol::reset()) {
        command.kind = SentCommand::Kind::Reset;
    } else if (payload.size() >= header_length) {
        command = operation_of(payload.at(0), payload.size() > header_length);
        command.count = byte_at(payload, 1);
        command.word_address =
            byte_at(payload, 2) | byte_at(payload, 3) << 8U | byte_at(payload, 4) << 16U;
        command.data_bytes = payload.size() - header_length;
    }
    return command;
}

std::optional<quint64> byte_address_of(const SentCommand& command, const Profile& profile)
{
    const unsigned int divisor =
        command.has_address() ? profile.get_address_divisor(command.memory) : 0;
    if (divisor == 0) {
        return std::nullopt;
    }
    const quint64 offset =
        command.memory == MEMORY_EEPROM ? profile.get_min_address(MEMORY_EEPROM) : 0;
    return offset + quint64{command.word_address} * divisor;
}

} // namespace inspect
