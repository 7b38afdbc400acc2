#include "inspect/RunOrder.h"

namespace inspect
{

namespace
{

using Kind = SentCommand::Kind;

bool is(const std::optional<SentCommand>& command, Kind kind, MemoryType memory)
{
    return command && command->kind == kind && command->memory == memory;
}

/// The step of a run that a command belongs to, when it takes one step after the other.
int step_of(const SentCommand& command)
{
    switch (command.kind) {
    case Kind::Erase:
        return 1;
    case Kind::Write:
        return command.memory == MEMORY_FLASH ? 2 : 3;
    default:
        return 4;
    }
}

/// Addresses go up within a step. Two pieces of an image can share a row of EEPROM, which is then
/// written twice; rows that differ are verified more than once.
bool goes_up(const SentCommand& from, const SentCommand& to)
{
    if (to.kind == Kind::Read) {
        return true;
    }
    return to.memory == MEMORY_EEPROM ? to.word_address >= from.word_address
                                      : to.word_address > from.word_address;
}

/// A read is widened to whole blocks, so it may begin before the row.
bool covers(const SentCommand& read, unsigned int word_address)
{
    return read.word_address <= word_address && word_address < read.word_address + read.count;
}

} // namespace

bool RunOrder::take(const SentCommand& command)
{
    if (command.has_address()) {
        m_may_be_in_order = m_may_be_in_order && take_in_order(command);
        m_may_be_page_by_page = m_may_be_page_by_page && take_page_by_page(command);
        remember(command);
    }
    return m_may_be_in_order || m_may_be_page_by_page;
}

void RunOrder::give_up()
{
    m_is_given_up = true;
    m_may_be_in_order = false;
    m_may_be_page_by_page = m_may_be_page_by_page && is(m_last, Kind::Read, MEMORY_FLASH);
}

bool RunOrder::take_in_order(const SentCommand& command)
{
    if (!m_last || step_of(*m_last) < step_of(command)) {
        return true;
    }
    return step_of(*m_last) == step_of(command) && goes_up(*m_last, command);
}

/// For each page: reads to compare, an erase of this page, and each row written and read back. The
/// EEPROM rows come at the end.
bool RunOrder::take_page_by_page(const SentCommand& command) const
{
    const bool eeprom_has_begun = is(m_last, Kind::Write, MEMORY_EEPROM);
    switch (command.kind) {
    case Kind::Erase:
        return !eeprom_has_begun && command.count == 1 &&
               (!m_last_erase || goes_up(*m_last_erase, command));
    case Kind::Write:
        if (command.memory == MEMORY_EEPROM) {
            return !eeprom_has_begun || goes_up(*m_last, command);
        }
        return !eeprom_has_begun && m_last_erase.has_value() &&
               (!m_last_flash_write || goes_up(*m_last_flash_write, command));
    default:
        return !eeprom_has_begun && takes_page_read(command);
    }
}

/// Reads of flash go up, but for those that are widened to a block that begins further down.
bool RunOrder::takes_page_read(const SentCommand& command) const
{
    if (command.memory != MEMORY_FLASH) {
        return false;
    }
    if (m_last_flash_write && m_last->kind == Kind::Write) {
        return covers(command, m_last_flash_write->word_address);
    }
    if (!m_last || m_last->kind != Kind::Read) {
        return true;
    }
    return m_is_given_up ? command.word_address > m_last->word_address
                         : command.word_address + command.count >= m_last->word_address;
}

void RunOrder::remember(const SentCommand& command)
{
    m_last = command;
    m_is_given_up = false;
    if (command.kind == Kind::Erase) {
        m_last_erase = command;
    } else if (command.kind == Kind::Write && command.memory == MEMORY_FLASH) {
        m_last_flash_write = command;
    }
}

} // namespace inspect
