#include "inspect/LogSummary.h"

#include "inspect/Figures.h"
#include "util/Util.h"

namespace inspect
{

namespace
{

QString place_of(const SentCommand& command, const Profile* profile)
{
    QString text = QStringLiteral("word 0x") + Util::uint_to_hex(command.word_address, 6);
    if (profile == nullptr) {
        return text;
    }
    const auto byte = byte_address_of(command, *profile);
    return byte ? QStringLiteral("%1 (byte %2)").arg(text, address_text(*byte)) : text;
}

QString memory_name(const SentCommand& command)
{
    return command.memory == MEMORY_FLASH ? QStringLiteral("flash") : QStringLiteral("EEPROM");
}

} // namespace

QString name_of(AttemptEnd end)
{
    switch (end) {
    case AttemptEnd::Accepted:
        return QStringLiteral("accepted");
    case AttemptEnd::Refused:
        return QStringLiteral("refused");
    case AttemptEnd::NoAnswer:
        return QStringLiteral("none");
    case AttemptEnd::NotAwaited:
        return QStringLiteral("not_awaited");
    case AttemptEnd::Unclear:
        break;
    }
    return QStringLiteral("unclear");
}

QString name_of(RunBegin begin)
{
    switch (begin) {
    case RunBegin::Start:
        return QStringLiteral("start");
    case RunBegin::Reset:
        return QStringLiteral("reset");
    case RunBegin::Failure:
        return QStringLiteral("failure");
    case RunBegin::Break:
        return QStringLiteral("break");
    case RunBegin::Version:
        return QStringLiteral("version");
    case RunBegin::Order:
        break;
    }
    return QStringLiteral("order");
}

QString name_of(RunEnd end)
{
    switch (end) {
    case RunEnd::Reset:
        return QStringLiteral("reset");
    case RunEnd::Failure:
        return QStringLiteral("failure");
    case RunEnd::Break:
        return QStringLiteral("break");
    case RunEnd::Open:
        break;
    }
    return QStringLiteral("open");
}

QString text_of(const SentCommand& command, const Profile* profile)
{
    switch (command.kind) {
    case SentCommand::Kind::Version:
        return QStringLiteral("request the version");
    case SentCommand::Kind::Reset:
        return QStringLiteral("reset the device");
    case SentCommand::Kind::Erase:
        return QStringLiteral("erase %1 of flash at %2")
            .arg(count_text(command.count, "page"), place_of(command, profile));
    case SentCommand::Kind::Write:
        return QStringLiteral("write %1 to %2 at %3")
            .arg(count_text(static_cast<quint64>(command.data_bytes), "byte"), memory_name(command),
                 place_of(command, profile));
    case SentCommand::Kind::Read:
        return QStringLiteral("read %1 of %2 at %3")
            .arg(count_text(command.count, "word"), memory_name(command),
                 place_of(command, profile));
    case SentCommand::Kind::Unknown:
        break;
    }
    return QStringLiteral("an unknown command");
}

} // namespace inspect
