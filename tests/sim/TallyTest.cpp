#include "sim/Tally.h"

#include <gtest/gtest.h>

using sim::Command;
using sim::DeviceMemory;
using sim::Tally;

TEST(SimTally, CountsCommandsByKind)
{
    Tally tally;
    int times = 0;
    using Kind = Command::Kind;
    for (const Kind kind : {Kind::Probe, Kind::Version, Kind::Reset, Kind::Read, Kind::Write,
                            Kind::Erase, Kind::Unknown}) {
        ++times;
        for (int i = 0; i < times; ++i) {
            Command command;
            command.kind = kind;
            command.refused = kind == Kind::Read && i > 0;
            tally.count(command);
        }
    }
    DeviceMemory::Statistics statistics;
    statistics.pages_erased = 8;
    statistics.flash_rows_programmed = 9;
    statistics.cells_programmed_without_erase = 10;
    statistics.eeprom_writes = 11;
    const QStringList expected = {
        QStringLiteral("commands: 1 probe, 2 version, 3 reset, 4 read, 5 write, 6 erase, "
                       "7 unknown; 3 refused"),
        QStringLiteral(
            "flash: 8 pages erased, 9 rows programmed, 10 cells programmed without erase"),
        QStringLiteral("EEPROM: 11 writes"),
    };
    EXPECT_EQ(tally.summary(statistics), expected);
}

TEST(SimTally, StartsAtZero)
{
    EXPECT_EQ(Tally().summary({}).first(),
              QStringLiteral("commands: 0 probe, 0 version, 0 reset, 0 read, 0 write, 0 erase, "
                             "0 unknown; 0 refused"));
}
