#include "tests/device/OperationBench.h"
#include "tests/device/OperationCommands.h"
#include "tests/device/RandomDevices.h"
#include "tests/device/TargetFile.h"
#include "tests/support/Bytes.h"
#include "tests/support/DebugMessages.h"

#include <gtest/gtest.h>

#include <set>

using namespace test;

// Operations on devices of random shapes, beside models that go byte by byte, or page by page
// where runs of pages are what counts.

namespace
{

using Pages = std::vector<unsigned int>;

struct Areas {
    bool encrypted;
    bool unencrypted;
};

Areas random_areas(Random& random)
{
    return {random.chance(75), random.chance(75)};
}

/// Calls `body` with each device and random numbers of its own.
template <typename Body>
void for_every_device(unsigned int game, Body body)
{
    const DebugMessages ignored_messages;
    for (const RandomDevice& device : RandomTable::devices()) {
        SCOPED_TRACE(device.name);
        Random random(game * RandomTable::count + device.seed);
        body(device, random);
    }
}

/// An erase command for a run of pages.
std::string erase_run(const RandomDevice& device, unsigned int address, unsigned int count)
{
    return hex(memory_command(0x03, count, address / device.flash.divisor()));
}

/// What erasing these pages of `step` bytes comes to: commands, and whether all goes well.
struct Erase {
    Commands commands;
    bool good = true;
};

/// Runs end at pages that are left out and after 255 pages. The first run is addressed at the
/// lowest page of flash, unless a page is left out before it.
Erase erase_of(const RandomDevice& device, const Pages& pages, Areas areas)
{
    std::vector<Pages> runs(1);
    for (const unsigned int page : pages) {
        if (device.leaves_out(page, areas.encrypted, areas.unencrypted)) {
            runs.emplace_back();
            continue;
        }
        if (runs.back().size() == 255) {
            runs.emplace_back();
        }
        runs.back().push_back(page);
    }
    Erase erase;
    for (const Pages& run : runs) {
        if (run.empty() || !erase.good) {
            continue;
        }
        const unsigned int address = &run == &runs.front() ? device.flash.start : run.front();
        if (address + device.page > device.flash.end) {
            erase.good = false;
        } else {
            erase.commands.push_back(
                erase_run(device, address, static_cast<unsigned int>(run.size())));
        }
    }
    return erase;
}

/// The pages that hold any of these bytes, the last one included.
Pages pages_of(unsigned int first, unsigned int last, unsigned int page)
{
    std::set<unsigned int> pages;
    for (unsigned int address = first; address <= last; ++address) {
        pages.insert(address / page * page);
    }
    return {pages.begin(), pages.end()};
}

/// The pages with bytes of the pieces, as far as these begin where they take part.
std::set<unsigned int> touched_pages(const RandomDevice& device, const Extents& flash, Areas areas)
{
    std::set<unsigned int> pages;
    for (const Extent& extent : flash) {
        if (!device.leaves_out(extent.address, areas.encrypted, areas.unencrypted)) {
            for (int i = 0; i < extent.size; ++i) {
                pages.insert((extent.address + static_cast<unsigned int>(i)) / device.page *
                             device.page);
            }
        }
    }
    return pages;
}

bool holds_any(const Cells& cells, unsigned int start, unsigned int count)
{
    const auto next = cells.lower_bound(start);
    return next != cells.end() && next->first < start + count;
}

/// What a row that holds image bytes has at this address.
char programmed(const Cells& image, const RandomMemory& memory, unsigned int address)
{
    const auto byte = image.find(address);
    return byte != image.end() ? byte->second : memory.filler_at(address);
}

/// The cells after the image has been written and verified.
Cells updated(Cells cells, const RandomDevice& device, const Extents& flash, const Extents& eeprom,
              Areas areas)
{
    const std::set<unsigned int> pages = touched_pages(device, flash, areas);
    Cells image = cells_of(flash);
    image.merge(cells_of(eeprom));
    for (auto& [address, value] : cells) {
        const bool in_flash = device.flash.holds(address);
        const RandomMemory& memory = in_flash ? device.flash : device.eeprom;
        const bool row_is_sent = holds_any(image, address / memory.row * memory.row, memory.row);
        if (in_flash && pages.count(address / device.page * device.page) != 0) {
            value = row_is_sent ? programmed(image, memory, address) : '\xFF';
        } else if (!in_flash && row_is_sent) {
            value = programmed(image, memory, address);
        }
    }
    return cells;
}

Commands erase_commands(const Commands& sent)
{
    Commands erases;
    for (const std::string& command : sent) {
        if (command.compare(0, 2, "03") == 0) {
            erases.push_back(command);
        }
    }
    return erases;
}

Extents joined(Extents flash, const Extents& eeprom)
{
    flash.insert(flash.end(), eeprom.begin(), eeprom.end());
    return flash;
}

void preset_randomly(sim::DeviceMemory& memory, const RandomDevice& device, Random& random)
{
    for (const RandomMemory* part : {&device.flash, &device.eeprom}) {
        for (unsigned int address = part->start; address < part->end; ++address) {
            memory.preset(address, QByteArray(1, static_cast<char>(random.below(256))));
        }
    }
}

/// A limit of a range: anywhere in and around the memories, in flash at a block for the most part.
unsigned int random_limit(const RandomDevice& device, Random& random)
{
    const unsigned int top = qMax(device.flash.end, device.eeprom.end);
    const unsigned int address = random.one_of(
        {random.below(top + 10), device.flash.start, device.flash.end, device.eeprom.start,
         device.eeprom.end, random.from_to(device.flash.start, device.flash.end)});
    return device.flash.holds(address) && random.chance(90)
               ? address / device.flash.block * device.flash.block
               : address;
}

bool is_refused(const RandomDevice& device, unsigned int start, unsigned int end)
{
    const auto is_within_a_block = [&](unsigned int address) {
        return device.flash.holds(address) && address % device.flash.block != 0;
    };
    const bool turns_back_in_eeprom =
        device.eeprom.start < start && start < device.eeprom.end && end < start;
    return is_within_a_block(start) || is_within_a_block(end) || turns_back_in_eeprom ||
           (start < device.flash.start && start < device.eeprom.start) ||
           (end > device.flash.end && end > device.eeprom.end);
}

/// Of a memory in which the range ends, everything before that end; from where the range starts,
/// unless it starts beyond the memory.
bool asks_for(unsigned int start, unsigned int end, const RandomMemory& memory,
              unsigned int address)
{
    return memory.holds(address) && address < end &&
           (start <= address || (start >= memory.end && end < memory.end));
}

/// What a range that is not refused reads of the cells: in flash one row of every block.
Cells read_of(const Cells& cells, const RandomDevice& device, unsigned int start, unsigned int end,
              Areas areas)
{
    Cells read;
    for (const auto& [address, value] : cells) {
        const unsigned int block = address / device.flash.block * device.flash.block;
        const bool in_flash = device.flash.holds(address);
        const bool left_out =
            in_flash && (address - block >= device.flash.row ||
                         device.leaves_out(block, areas.encrypted, areas.unencrypted));
        if (asks_for(start, end, in_flash ? device.flash : device.eeprom, address) && !left_out) {
            read[address] = value;
        }
    }
    return read;
}

Cells cells_of(const Content& content)
{
    Cells cells;
    for (const auto& [start, bytes] : content) {
        for (int i = 0; i < bytes.size(); ++i) {
            cells[start + static_cast<unsigned int>(i)] = bytes.at(i);
        }
    }
    return cells;
}

} // namespace

