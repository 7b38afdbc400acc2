#include "sim/device/DeviceMemory.h"

#include "profile/Profile.h"

#include <algorithm>

namespace sim
{

namespace
{

constexpr char erased = '\xFF';
constexpr std::uint64_t block_size = 4096;

std::uint64_t length_of(const QByteArray& data)
{
    return static_cast<std::uint64_t>(data.size());
}

int as_index(std::uint64_t offset)
{
    return static_cast<int>(offset);
}

} // namespace

bool DeviceMemory::Area::holds(std::uint64_t address, std::uint64_t count) const
{
    return address >= start && address <= end && count <= end - address;
}

DeviceMemory::DeviceMemory(const Profile& profile)
    : m_flash{0, profile.attributes[Profile::flash_end_address_bytes]},
      m_user_flash{profile.attributes[Profile::bootloader_end_address], m_flash.end},
      m_eeprom{profile.attributes[Profile::eeprom_start_address],
               profile.attributes[Profile::eeprom_end_address]},
      m_page_size{profile.attributes[Profile::flash_page_size]}
{
}

bool DeviceMemory::is_in_flash(std::uint64_t address, std::uint64_t count) const
{
    return m_flash.holds(address, count);
}

bool DeviceMemory::is_in_eeprom(std::uint64_t address, std::uint64_t count) const
{
    return m_eeprom.holds(address, count);
}

bool DeviceMemory::is_in_user_flash(std::uint64_t address, std::uint64_t count) const
{
    return m_user_flash.holds(address, count);
}

bool DeviceMemory::is_user_memory(unsigned int address) const
{
    return m_user_flash.holds(address, 1) || m_eeprom.holds(address, 1);
}

QByteArray DeviceMemory::read(unsigned int address, unsigned int count) const
{
    QByteArray bytes(static_cast<int>(count), erased);
    const std::uint64_t end = std::uint64_t{address} + count;
    for (auto it = m_blocks.lower_bound(address / block_size); it != m_blocks.end(); ++it) {
        const std::uint64_t block_start = it->first * block_size;
        if (block_start >= end) {
            break;
        }
        const std::uint64_t from = std::max<std::uint64_t>(block_start, address);
        const std::uint64_t length = std::min(block_start + block_size, end) - from;
        bytes.replace(as_index(from - address), as_index(length),
                      it->second.constData() + (from - block_start), as_index(length));
    }
    return bytes;
}

bool DeviceMemory::program_flash(unsigned int address, const QByteArray& data)
{
    if (!m_user_flash.holds(address, length_of(data))) {
        return false;
    }
    std::uint64_t target = address;
    for (const char byte : data) {
        const auto wanted = static_cast<unsigned char>(byte);
        const auto result = static_cast<unsigned char>(cell(target) & wanted);
        // A broken cell is not the host's mistake.
        const bool mistaken = result != wanted && m_stuck_bits.count(target) == 0;
        m_statistics.cells_programmed_without_erase += mistaken ? 1 : 0;
        set_cell(target++, result);
    }
    ++m_statistics.flash_rows_programmed;
    return true;
}

bool DeviceMemory::write_eeprom(unsigned int address, const QByteArray& data)
{
    if (!m_eeprom.holds(address, length_of(data))) {
        return false;
    }
    std::uint64_t target = address;
    for (const char byte : data) {
        set_cell(target++, static_cast<unsigned char>(byte));
    }
    ++m_statistics.eeprom_writes;
    return true;
}

bool DeviceMemory::erase_pages(unsigned int address, unsigned int count)
{
    if (m_page_size == 0 || !m_user_flash.holds(address / m_page_size * m_page_size, 1)) {
        return false;
    }
    std::uint64_t page = address / m_page_size * m_page_size;
    for (unsigned int done = 0; done < count && page < m_flash.end; ++done) {
        erase_range(page, std::min(page + m_page_size, m_flash.end));
        ++m_statistics.pages_erased;
        page += m_page_size;
    }
    return true;
}

unsigned int DeviceMemory::preset(unsigned int address, const QByteArray& data)
{
    unsigned int left_out = 0;
    std::uint64_t target = address;
    for (const char byte : data) {
        if (m_flash.holds(target, 1) || m_eeprom.holds(target, 1)) {
            set_cell(target, static_cast<unsigned char>(byte));
        } else {
            ++left_out;
        }
        ++target;
    }
    return left_out;
}

bool DeviceMemory::stick_bits(unsigned int address, unsigned char mask, bool level)
{
    if (!m_flash.holds(address, 1) && !m_eeprom.holds(address, 1)) {
        return false;
    }
    StuckBits& stuck = m_stuck_bits[address];
    (level ? stuck.high : stuck.low) |= mask;
    (level ? stuck.low : stuck.high) &= static_cast<unsigned char>(~mask);
    set_cell(address, cell(address));
    return true;
}

std::vector<DeviceMemory::ProgrammedRange> DeviceMemory::programmed_ranges() const
{
    std::vector<ProgrammedRange> ranges;
    std::uint64_t next = 0; // where the range at the end of the list would go on
    for (const auto& [number, cells] : m_blocks) {
        for (int i = 0; i < cells.size(); ++i) {
            if (cells.at(i) == erased) {
                continue;
            }
            const std::uint64_t address = number * block_size + static_cast<std::uint64_t>(i);
            if (ranges.empty() || address != next) {
                ranges.push_back({static_cast<unsigned int>(address), {}});
            }
            ranges.back().bytes.append(cells.at(i));
            next = address + 1;
        }
    }
    return ranges;
}

unsigned char DeviceMemory::cell(std::uint64_t address) const
{
    const auto it = m_blocks.find(address / block_size);
    const char value =
        it == m_blocks.end() ? erased : it->second.at(as_index(address % block_size));
    return static_cast<unsigned char>(value);
}

/// The only place that changes a cell, so that stuck bits always keep their level.
void DeviceMemory::set_cell(std::uint64_t address, unsigned char value)
{
    const auto stuck = m_stuck_bits.find(address);
    if (stuck != m_stuck_bits.end()) {
        value = static_cast<unsigned char>((value | stuck->second.high) & ~stuck->second.low);
    }
    const auto byte = static_cast<char>(value);
    auto it = m_blocks.find(address / block_size);
    if (it == m_blocks.end()) {
        if (byte == erased) {
            return;
        }
        const QByteArray fresh(as_index(block_size), erased);
        it = m_blocks.emplace(address / block_size, fresh).first;
    }
    it->second[as_index(address % block_size)] = byte;
}

void DeviceMemory::erase_range(std::uint64_t start, std::uint64_t end)
{
    for (auto it = m_blocks.lower_bound(start / block_size); it != m_blocks.end(); ++it) {
        const std::uint64_t block_start = it->first * block_size;
        if (block_start >= end) {
            break;
        }
        const std::uint64_t from = std::max(block_start, start) - block_start;
        const std::uint64_t to = std::min(block_start + block_size, end) - block_start;
        std::fill(it->second.begin() + from, it->second.begin() + to, erased);
    }
    for (auto it = m_stuck_bits.lower_bound(start); it != m_stuck_bits.end() && it->first < end;
         ++it) {
        set_cell(it->first, 0xFF);
    }
}

} // namespace sim
