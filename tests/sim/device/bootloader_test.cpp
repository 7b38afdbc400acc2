#include "sim/device/Bootloader.h"
#include "sim/faults/ByteDamage.h"
#include "tests/sim/SampleDevice.h"
#include "tests/support/Bytes.h"
#include "tests/support/RowName.h"

#include <gmock/gmock.h>

using namespace test;
using sim::Bootloader;
using sim::Command;
using sim::DeviceMemory;
using sim::Entry;
using sim::Exchange;
using sim::make_frame;

namespace
{

/// A bootloader with the memory and the table row that it works on.
struct Device {
    explicit Device(Entry entry, const Changes& changes = {})
        : profile(sample_profile(changes)),
          memory(*profile),
          bootloader(*profile, memory, entry)
    {
    }

    std::vector<Exchange> hear(const QByteArray& raw, unsigned int baud = full_baud)
    {
        return bootloader.hear(raw, baud);
    }

    /// The one exchange that a framed payload leads to.
    Exchange ask(const QByteArray& payload)
    {
        const std::vector<Exchange> exchanges = hear(make_frame(payload));
        EXPECT_EQ(exchanges.size(), 1U);
        return exchanges.empty() ? Exchange{} : exchanges.front();
    }

    std::unique_ptr<const Profile> profile;
    DeviceMemory memory;
    Bootloader bootloader;
};

const QByteArray reset_frame = make_frame(bytes("00 00"));
const QByteArray read_frame = make_frame(bytes("04 01 00 00 00"));
const QByteArray read_answer = make_frame(bytes("04 01 00 00 00 FF"));
const QByteArray silence;

struct Hearing {
    const char* name;
    Entry entry;
    bool probed_before;
    unsigned int baud;
    QByteArray sent;
    bool made_out; ///< the device recognised a command
    QByteArray answer;
    bool runs_afterwards;
};

class SimBootloaderStates : public testing::TestWithParam<Hearing>
{
};

} // namespace

TEST_P(SimBootloaderStates, DecideWhatIsRecognizedAndAnswered)
{
    Device device(GetParam().entry);
    if (GetParam().probed_before) {
        device.hear(probe_byte, 9600);
    }
    const std::vector<Exchange> exchanges = device.hear(GetParam().sent, GetParam().baud);
    ASSERT_EQ(exchanges.size(), GetParam().made_out ? 1U : 0U);
    if (GetParam().made_out) {
        EXPECT_EQ(exchanges.front().answer, GetParam().answer);
        EXPECT_EQ(exchanges.front().command.baud, GetParam().baud);
    }
    EXPECT_EQ(device.bootloader.is_running(), GetParam().runs_afterwards);
}

namespace
{

constexpr Entry starting = Entry::Probe;
constexpr Entry running = Entry::Version;
constexpr Entry silent = Entry::Silent;

} // namespace