TEST(RandomDevices, EraseTheRunsOfPagesOfARange)
{
    for_every_device(1, [](const RandomDevice& device, Random& random) {
        DeviceOnLine line(device.name.c_str());
        for (int i = 0; i < 5; ++i) {
            const Areas areas = random_areas(random);
            const unsigned int start = random.from_to(device.flash.start, device.flash.end);
            const unsigned int end = random.from_to(start, device.flash.end);
            line.simulated.clear_commands();
            const Erase erase = erase_of(device, pages_of(start, end, device.page), areas);
            EXPECT_EQ(line.device.erase_range(areas.encrypted, areas.unencrypted, start, end),
                      erase.good);
            EXPECT_EQ(line.sent(), erase.commands) << start << " to " << end;
        }
    });
}

TEST(RandomDevices, EraseTheRunsOfPagesOfAllFlash)
{
    for_every_device(2, [](const RandomDevice& device, Random& random) {
        DeviceOnLine line(device.name.c_str());
        const Areas areas = random_areas(random);
        Pages pages;
        for (unsigned int page = device.flash.start; page < device.flash.end;
             page += device.page * device.flash.divisor()) {
            pages.push_back(page);
        }
        const Erase erase = erase_of(device, pages, areas);
        EXPECT_EQ(line.device.erase_all(areas.encrypted, areas.unencrypted), erase.good);
        EXPECT_EQ(line.sent(), erase.commands);
    });
}

