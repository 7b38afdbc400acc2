#include "sim/Tally.h"

namespace sim
{

void Tally::count(const Command& command)
{
    ++m_by_kind[command.kind];
    m_refused += command.refused ? 1 : 0;
}

QStringList Tally::summary(const DeviceMemory::Statistics& statistics) const
{
    using Kind = Command::Kind;
    return {
        QStringLiteral("commands: %1 probe, %2 version, %3 reset, %4 read, %5 write, %6 erase, "
                       "%7 unknown; %8 refused")
            .arg(number_of(Kind::Probe))
            .arg(number_of(Kind::Version))
            .arg(number_of(Kind::Reset))
            .arg(number_of(Kind::Read))
            .arg(number_of(Kind::Write))
            .arg(number_of(Kind::Erase))
            .arg(number_of(Kind::Unknown))
            .arg(m_refused),
        QStringLiteral("flash: %1 pages erased, %2 rows programmed, "
                       "%3 cells programmed without erase")
            .arg(statistics.pages_erased)
            .arg(statistics.flash_rows_programmed)
            .arg(statistics.cells_programmed_without_erase),
        QStringLiteral("EEPROM: %1 writes").arg(statistics.eeprom_writes),
    };
}

unsigned int Tally::number_of(Command::Kind kind) const
{
    const auto found = m_by_kind.find(kind);
    return found == m_by_kind.end() ? 0 : found->second;
}

} // namespace sim
