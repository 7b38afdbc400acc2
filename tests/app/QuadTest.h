#pragma once

#include "tests/app/ToolTest.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace test
{

// QUAD is as small as a device with everything can be. Flash beyond its bootloader goes from 0x40
// to 0x140, in pages of 0x40 bytes and rows of 0x20; the pages at 0x80 and 0xC0 are unencrypted.
// EEPROM goes from 0x1000 to 0x1020 in rows of 0x10.

/// Bytes and where they belong.
struct Piece {
    unsigned int address;
    QByteArray bytes;
};

/// An image file of these pieces.
QByteArray image_file(const std::vector<Piece>& pieces);

/// What the tool saves when it reads these pieces: each record brings its upper address half.
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

/// What a read of all the device sends, and of all but its EEPROM.
Commands read_everything();
Commands read_all_flash();

/// The reset command.
extern const char* const reset;

/// The progress line at each of these percentages.
QByteArray progress(std::initializer_list<int> percentages);

/// The console text after a command whose every answer is that of no command.
QByteArray given_up_on_wrong_answers();
/// How often a command is sent before it is given up.
constexpr std::size_t attempts = 40;

/// And of one that is not answered.
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

    /// What such a run comes to that prints `text` between the version and the end.
    static ToolResult succeeded(const QByteArray& text);
    static ToolResult failed(const QByteArray& text);

    /// Gives every command from the one of this sequence on this reply, empty for none; `count`
    /// commands only, if given.
    void reply_from(unsigned int sequence, const QByteArray& reply, std::size_t count = SIZE_MAX);

private:
    sim::DeviceTable m_table;

protected:
    sim::SimulatedDevice m_device;
};

} // namespace test