INSTANTIATE_TEST_SUITE_P(
    Starting, SimBootloaderStates,
    testing::Values(
        Hearing{"Probe9600", starting, false, 9600, probe_byte, true, probe_answer, true},
        Hearing{"Probe19200", starting, false, 19200, probe_byte, false, silence, false},
        Hearing{"ProbeFull", starting, false, full_baud, probe_byte, false, silence, false},
        Hearing{"Probe460800", starting, false, 460800, probe_byte, false, silence, false},
        Hearing{"OtherByte9600", starting, false, 9600, "x", false, silence, false},
        Hearing{"Version19200", starting, false, 19200, version_frame, false, silence, false},
        Hearing{"VersionFull", starting, false, full_baud, version_frame, true, version_answer,
                true},
        Hearing{"Version460800", starting, false, 460800, version_frame, false, silence, false},
        Hearing{"ReadFull", starting, false, full_baud, read_frame, true, read_answer, true},
        Hearing{"Read460800", starting, false, 460800, read_frame, false, silence, false},
        Hearing{"ResetFull", starting, false, full_baud, reset_frame, true, silence, false}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Probed, SimBootloaderStates,
    testing::Values(
        Hearing{"Probe9600", starting, true, 9600, probe_byte, false, silence, true},
        Hearing{"Version9600", starting, true, 9600, version_frame, false, silence, true},
        Hearing{"VersionFull", starting, true, full_baud, version_frame, true, version_answer,
                true},
        Hearing{"Version460800", starting, true, 460800, version_frame, true, version_answer, true},
        Hearing{"ReadFull", starting, true, full_baud, read_frame, true, read_answer, true},
        Hearing{"Read460800", starting, true, 460800, read_frame, false, silence, true},
        Hearing{"ResetFull", starting, true, full_baud, reset_frame, true, silence, false},
        Hearing{"Reset460800", starting, true, 460800, reset_frame, false, silence, true}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Running, SimBootloaderStates,
    testing::Values(
        Hearing{"Probe9600", running, false, 9600, probe_byte, false, silence, true},
        Hearing{"Version19200", running, false, 19200, version_frame, false, silence, true},
        Hearing{"VersionFull", running, false, full_baud, version_frame, true, version_answer,
                true},
        Hearing{"Version460800", running, false, 460800, version_frame, true, version_answer, true},
        Hearing{"Read460800", running, false, 460800, read_frame, false, silence, true},
        Hearing{"ResetFull", running, false, full_baud, reset_frame, true, silence, true}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Silent, SimBootloaderStates,
    testing::Values(
        Hearing{"Probe9600", silent, false, 9600, probe_byte, true, silence, false},
        Hearing{"Probe19200", silent, false, 19200, probe_byte, false, silence, false},
        Hearing{"VersionFull", silent, false, full_baud, version_frame, true, silence, false},
        Hearing{"Version460800", silent, false, 460800, version_frame, true, silence, false},
        Hearing{"ReadFull", silent, false, full_baud, read_frame, true, silence, false},
        Hearing{"ResetFull", silent, false, full_baud, reset_frame, true, silence, false}),
    row_name);

TEST(SimBootloader, AnswersOnlyTheFirstOfSeveralProbes)
{
    Device device(Entry::Probe);
    const std::vector<Exchange> exchanges = device.hear(bytes("55 55 55"), 9600);
    ASSERT_EQ(exchanges.size(), 1U);
    EXPECT_EQ(exchanges.front().command.kind, Command::Kind::Probe);
    EXPECT_EQ(exchanges.front().command.payload, probe_byte);
}

TEST(SimBootloader, HearsEveryProbeWhileSilent)
{
    Device device(Entry::Silent);
    EXPECT_EQ(device.hear(bytes("55 00 55 55"), 9600).size(), 3U);
}

TEST(SimBootloader, AnswersTheProbeAgainAfterAReset)
{
    Device device(Entry::Probe);
    device.hear(probe_byte, 9600);
    device.hear(reset_frame);
    const std::vector<Exchange> exchanges = device.hear(probe_byte, 9600);
    ASSERT_EQ(exchanges.size(), 1U);
    EXPECT_EQ(exchanges.front().answer, probe_answer);
}

TEST(SimBootloader, KeepsItsMemoryThroughAReset)
{
    Device device(Entry::Version);
    device.memory.preset(0x400000, bytes("42"));
    device.hear(reset_frame);
    EXPECT_EQ(device.ask(bytes("04 01 00 00 00")).answer, make_frame(bytes("04 01 00 00 00 42")));
}

TEST(SimBootloader, LosesAFrameThatBytesAtAWrongRateComeInto)
{
    Device device(Entry::Version);
    EXPECT_TRUE(device.hear(version_frame.left(3)).empty());
    EXPECT_TRUE(device.hear("x", 19200).empty());
    EXPECT_TRUE(device.hear(version_frame.mid(3)).empty());
    EXPECT_EQ(device.hear(version_frame).size(), 1U);
}

TEST(SimBootloader, LosesAFrameWhoseRateChangesOnTheWay)
{
    Device device(Entry::Version);
    EXPECT_TRUE(device.hear(version_frame.left(3), 460800).empty());
    EXPECT_TRUE(device.hear(version_frame.mid(3), full_baud).empty());
    EXPECT_EQ(device.hear(version_frame, full_baud).size(), 1U);
}

TEST(SimBootloader, TakesAFrameInPiecesAtOneRate)
{
    Device device(Entry::Version);
    EXPECT_TRUE(device.hear(version_frame.left(3)).empty());
    EXPECT_EQ(device.hear(version_frame.mid(3)).size(), 1U);
}

TEST(SimBootloader, AnswersEachOfSeveralFramesThatComeTogether)
{
    Device device(Entry::Version);
    const std::vector<Exchange> exchanges = device.hear(version_frame + read_frame);
    ASSERT_EQ(exchanges.size(), 2U);
    EXPECT_EQ(exchanges[0].answer, version_answer);
    EXPECT_EQ(exchanges[1].answer, read_answer);
}

TEST(SimBootloader, FollowsAFrameAtTheProbesRateAfterAnsweringItAsAProbe)
{
    Device device(Entry::Probe, {{Profile::max_baud, "9600"}});
    const std::vector<Exchange> exchanges = device.hear(version_frame, 9600);
    ASSERT_EQ(exchanges.size(), 2U);
    EXPECT_EQ(exchanges[0].answer, probe_answer);
    EXPECT_EQ(exchanges[1].answer, version_answer);
    EXPECT_EQ(device.hear(version_frame, 9600).size(), 1U);
}

TEST(SimBootloader, TakesEveryCommandAt460800WhereThatIsItsFullRate)
{
    Device device(Entry::Version, {{Profile::max_baud, "460800"}});
    EXPECT_EQ(device.hear(read_frame, 460800).size(), 1U);
}

TEST(SimBootloader, SendsTheVersionsHighByteFirst)
{
    Device device(Entry::Probe, {{Profile::bootloader_version, "0x80FF"}});
    EXPECT_EQ(device.hear(probe_byte, 9600).front().answer, bytes("51 56 80 FF"));
    EXPECT_EQ(device.ask(bytes("00 02")).answer, make_frame(bytes("00 02 80 FF")));
}

TEST(SimBootloader, ReadsFlashByWordAddress)
{
    Device device(Entry::Version);
    device.memory.preset(0x1000, bytes("11 22 33 44 55 66"));
    const Exchange exchange = device.ask(bytes("01 02 01 08 00"));
    EXPECT_EQ(exchange.command.kind, Command::Kind::Read);
    EXPECT_FALSE(exchange.command.refused);
    EXPECT_EQ(exchange.answer, make_frame(bytes("01 02 01 08 00 33 44 55 66")));
}

TEST(SimBootloader, ReadsTheBootloadersPartLikeAnyOther)
{
    Device device(Entry::Version);
    EXPECT_EQ(device.ask(bytes("01 01 00 00 00")).answer,
              make_frame(bytes("01 01 00 00 00 FF FF")));
}

TEST(SimBootloader, ReadsEepromFromTheStartOfItsArea)
{
    Device device(Entry::Version);
    device.memory.preset(0x400010, bytes("77 88"));
    EXPECT_EQ(device.ask(bytes("04 02 10 00 00")).answer,
              make_frame(bytes("04 02 10 00 00 77 88")));
}

TEST(SimBootloader, UsesAllThreeBytesOfTheWordAddress)
{
    Device device(Entry::Version, {{Profile::flash_end_address_bytes, "0x400000"}});
    device.memory.preset(0x245608, bytes("99 AA"));
    EXPECT_EQ(device.ask(bytes("01 01 04 2B 12")).answer,
              make_frame(bytes("01 01 04 2B 12 99 AA")));
}

TEST(SimBootloader, ReadsFourByteWordsOfTwoAddressesEach)
{
    Device device(Entry::Version,
                  {{Profile::flash_word_size, "4"}, {Profile::flash_words_per_address, "2"}});
    device.memory.preset(0x1000, bytes("11 22 33 44 55 66 77 88"));
    EXPECT_EQ(device.ask(bytes("01 01 01 08 00")).answer,
              make_frame(bytes("01 01 01 08 00 33 44 55 66")));
}

TEST(SimBootloader, ProgramsAFlashRowAndAcknowledgesWithTheCommandByte)
{
    Device device(Entry::Version);
    const QByteArray row(0x40, '\x5A');
    const Exchange exchange = device.ask(bytes("02 01 20 08 00") + row);
    EXPECT_EQ(exchange.command.kind, Command::Kind::Write);
    EXPECT_EQ(exchange.answer, make_frame(bytes("02")));
    EXPECT_EQ(device.memory.read(0x1040, 0x40), row);
    EXPECT_EQ(device.memory.statistics().flash_rows_programmed, 1U);
}

TEST(SimBootloader, WritesEepromRowsWithTheCountOfOne)
{
    Device device(Entry::Version);
    const QByteArray two_rows = QByteArray(0x10, '\x01') + QByteArray(0x10, '\x02');
    EXPECT_EQ(device.ask(bytes("05 10 20 00 00") + two_rows).answer, make_frame(bytes("05")));
    EXPECT_EQ(device.memory.read(0x400020, 0x20), two_rows);
}

TEST(SimBootloader, ErasesPagesAndAcknowledgesWithTheCommandByte)
{
    Device device(Entry::Version);
    device.memory.preset(0x1000, QByteArray(0x600, '\x11'));
    const Exchange exchange = device.ask(bytes("03 02 00 08 00"));
    EXPECT_EQ(exchange.command.kind, Command::Kind::Erase);
    EXPECT_EQ(exchange.answer, make_frame(bytes("03")));
    EXPECT_EQ(device.memory.read(0x1000, 0x600),
              QByteArray(0x400, '\xFF') + QByteArray(0x200, '\x11'));
}

TEST(SimBootloader, AcknowledgesAnEraseThatRunsPastTheEndOfFlash)
{
    Device device(Entry::Version);
    EXPECT_EQ(device.ask(bytes("03 04 00 7F 00")).answer, make_frame(bytes("03")));
    EXPECT_EQ(device.memory.statistics().pages_erased, 1U);
}

namespace
{

struct Refusal {
    const char* name;
    QByteArray payload;
    Command::Kind kind;
    Changes changes = {};
};

class SimBootloaderRefusals : public testing::TestWithParam<Refusal>
{
};

QByteArray with_data(const char* header, int count)
{
    return bytes(header) + QByteArray(count, '\0');
}

} // namespace

TEST_P(SimBootloaderRefusals, LeadToSilenceAndLeaveTheMemoryAlone)
{
    Device device(Entry::Version, GetParam().changes);
    device.memory.preset(0x1000, bytes("11"));
    const Exchange exchange = device.ask(GetParam().payload);
    EXPECT_EQ(exchange.command.kind, GetParam().kind);
    EXPECT_EQ(exchange.command.payload, GetParam().payload);
    EXPECT_EQ(exchange.command.refused, GetParam().kind != Command::Kind::Unknown);
    EXPECT_EQ(exchange.answer, silence);
    const auto ranges = device.memory.programmed_ranges();
    ASSERT_EQ(ranges.size(), 1U);
    EXPECT_EQ(ranges.front().bytes, bytes("11"));
}

INSTANTIATE_TEST_SUITE_P(
    Unknown, SimBootloaderRefusals,
    testing::Values(Refusal{"FirstByte", bytes("06 01 00 08 00"), Command::Kind::Unknown},
                    Refusal{"SecondByte", bytes("00 01"), Command::Kind::Unknown},
                    Refusal{"VersionWithMore", bytes("00 02 00"), Command::Kind::Unknown},
                    Refusal{"SingleZero", bytes("00"), Command::Kind::Unknown},
                    Refusal{"ReadTooShort", bytes("01 01 00 08"), Command::Kind::Unknown},
                    Refusal{"ReadTooLong", bytes("01 01 00 08 00 00"), Command::Kind::Unknown},
                    Refusal{"EepromReadTooShort", bytes("04"), Command::Kind::Unknown},
                    Refusal{"EraseTooLong", bytes("03 01 00 08 00 00"), Command::Kind::Unknown},
                    Refusal{"WriteWithoutData", bytes("02 01 00 08 00"), Command::Kind::Unknown},
                    Refusal{"EepromWriteWithoutData", bytes("05 10 00 00 00"),
                            Command::Kind::Unknown}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Read, SimBootloaderRefusals,
    testing::Values(Refusal{"NoWords", bytes("01 00 00 08 00"), Command::Kind::Read},
                    Refusal{"AcrossTheEndOfFlash", bytes("01 02 FF 7F 00"), Command::Kind::Read},
                    Refusal{"BeyondFlash", bytes("01 01 00 80 00"), Command::Kind::Read},
                    Refusal{"AcrossTheEndOfEeprom", bytes("04 02 FF 00 00"), Command::Kind::Read},
                    Refusal{"BeyondEeprom", bytes("04 01 00 01 00"), Command::Kind::Read},
                    Refusal{"FarthestAddress", bytes("04 FF FF FF FF"), Command::Kind::Read},
                    Refusal{"NoEeprom",
                            bytes("04 01 00 00 00"),
                            Command::Kind::Read,
                            {{Profile::eeprom_word_size, "0"}}},
                    Refusal{"NoFlash",
                            bytes("01 01 00 00 00"),
                            Command::Kind::Read,
                            {{Profile::flash_word_size, "0"}}},
                    Refusal{"NoDivisor",
                            bytes("01 01 00 00 00"),
                            Command::Kind::Read,
                            {{Profile::flash_words_per_address, "3"}}},
                    Refusal{"HugeWords",
                            bytes("01 FF 00 00 00"),
                            Command::Kind::Read,
                            {{Profile::flash_word_size, "0xFFFFFFFF"},
                             {Profile::flash_end_address_bytes, "0xFFFFFFFF"}}}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Write, SimBootloaderRefusals,
    testing::Values(
        Refusal{"CountOtherThanOne", with_data("02 20 20 08 00", 0x40), Command::Kind::Write},
        Refusal{"ShortRow", with_data("02 01 20 08 00", 0x3F), Command::Kind::Write},
        Refusal{"TwoRows", with_data("02 01 20 08 00", 0x80), Command::Kind::Write},
        Refusal{"BetweenRows", with_data("02 01 21 08 00", 0x40), Command::Kind::Write},
        Refusal{"Bootloader", with_data("02 01 E0 03 00", 0x40), Command::Kind::Write},
        Refusal{"BeyondFlash", with_data("02 01 00 80 00", 0x40), Command::Kind::Write},
        Refusal{"NoRowSize",
                with_data("02 01 20 08 00", 0x40),
                Command::Kind::Write,
                {{Profile::flash_row_size, "0"}}},
        Refusal{"EepromCount", with_data("05 01 00 00 00", 0x10), Command::Kind::Write},
        Refusal{"EepromPartOfARow", with_data("05 10 00 00 00", 0x18), Command::Kind::Write},
        Refusal{"AcrossTheEndOfEeprom", with_data("05 10 F0 00 00", 0x20), Command::Kind::Write},
        Refusal{"NoEeprom",
                with_data("05 10 00 00 00", 0x10),
                Command::Kind::Write,
                {{Profile::eeprom_word_size, "0"}}},
        Refusal{"EepromBeyondAllAddresses",
                with_data("05 10 FF FF FF", 0x10),
                Command::Kind::Write,
                {{Profile::eeprom_start_address, "0xFFFFFFF0"}}},
        Refusal{"NoEepromRowSize",
                with_data("05 10 00 00 00", 0x10),
                Command::Kind::Write,
                {{Profile::eeprom_row_size, "0"}}}),
    row_name);

INSTANTIATE_TEST_SUITE_P(
    Erase, SimBootloaderRefusals,
    testing::Values(Refusal{"NoPages", bytes("03 00 00 08 00"), Command::Kind::Erase},
                    Refusal{"Bootloader", bytes("03 01 00 00 00"), Command::Kind::Erase},
                    Refusal{"FromTheBootloaderOn", bytes("03 FF FF 03 00"), Command::Kind::Erase},
                    Refusal{"BeyondFlash", bytes("03 01 00 80 00"), Command::Kind::Erase},
                    Refusal{"NoPageSize",
                            bytes("03 01 00 08 00"),
                            Command::Kind::Erase,
                            {{Profile::flash_page_size, "0"}}},
                    Refusal{"NoFlash",
                            bytes("03 01 00 08 00"),
                            Command::Kind::Erase,
                            {{Profile::flash_word_size, "0"}}}),
    row_name);

TEST(SimBootloader, DoesNothingAboutACommandThatDoesNotGetThrough)
{
    Device device(Entry::Probe);
    device.bootloader.set_gate([](const Command&) { return std::nullopt; });
    const std::vector<Exchange> probed = device.hear(probe_byte, 9600);
    ASSERT_EQ(probed.size(), 1U);
    EXPECT_TRUE(probed.front().command.ignored);
    EXPECT_EQ(probed.front().answer, silence);
    const Exchange erase = device.ask(bytes("03 01 00 08 00"));
    EXPECT_TRUE(erase.command.ignored);
    EXPECT_FALSE(erase.command.refused);
    EXPECT_EQ(erase.answer, silence);
    EXPECT_EQ(device.memory.statistics().pages_erased, 0U);
    EXPECT_FALSE(device.bootloader.is_running());
}

TEST(SimBootloader, AsksItsGateAboutEveryCommandInOrder)
{
    Device device(Entry::Silent);
    std::vector<Command::Kind> asked;
    device.bootloader.set_gate([&asked](const Command& command) {
        asked.push_back(command.kind);
        return command.payload;
    });
    device.hear(version_frame + reset_frame + read_frame);
    device.hear(probe_byte, 9600);
    using Kind = Command::Kind;
    EXPECT_THAT(asked, testing::ElementsAre(Kind::Version, Kind::Reset, Kind::Read, Kind::Probe));
}

TEST(SimBootloader, AcknowledgesWritesOfWhichNothingIsStored)
{
    Device device(Entry::Version);
    device.bootloader.set_store([](const Command&, const QByteArray&) { return QByteArray(); });
    const QByteArray flash_row = bytes("02 01 00 08 00") + QByteArray(0x40, '\x11');
    EXPECT_EQ(device.ask(flash_row).answer, make_frame(bytes("02")));
    const QByteArray eeprom_row = bytes("05 10 00 00 00") + QByteArray(0x10, '\x22');
    EXPECT_EQ(device.ask(eeprom_row).answer, make_frame(bytes("05")));
    EXPECT_TRUE(device.memory.programmed_ranges().empty());
    EXPECT_EQ(device.memory.statistics().flash_rows_programmed, 0U);
    EXPECT_EQ(device.memory.statistics().eeprom_writes, 0U);
    // A write that it refuses is not acknowledged, whether it is stored or not.
    EXPECT_TRUE(device.ask(bytes("02 01 01 08 00") + QByteArray(0x40, '\x11')).command.refused);
}

TEST(SimBootloader, StoresWhatItIsLeftOfAWrite)
{
    Device device(Entry::Version);
    device.bootloader.set_store(
        [](const Command&, const QByteArray& data) { return data.left(data.size() / 2); });
    const QByteArray flash_row = bytes("02 01 00 08 00") + QByteArray(0x40, '\x11');
    EXPECT_EQ(device.ask(flash_row).answer, make_frame(bytes("02")));
    EXPECT_EQ(device.memory.read(0x1000, 0x40),
              QByteArray(0x20, '\x11') + QByteArray(0x20, '\xFF'));
    const QByteArray eeprom_row = bytes("05 10 00 00 00") + QByteArray(0x10, '\x22');
    EXPECT_EQ(device.ask(eeprom_row).answer, make_frame(bytes("05")));
    EXPECT_EQ(device.memory.read(0x400000, 0x10), QByteArray(8, '\x22') + QByteArray(8, '\xFF'));
}

TEST(SimBootloader, TakesACommandThatWasAlteredOnTheWayForWhatItSays)
{
    Device device(Entry::Version);
    device.bootloader.set_gate(
        [](const Command& command) { return sim::with_same_sum(command.payload); });
    const Exchange written = device.ask(bytes("05 10 00 00 00") + QByteArray(0x10, '\x22'));
    EXPECT_EQ(written.answer, make_frame(bytes("05")));
    EXPECT_EQ(device.memory.read(0x400000, 0x10), QByteArray(0x0E, '\x22') + bytes("A2 A2"));
    const Exchange asked = device.ask(bytes("00 02"));
    EXPECT_EQ(asked.command.payload, bytes("80 82"));
    EXPECT_EQ(asked.command.kind, Command::Kind::Unknown);
    EXPECT_EQ(asked.answer, silence);
}

TEST(SimBootloader, CountsTheFramesThatCameToNothing)
{
    Device device(Entry::Version);
    device.hear(bytes("55 55 00 02 FF 04"));
    EXPECT_EQ(device.bootloader.dropped_frames(), 1U);
}
