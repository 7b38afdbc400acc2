#pragma once

#include "sim/Command.h"
#include "sim/DeviceMemory.h"
#include "sim/FrameCodec.h"

#include <QByteArray>

#include <cstdint>
#include <vector>

class Profile;

namespace sim
{

/// How the device comes up when it is powered on, and again after a reset.
enum class Entry {
    Probe,   ///< starting: waits for a probe before it runs
    Version, ///< already running its bootloader; never answers a probe
    Silent,  ///< hears everything, does nothing and never answers
};

/// What the device heard and the bytes it answers with, empty where it stays silent.
struct Exchange {
    Command command;
    QByteArray answer;
};

/// The bootloader as a state machine without a line: bytes in, answers out.
///
/// While starting it answers the probe, heard at 9600 baud, and then runs. Frames are understood at
/// the profile's rate; one that comes while starting makes the device run just as a probe does. A
/// running device also hears the version command at 460800 baud. Bytes at any other rate are noise
/// that also spoils a frame begun before.
///
/// Where the profile's rate is 9600 too, a starting device can't tell a probe from the sync symbol
/// of a frame. It answers as for a probe and still follows the frame.
class Bootloader
{
public:
    /// Neither argument is copied; both must outlive the bootloader.
    Bootloader(const Profile& profile, DeviceMemory& memory, Entry entry);

    /// Takes the next bytes from the line, sent at `baud`.
    std::vector<Exchange> hear(const QByteArray& bytes, unsigned int baud);

    bool is_running() const { return m_running; }

private:
    /// What a command's kind of memory looks like from the device's side.
    struct Geometry {
        std::uint64_t start = 0; ///< byte address that word address 0 stands for
        std::uint64_t word_size = 0;
        std::uint64_t bytes_per_address = 0; ///< 0 when the table's figures give none
        std::uint64_t row_size = 0;

        bool is_usable() const { return bytes_per_address != 0; }

        std::uint64_t byte_address(std::uint64_t word_address) const
        {
            return start + word_address * bytes_per_address;
        }
    };

    void power_on();
    void hear_probe(const QByteArray& bytes, unsigned int baud, std::vector<Exchange>& exchanges);
    bool listens_to_probe(unsigned int baud) const;
    bool listens_to_frames(unsigned int baud) const;
    Exchange handle(const QByteArray& payload, unsigned int baud);
    bool understands(const QByteArray& payload, unsigned int baud) const;
    QByteArray carry_out(Command& command);
    QByteArray read(const Command& command) const;
    QByteArray write(const Command& command);
    bool program_row(const QByteArray& payload, const Geometry& flash, unsigned int address);
    bool write_eeprom(const QByteArray& payload, const Geometry& eeprom, unsigned int address);
    QByteArray erase(const Command& command);
    QByteArray version_bytes() const;
    Geometry geometry(bool eeprom) const;

    const Profile& m_profile;
    DeviceMemory& m_memory;
    FrameReceiver m_receiver;
    Entry m_entry;
    bool m_running = false;
    unsigned int m_last_baud = 0;
};

} // namespace sim
