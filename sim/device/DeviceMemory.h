#pragma once

#include <QByteArray>

#include <cstdint>
#include <map>
#include <vector>

class Profile;

namespace sim
{

/// The device's flash and EEPROM under the byte addresses of an image. Initially everything is
/// erased (0xFF). Cells take room only once they have held something else, so a table that claims
/// gigabytes costs nothing.
class DeviceMemory
{
public:
    /// What has been done to the memory by commands; preset() counts nothing.
    struct Statistics {
        unsigned int pages_erased = 0;
        unsigned int flash_rows_programmed = 0;
        unsigned int eeprom_writes = 0;
        /// Flash cells that did not take the value sent, because a bit of theirs was not erased.
        unsigned int cells_programmed_without_erase = 0;
    };

    /// Bytes that follow each other in memory.
    struct ProgrammedRange {
        unsigned int address;
        QByteArray bytes;
    };

    /// Copies the limits and the page size from the table row; the row need not outlive this.
    explicit DeviceMemory(const Profile& profile);

    /// Whether all `count` bytes from `address` on lie in flash, the bootloader's part included.
    bool is_in_flash(std::uint64_t address, std::uint64_t count) const;
    bool is_in_eeprom(std::uint64_t address, std::uint64_t count) const;
    /// The same for the part of flash that a host can write, which begins after the bootloader.
    bool is_in_user_flash(std::uint64_t address, std::uint64_t count) const;
    /// Whether a host can write the byte: it is in EEPROM or in flash after the bootloader.
    bool is_user_memory(unsigned int address) const;

    /// The bytes of [address, address + count); addresses that hold no memory read as 0xFF.
    QByteArray read(unsigned int address, unsigned int count) const;

    /// Programs user flash: bits can only be cleared, as in real cells. False, with nothing done,
    /// when a byte lies outside of user flash.
    bool program_flash(unsigned int address, const QByteArray& data);
    /// Overwrites EEPROM. False, with nothing done, when a byte lies outside of it.
    bool write_eeprom(unsigned int address, const QByteArray& data);
    /// Erases `count` flash pages from the one that holds `address` on; pages beyond the end of
    /// flash do not exist and are skipped. False, with nothing done, when the first page lies
    /// outside of flash or holds a byte of the bootloader.
    bool erase_pages(unsigned int address, unsigned int count);

    /// Sets bytes regardless of the rules of the cells, in the bootloader's part too. Returns how
    /// many of them lie outside of flash and EEPROM and were left out.
    unsigned int preset(unsigned int address, const QByteArray& data);

    /// From now on the bits of `mask` in the byte at `address` hold `level`, whatever is done to
    /// them. False, with nothing done, when the device has no such byte.
    bool stick_bits(unsigned int address, unsigned char mask, bool level);

    /// Every range of flash and EEPROM that is not 0xFF, in ascending order.
    std::vector<ProgrammedRange> programmed_ranges() const;

    const Statistics& statistics() const { return m_statistics; }

private:
    struct Area {
        std::uint64_t start = 0;
        std::uint64_t end = 0;
        bool holds(std::uint64_t address, std::uint64_t count) const;
    };

    /// Bits of a cell that are worn out or broken.
    struct StuckBits {
        unsigned char high = 0; ///< always 1
        unsigned char low = 0;  ///< always 0
    };

    unsigned char cell(std::uint64_t address) const;
    void set_cell(std::uint64_t address, unsigned char value);
    void erase_range(std::uint64_t start, std::uint64_t end);

    Area m_flash;
    Area m_user_flash;
    Area m_eeprom;
    std::uint64_t m_page_size = 0;
    /// Cells in blocks of equal size by block number; a block that is missing is erased.
    std::map<std::uint64_t, QByteArray> m_blocks;
    std::map<std::uint64_t, StuckBits> m_stuck_bits; ///< by address
    Statistics m_statistics;
};

} // namespace sim
