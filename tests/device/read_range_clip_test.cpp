#include "tests/device/OperationCommands.h"
#include "tests/device/ReadBench.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

#include <set>

using namespace test;

namespace
{

/// A memory of a device that is read byte by byte, so that the commands show which bytes of it are
/// asked for.
struct Memory {
    unsigned int start;
    unsigned int end;
    char read_command;
    unsigned int word_address_of_start;
};

struct Device {
    const char* name;
    const char* profile;
    Memory flash;
    Memory eeprom;
};

constexpr Memory flash{0x10, 0x14, 0x01, 0x10};

const Device devices[] = {
    {"EepromAboveFlash", "tiny", flash, {0x20, 0x24, 0x04, 0}},
    {"EepromRightAfterFlash", "tiny-eeprom-after-flash", flash, {0x14, 0x18, 0x04, 0}},
    {"EepromBelowFlash", "tiny-eeprom-below-flash", flash, {0x04, 0x08, 0x04, 0}},
    {"NoEeprom", "tiny-no-eeprom", flash, {0, 0, 0x04, 0}},
    {"NoFlash", "tiny-no-flash", {0x14, 0x14, 0x01, 0x14}, {0x20, 0x24, 0x04, 0}},
};

struct Range {
    unsigned int start;
    unsigned int end;
};

/// Byte by byte, the rule: of a memory in which the range ends, everything before that end; from
/// where the range starts, unless it starts beyond the memory.
bool asks_for(Range range, Memory memory, unsigned int address)
{
    const bool starts_after_it = range.start >= memory.end;
    const bool ends_after_it = range.end >= memory.end;
    if (starts_after_it) {
        return !ends_after_it && address < range.end;
    }
    return range.start <= address && address < range.end;
}

/// The commands for the bytes of a memory that the range asks for.
Commands commands_for(Range range, Memory memory)
{
    Commands commands;
    for (unsigned int address = memory.start; address < memory.end; ++address) {
        if (asks_for(range, memory, address)) {
            commands.push_back(hex(memory_command(
                memory.read_command, 1, memory.word_address_of_start + address - memory.start)));
        }
    }
    return commands;
}

bool is_refused(const Device& device, Range range)
{
    const bool begins_before_everything =
        range.start < device.flash.start && range.start < device.eeprom.start;
    const bool ends_after_everything =
        range.end > device.flash.end && range.end > device.eeprom.end;
    const bool turns_back_in_eeprom = device.eeprom.start < range.start &&
                                      range.start < device.eeprom.end && range.end < range.start;
    return begins_before_everything || ends_after_everything || turns_back_in_eeprom;
}

/// Each limit of each memory and its neighbours, and the limits of the address space.
std::set<unsigned int> interesting_addresses(const Device& device)
{
    std::set<unsigned int> addresses{0, 0xFFFFFFFF};
    for (const unsigned int limit :
         {device.flash.start, device.flash.end, device.eeprom.start, device.eeprom.end}) {
        addresses.insert({limit - 1, limit, limit + 1});
    }
    return addresses;
}

std::string hexadecimal(unsigned int address)
{
    return QStringLiteral("%1").arg(address, 8, 16, QLatin1Char('0')).toUpper().toStdString();
}

SignalRecorder::Lines refusal_of(Range range)
{
    const std::string start = "0x" + hexadecimal(range.start);
    const std::string pair = start + ' ' + start;
    return {"sig_error Cannot read to address range " + pair + " outside of flash addresses " +
            pair + " or eeprom addresses " + pair};
}

class ReadRangeClips : public testing::TestWithParam<Device>
{
protected:
    void expect_read_of(Range range)
    {
        bench.line.simulated.clear_commands();
        bench.line.recorder.clear();
        bench.target.file.remove();
        const Device& device = GetParam();
        const bool refused = is_refused(device, range);
        const Commands commands =
            refused ? Commands()
                    : joined(commands_for(range, device.flash), commands_for(range, device.eeprom));
        EXPECT_EQ(bench.read_range(range.start, range.end), !commands.empty());
        EXPECT_EQ(bench.line.sent(), commands);
        EXPECT_EQ(bench.line.recorder.operation(),
                  refused ? refusal_of(range) : SignalRecorder::Lines());
        EXPECT_EQ(bench.target.exists(), !commands.empty());
    }

    ReadBench bench{GetParam().profile};
};

} // namespace

TEST_P(ReadRangeClips, EveryCombinationOfStartAndEnd)
{
    const auto addresses = interesting_addresses(GetParam());
    for (const unsigned int start : addresses) {
        for (const unsigned int end : addresses) {
            SCOPED_TRACE(hexadecimal(start) + " to " + hexadecimal(end));
            expect_read_of({start, end});
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, ReadRangeClips, testing::ValuesIn(devices), row_name);
