#include "sim/device/MemoryGeometry.h"
#include "sim/device/Names.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"

#include <gtest/gtest.h>

using namespace test;
using sim::byte_address_of;
using sim::Command;
using sim::rows_of;

TEST(SimMemoryGeometry, GivesTheByteAddressOfACommand)
{
    const auto profile = sample_profile();
    EXPECT_EQ(byte_address_of(*profile, {Command::Kind::Read, bytes("01 20 34 12 00")}), 0x2468U);
    EXPECT_EQ(byte_address_of(*profile, {Command::Kind::Read, bytes("04 01 10 00 00")}), 0x400010U);
}

TEST(SimMemoryGeometry, CountsTheRowsOfAWrite)
{
    const auto profile = sample_profile();
    const auto rows = [&profile](const char* header, int size) {
        return rows_of(*profile, {Command::Kind::Write, bytes(header) + QByteArray(size, 'x')});
    };
    EXPECT_EQ(rows("02 01 00 08 00", 0x40), 1U);
    EXPECT_EQ(rows("05 10 00 00 00", 0x30), 3U);
    EXPECT_EQ(rows("05 10 00 00 00", 0x31), 4U);
}

TEST(SimMemoryGeometry, CountsNoRowsWhereTheTableGivesThemNoSize)
{
    const auto profile = sample_profile({{Profile::flash_row_size, "0"}});
    EXPECT_EQ(rows_of(*profile, {Command::Kind::Write, bytes("02 01 00 08 00 FF")}), 0U);
}

TEST(SimCommandKinds, HaveTheNamesOfTheSummary)
{
    std::vector<std::string> names;
    for (const auto& row : sim::command_kinds) {
        const Command::Kind kind = row.kind;
        names.emplace_back(sim::name_of(kind));
    }
    EXPECT_EQ(names, (std::vector<std::string>{"probe", "version", "reset", "read", "write",
                                               "erase", "unknown"}));
}
