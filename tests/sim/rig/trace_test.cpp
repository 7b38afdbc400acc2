#include "sim/rig/Trace.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

#include <gtest/gtest.h>

using namespace test;
using sim::Command;
using sim::FaultKind;
using sim::Outcome;
using sim::trace_line;

namespace
{

struct TracedLine {
    const char* name;
    Command command;
    Outcome outcome;
    const char* expected;
};

class SimTraceLines : public testing::TestWithParam<TracedLine>
{
};

Command command(Command::Kind kind, const char* payload, unsigned int baud = 57600)
{
    return {kind, bytes(payload), baud, 6};
}

Command refused(Command command)
{
    command.refused = true;
    return command;
}

Command ignored(Command command)
{
    command.ignored = true;
    return command;
}

} // namespace

TEST_P(SimTraceLines, ShowEverythingAboutACommand)
{
    const auto profile = sample_profile();
    EXPECT_EQ(trace_line(*profile, GetParam().command, GetParam().outcome).toStdString(),
              GetParam().expected);
}

using Kind = Command::Kind;

INSTANTIATE_TEST_SUITE_P(
    Sim, SimTraceLines,
    testing::Values(
        TracedLine{"Probe",
                   command(Kind::Probe, "55", 9600),
                   {"QV", false, 4, {}},
                   "#7 9600 probe request=1 answer=version sent=4 faults=none payload=55"},
        TracedLine{"Version",
                   command(Kind::Version, "00 02", 460800),
                   {"a", false, 8, {}},
                   "#7 460800 version request=6 answer=version sent=8 faults=none payload=0002"},
        TracedLine{"Reset",
                   command(Kind::Reset, "00 00"),
                   {},
                   "#7 57600 reset request=6 answer=none sent=0 faults=none payload=0000"},
        TracedLine{"FlashRead",
                   command(Kind::Read, "01 20 34 12 00"),
                   {"a", false, 74, {}},
                   "#7 57600 read flash count=32 address=0x00002468 data=64 request=9 answer=data "
                   "sent=74 faults=none payload=0120341200"},
        TracedLine{
            "EepromRead",
            command(Kind::Read, "04 10 10 00 00"),
            {"a", false, 26, {}},
            "#7 57600 read eeprom count=16 address=0x00400010 data=16 request=10 answer=data "
            "sent=26 faults=none payload=0410100000"},
        TracedLine{"Write",
                   command(Kind::Write, "02 01 00 08 00 11 22"),
                   {"a", false, 5, {}},
                   "#7 57600 write flash count=1 address=0x00001000 data=2 request=11 answer=ack "
                   "sent=5 faults=none payload=02010008001122"},
        TracedLine{"Erase",
                   command(Kind::Erase, "03 1E 00 04 00"),
                   {"a", false, 10, {FaultKind::DuplicateResponse, FaultKind::Noise}},
                   "#7 57600 erase flash count=30 address=0x00000800 request=10 answer=ack sent=10 "
                   "faults=duplicate-response,noise payload=031e000400"},
        TracedLine{"Unknown",
                   command(Kind::Unknown, "06"),
                   {},
                   "#7 57600 unknown request=5 answer=none sent=0 faults=none payload=06"},
        TracedLine{
            "Refused",
            refused(command(Kind::Erase, "03 01 00 00 00")),
            {},
            "#7 57600 erase flash count=1 address=0x00000000 request=9 answer=refused sent=0 "
            "faults=none payload=0301000000"},
        TracedLine{
            "Unheard",
            ignored(command(Kind::Version, "00 02")),
            {{}, false, 0, {FaultKind::LoseRequest}},
            "#7 57600 version request=6 answer=unheard sent=0 faults=lose-request payload=0002"},
        TracedLine{"Recorded",
                   command(Kind::Version, "00 02"),
                   {"a", true, 3, {}},
                   "#7 57600 version request=6 answer=recorded sent=3 faults=none payload=0002"}),
    row_name);
