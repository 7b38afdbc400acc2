#pragma once

#include "tests/app/ToolTest.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace test
{

// QUAD is the smallest device that has everything. Flash after its bootloader is at 0x40 to 0x140,
// in pages of 0x40 bytes and rows of 0x20; the pages at 0x80 and 0xC0 are unencrypted. EEPROM is at
// 0x1000 to 0x1020, in rows of 0x10.

/// Bytes and their address.
struct Piece {
    unsigned int address;
    QByteArray bytes;
};

/// An image file of these pieces.
QByteArray image_file(const std::vector<Piece>& pieces);

/// The file that the tool saves when it reads these pieces: an address record precedes each record.
std::string saved_file(const std::vector<Piece>& pieces);

/// Payloads in hexadecimal.
using Commands = std::vector<std::string>;

Commands operator+(Commands first, const Commands& rest);

// QUAD's commands for whole rows and single pages by byte address.
std::string read_flash(unsigned int address);
std::string write_flash(unsigned int address, const QByteArray& row);
std::string erase_page(unsigned int address);
std::string read_eeprom(unsigned int address);
std::string write_eeprom(unsigned int address, const QByteArray& row);

/// The commands of a read of the whole device, and of all but its EEPROM.
Commands read_everything();
Commands read_all_flash();

/// The reset command.
extern const char* const reset;

/// The progress line at each of these percentages.
QByteArray progress(std::initializer_list<int> percentages);

/// The console text after a command all of whose answers belong to no command.
QByteArray given_up_on_wrong_answers();
/// How often a command is sent before it has failed.
constexpr std::size_t attempts = 40;

/// The console text after a command that is not answered.
QByteArray given_up_on_silence(std::size_t after = attempts);

/// Runs the tool beside QUAD, which is the only device in the table.
class QuadTest : public ToolTest
{
protected:
    QuadTest();

    const Profile& quad() const { return m_table.choose(0x0708); }

    void put_image(const char* name, const std::vector<Piece>& pieces);
    std::string file(const char* name) const;
    /// With the version given.
    ToolResult operate(const char* arguments) const;

    /// The result of such a run that prints `text` between the version and the end.
    static ToolResult succeeded(const QByteArray& text);
    static ToolResult failed(const QByteArray& text);

    /// Gives this reply (empty: none) to every command from this sequence number on, or to `count`
    /// commands.
    void reply_from(unsigned int sequence, const QByteArray& reply, std::size_t count = SIZE_MAX);

private:
    sim::DeviceTable m_table;

protected:
    sim::SimulatedDevice m_device;
};

} // namespace test