TEST(RandomDevices, HaveThePagesWrittenThatTheImageTouches)
{
    for_every_device(3, [](const RandomDevice& device, Random& random) {
        const Areas areas = random_areas(random);
        const Extents flash = random_extents(random, device.flash, 5);
        const Extents eeprom = random_extents(random, device.eeprom, 3);
        OperationBench bench(device.name.c_str(), joined(flash, eeprom));
        sim::DeviceMemory& memory = bench.line.simulated.memory();
        preset_randomly(memory, device, random);
        const Cells expected = updated(cells_of(memory, device), device, flash, eeprom, areas);
        Commands erases;
        for (const unsigned int page : touched_pages(device, flash, areas)) {
            erases.push_back(erase_run(device, page, 1));
        }
        EXPECT_TRUE(bench.write_with_verify(true, areas.encrypted, areas.unencrypted));
        EXPECT_EQ(erase_commands(bench.line.sent()), erases);
        EXPECT_EQ(cells_of(memory, device), expected);
    });
}

TEST(RandomDevices, AreBroughtUpToDateFromAnyState)
{
    for_every_device(4, [](const RandomDevice& device, Random& random) {
        const Areas areas = random_areas(random);
        const Extents flash = random_extents(random, device.flash, 5);
        const Extents eeprom = random_extents(random, device.eeprom, 3);
        OperationBench bench(device.name.c_str(), joined(flash, eeprom));
        sim::DeviceMemory& memory = bench.line.simulated.memory();
        if (random.chance(50)) {
            preset_randomly(memory, device, random);
        }
        bench.install_image();
        const Cells expected = updated(cells_of(memory, device), device, flash, eeprom, areas);
        EXPECT_TRUE(bench.write_with_verify(false, areas.encrypted, areas.unencrypted));
        EXPECT_EQ(cells_of(memory, device), expected);
    });
}

TEST(RandomDevices, AreVerifiedInEveryByteThatTakesPartAndNoOther)
{
    for_every_device(5, [](const RandomDevice& device, Random& random) {
        const Areas areas = random_areas(random);
        const Extents image = joined(random_extents(random, device.flash, 5),
                                     random_extents(random, device.eeprom, 3));
        OperationBench bench(device.name.c_str(), image);
        preset_randomly(bench.line.simulated.memory(), device, random);
        bench.install_image();
        Extents taking_part;
        for (const Extent& extent : image) {
            if (!device.leaves_out(extent.address, areas.encrypted, areas.unencrypted)) {
                taking_part.push_back(extent);
            }
        }
        const Cells checked = cells_of(taking_part);
        EXPECT_EQ(bench.verify(areas.encrypted, areas.unencrypted), !checked.empty());

        const Cells all = cells_of(bench.line.simulated.memory(), device);
        for (int i = 0; i < 4; ++i) {
            const auto flipped = std::next(
                all.begin(), static_cast<int>(random.below(static_cast<unsigned int>(all.size()))));
            bench.line.simulated.memory().preset(
                flipped->first, QByteArray(1, static_cast<char>(flipped->second ^ 0x10)));
            EXPECT_EQ(bench.verify(areas.encrypted, areas.unencrypted),
                      !checked.empty() && checked.count(flipped->first) == 0)
                << flipped->first;
            bench.line.simulated.memory().preset(flipped->first, QByteArray(1, flipped->second));
        }
    });
}

TEST(RandomDevices, AreReadWithinTheRange)
{
    int read = 0;
    for_every_device(6, [&](const RandomDevice& device, Random& random) {
        if (device.has_many_pages) {
            return; // would take thousands of requests
        }
        DeviceOnLine line(device.name.c_str());
        preset_randomly(line.simulated.memory(), device, random);
        const Cells cells = cells_of(line.simulated.memory(), device);
        for (int i = 0; i < 2; ++i) {
            const Areas areas = random_areas(random);
            const unsigned int start = random_limit(device, random);
            const unsigned int end = random_limit(device, random);
            SCOPED_TRACE(std::to_string(start) + " to " + std::to_string(end));
            const Cells expected = is_refused(device, start, end)
                                       ? Cells()
                                       : read_of(cells, device, start, end, areas);
            TargetFile target;
            const bool abort = false;
            EXPECT_EQ(line.device.read_range(target.file, abort, areas.encrypted, areas.unencrypted,
                                             start, end),
                      !expected.empty());
            EXPECT_EQ(target.exists() ? cells_of(target.content()) : Cells(), expected);
            read += expected.empty() ? 0 : 1;
        }
    });
    EXPECT_GT(read, 60); // else hardly any range was good
}
