#include "inspect/OperationCosts.h"

#include "device/GeometryChecks.h"
#include "inspect/Frames.h"

namespace inspect
{

namespace
{

constexpr quint64 most_pages = 255;

quint64 steps(quint64 bytes, quint64 step)
{
    return (bytes + step - 1) / step;
}

quint64 size_of(const Profile& profile, MemoryType memory)
{
    const quint64 begin = profile.get_min_address(memory);
    const quint64 end = profile.get_max_address(memory);
    return profile.has_memory_type(memory) && begin < end ? end - begin : 0;
}

/// Whether a command can request as many words as `size` bytes have.
bool is_countable(const Profile& profile, MemoryType memory, unsigned int size)
{
    const unsigned int words = size / profile.get_word_size(memory);
    return 1 <= words && words <= 255;
}

bool works(const Profile& profile, MemoryType memory)
{
    return size_of(profile, memory) == 0 ||
           (!geometry::check_read(profile, memory) &&
            (memory == MEMORY_EEPROM ||
             (!geometry::check_page(profile) && !geometry::check_page_step(profile))) &&
            is_countable(profile, memory, profile.get_row_size(memory)) &&
            is_countable(profile, memory, profile.get_block_size(memory)));
}

void add(Cost& cost, quint64 commands, quint64 bytes_each)
{
    cost.commands += commands;
    cost.bytes += commands * bytes_each;
}

Cost erase_cost(const Profile& profile)
{
    const quint64 step = geometry::page_step(profile);
    Cost cost;
    add(cost, steps(steps(size_of(profile, MEMORY_FLASH), step), most_pages), erase_bytes());
    return cost;
}

/// One request for a row that begins at `address`: whole blocks, fetched in rows or blocks.
Cost read_cost_of_row(const Profile& profile, MemoryType memory, quint64 address)
{
    const quint64 row = profile.get_row_size(memory);
    const quint64 block = profile.get_block_size(memory);
    const quint64 word = profile.get_word_size(memory);
    const quint64 end = steps(address + row, block) * block;
    Cost cost;
    for (quint64 start = address / block * block; start < end;) {
        const quint64 bytes = (row <= end - start ? row : block) / word * word;
        add(cost, 1, read_bytes(bytes));
        start += bytes;
    }
    return cost;
}

} // namespace

std::optional<OperationCosts> costs_of(const Profile& profile)
{
    if (!works(profile, MEMORY_FLASH) || !works(profile, MEMORY_EEPROM)) {
        return std::nullopt;
    }
    OperationCosts costs;
    for (const MemoryType memory : {MEMORY_FLASH, MEMORY_EEPROM}) {
        const quint64 size = size_of(profile, memory);
        if (size == 0) {
            continue;
        }
        const quint64 row = profile.get_row_size(memory);
        add(costs.write, steps(size, row), write_bytes(row));
        // Flash is read in steps of blocks; all begin alike, so the first stands for all.
        const quint64 step = memory == MEMORY_FLASH ? profile.get_block_size(memory) : row;
        const Cost one = read_cost_of_row(profile, memory, profile.get_min_address(memory));
        costs.read.commands += steps(size, step) * one.commands;
        costs.read.bytes += steps(size, step) * one.bytes;
        if (memory == MEMORY_FLASH) {
            costs.erase = erase_cost(profile);
        }
    }
    return costs;
}

} // namespace inspect
