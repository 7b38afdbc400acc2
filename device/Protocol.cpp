#include "device/Protocol.h"

namespace protocol
{

namespace
{

bool is_answered_without_echo(char opcode)
{
    return opcode == MEMORY_WRITE_COMMANDS[0] || opcode == MEMORY_WRITE_COMMANDS[1] ||
           opcode == erase_command;
}

} // namespace

QByteArray version_request()
{
    return QByteArray("\x00\x02", 2);
}

QByteArray reset()
{
    return QByteArray("\x00\x00", 2);
}

QByteArray memory_command(char opcode, unsigned char count, unsigned int word_address)
{
    QByteArray command(1, opcode);
    command.append(static_cast<char>(count));
    for (unsigned int shift = 0; shift < 24; shift += 8) {
        command.append(static_cast<char>((word_address >> shift) & 0xFFU));
    }
    return command;
}

unsigned short version_in(const QByteArray& bytes)
{
    const unsigned int high = bytes.isEmpty() ? 0U : static_cast<unsigned char>(bytes.at(0));
    const int low = bytes.size() < 2 ? 0 : static_cast<signed char>(bytes.at(1));
    return static_cast<unsigned short>((high << 8) | static_cast<unsigned int>(low));
}

void repair_second_byte(const QByteArray& command, QByteArray& response)
{
    const bool second_is_zero = response.size() == 1 || response.at(1) == 0;
    if (response.at(0) == MEMORY_READ_COMMANDS[0] && second_is_zero && command.size() > 1) {
        response.resize(qMax(response.size(), 2));
        response[1] = command.at(1);
    }
}

bool strip_command(const QByteArray& command, QByteArray& response)
{
    if (response.startsWith(command)) {
        response.remove(0, command.size());
        return true;
    }
    return is_answered_without_echo(command.at(0));
}

} // namespace protocol
