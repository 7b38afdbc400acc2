#pragma once

#include "sim/device/DeviceMemory.h"
#include "tests/device/OperationImages.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace test
{

// Devices of all shapes that a table can describe and that work, in image bytes.

/// Random numbers that are the same in every run.
class Random
{
public:
    explicit Random(unsigned int seed) : m_engine(seed) {}

    unsigned int below(unsigned int limit) { return static_cast<unsigned int>(m_engine()) % limit; }

    unsigned int from_to(unsigned int lowest, unsigned int highest)
    {
        return lowest + below(highest - lowest + 1);
    }

    bool chance(unsigned int percent) { return below(100) < percent; }

    template <typename T>
    T one_of(std::initializer_list<T> values)
    {
        return values.begin()[below(static_cast<unsigned int>(values.size()))];
    }

private:
    std::mt19937 m_engine;
};

struct RandomMemory {
    unsigned int start = 0;
    unsigned int end = 0;
    unsigned int word = 0;
    unsigned int words_per_address = 1;
    unsigned int row = 0;
    unsigned int block = 0;
    QByteArray filler; ///< of four bytes, of which a word takes the first

    bool holds(unsigned int address) const { return start <= address && address < end; }

    unsigned int divisor() const { return word == 0 ? 1 : word / words_per_address; }

    char filler_at(unsigned int address) const
    {
        return filler.at(static_cast<int>(address % row % word));
    }
};

struct RandomDevice {
    unsigned int seed = 0;
    bool has_many_pages = false; ///< more than fit into one command
    std::string name;
    RandomMemory flash;
    RandomMemory eeprom;
    unsigned int page = 0;
    unsigned int unencrypted_start = 0;
    unsigned int unencrypted_end = 0;

    bool is_unencrypted(unsigned int address) const
    {
        return unencrypted_start <= address && address < unencrypted_end;
    }

    bool leaves_out(unsigned int address, bool encrypted, bool unencrypted) const
    {
        return flash.holds(address) && !(is_unencrypted(address) ? unencrypted : encrypted);
    }
};

inline RandomMemory random_flash(Random& random, bool many_pages, unsigned int& page)
{
    RandomMemory flash;
    flash.words_per_address = random.from_to(1, 2);
    flash.word = flash.words_per_address * random.from_to(1, 2);
    flash.row = many_pages ? flash.word : flash.word * random.from_to(1, 12);
    flash.filler = QByteArray::fromHex("A1B2C3D4");
    const unsigned int rows_per_page = many_pages ? 1 : random.from_to(1, 4);
    const unsigned int rows_per_block = random.from_to(1, 2);
    page = flash.row * rows_per_page;
    flash.block = flash.row * rows_per_block;
    const unsigned int unit = page * rows_per_block;
    flash.start = unit * random.from_to(1, 4);
    flash.end = flash.start + unit * (many_pages ? random.from_to(250, 600) : random.from_to(1, 8));
    return flash;
}

/// Above flash or, at random and if there is room, below it, or nowhere.
inline RandomMemory random_eeprom(Random& random, const RandomMemory& flash)
{
    RandomMemory eeprom;
    if (random.chance(15)) {
        return eeprom;
    }
    eeprom.word = random.from_to(1, 2);
    eeprom.words_per_address = random.from_to(1, eeprom.word);
    eeprom.block = eeprom.word * random.from_to(1, 4);
    eeprom.row = eeprom.block * random.from_to(1, 2);
    eeprom.filler = QByteArray::fromHex("5A6B7C8D");
    const unsigned int size = eeprom.row * random.from_to(1, 6);
    const bool below_flash = size <= flash.start && random.chance(30);
    const unsigned int after_flash = (flash.end + eeprom.row - 1) / eeprom.row;
    eeprom.start = below_flash ? 0 : eeprom.row * (after_flash + random.below(4));
    eeprom.end = eeprom.start + size;
    return eeprom;
}

inline RandomDevice random_device(unsigned int seed)
{
    Random random(seed);
    RandomDevice device;
    device.seed = seed;
    device.name = "random-" + std::to_string(seed);
    device.has_many_pages = random.chance(10);
    device.flash = random_flash(random, device.has_many_pages, device.page);
    device.eeprom = random_eeprom(random, device.flash);
    const unsigned int size = device.flash.end - device.flash.start;
    device.unencrypted_start = device.flash.start + random.below(size);
    device.unencrypted_end = device.unencrypted_start + random.below(size);
    return device;
}

/// The device's line of a table.
inline QByteArray table_row(unsigned int version, const RandomDevice& device)
{
    const RandomMemory& flash = device.flash;
    const RandomMemory& eeprom = device.eeprom;
    QByteArray row = "v" + QByteArray::number(version, 16) + ":\t115200\t" +
                     QByteArray::fromStdString(device.name);
    for (const unsigned int value : {flash.end / flash.divisor(),
                                     flash.end,
                                     0U,
                                     flash.start / flash.divisor(),
                                     device.page,
                                     flash.row,
                                     flash.word,
                                     flash.words_per_address,
                                     flash.block,
                                     0xA1B2C3D4U,
                                     flash.word,
                                     eeprom.start,
                                     eeprom.end / eeprom.divisor(),
                                     eeprom.word,
                                     eeprom.words_per_address,
                                     eeprom.row,
                                     eeprom.block,
                                     0x5A6B7C8DU,
                                     eeprom.word,
                                     eeprom.end - eeprom.start,
                                     device.unencrypted_start,
                                     device.unencrypted_end}) {
        row += '\t' + QByteArray::number(value);
    }
    return row + '\n';
}

/// The working directory with a table of the devices with seeds from 0 on, as long as it lives.
class RandomTable
{
public:
    static constexpr unsigned int count = 120;

    /// The table must be there before the registry is asked for the first time.
    static const std::vector<RandomDevice>& devices()
    {
        static const RandomTable table;
        return table.m_devices;
    }

private:
    RandomTable()
    {
        QFile file(m_folder.filePath(QStringLiteral("device.txt")));
        if (!file.open(QIODevice::WriteOnly) || !QDir::setCurrent(m_folder.path())) {
            throw std::runtime_error("no place for a table");
        }
        for (unsigned int seed = 0; seed < count; ++seed) {
            m_devices.push_back(random_device(seed));
            file.write(table_row(0x1000 + seed, m_devices.back()));
        }
    }

    QTemporaryDir m_folder;
    std::vector<RandomDevice> m_devices;
};

/// Some pieces within a memory, which may touch and overlap.
inline Extents random_extents(Random& random, const RandomMemory& memory, unsigned int most)
{
    Extents extents;
    if (memory.start < memory.end) {
        for (unsigned int i = random.below(most + 1); i > 0; --i) {
            const unsigned int address = random.from_to(memory.start, memory.end - 1);
            const unsigned int longest = qMin(memory.end - address, 3 * memory.row);
            extents.push_back({address, static_cast<int>(random.from_to(1, longest))});
        }
    }
    return extents;
}

/// Every byte of flash and EEPROM by its address.
using Cells = std::map<unsigned int, char>;

inline Cells cells_of(const sim::DeviceMemory& memory, const RandomDevice& device)
{
    Cells cells;
    for (const RandomMemory* part : {&device.flash, &device.eeprom}) {
        const QByteArray bytes = memory.read(part->start, part->end - part->start);
        for (unsigned int address = part->start; address < part->end; ++address) {
            cells[address] = bytes.at(static_cast<int>(address - part->start));
        }
    }
    return cells;
}

/// The bytes of the pieces by address.
inline Cells cells_of(const Extents& extents)
{
    Cells cells;
    for (const Extent& extent : extents) {
        for (int i = 0; i < extent.size; ++i) {
            const unsigned int address = extent.address + static_cast<unsigned int>(i);
            cells[address] = bytes_at(address, 1).at(0);
        }
    }
    return cells;
}

} // namespace test
