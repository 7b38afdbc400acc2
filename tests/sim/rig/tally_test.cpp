#include "sim/device/Names.h"
#include "sim/rig/Tally.h"
#include "tests/support/Bytes.h"

#include <gtest/gtest.h>

using namespace test;
using sim::Command;
using sim::Tally;

TEST(SimTally, CountsCommandsByKind)
{
    Tally tally;
    unsigned int times = 0;
    for (const auto& row : sim::command_kinds) {
        const Command::Kind kind = row.kind;
        ++times;
        for (unsigned int i = 0; i < times; ++i) {
            Command command;
            command.kind = kind;
            command.refused = kind == Command::Kind::Read && i > 0;
            tally.count(command);
        }
    }
    unsigned int expected = 0;
    for (const auto& row : sim::command_kinds) {
        const Command::Kind kind = row.kind;
        EXPECT_EQ(tally.number_of(kind), ++expected) << name_of(kind);
    }
    EXPECT_EQ(tally.refused(), 3U);
}

TEST(SimTally, StartsAtZero)
{
    const Tally tally;
    EXPECT_EQ(tally.number_of(Command::Kind::Probe), 0U);
    EXPECT_EQ(tally.refused(), 0U);
    EXPECT_EQ(tally.repeated(), 0U);
}

TEST(SimTally, CountsFramesThatComeAgainAtOnce)
{
    Tally tally;
    const Command version = {Command::Kind::Version, bytes("00 02")};
    const Command erase = {Command::Kind::Erase, bytes("03 01 00 08 00")};
    for (const Command& command : {version, erase, erase, erase, version, erase}) {
        tally.count(command);
    }
    EXPECT_EQ(tally.repeated(), 2U);
}

TEST(SimTally, DoesNotCountProbesAsRepeated)
{
    Tally tally;
    const Command probe = {Command::Kind::Probe, "U"};
    const Command version = {Command::Kind::Version, bytes("00 02")};
    for (const Command& command : {probe, probe, version, probe, version}) {
        tally.count(command);
    }
    EXPECT_EQ(tally.repeated(), 1U);
}
