#pragma once

#include "sim/device/Command.h"
#include "sim/device/DeviceMemory.h"
#include "sim/device/Filters.h"
#include "sim/device/FrameCodec.h"
#include "sim/device/MemoryGeometry.h"
#include "sim/device/Options.h"

#include <QByteArray>

#include <optional>
#include <vector>

class Profile;

namespace sim
{

/// What the device received, and the bytes of its answer; empty if it stays silent.
struct Exchange {
    Command command;
    QByteArray answer;
};

/// The bootloader as a state machine without a line: bytes in, answers out.
///
/// While starting it answers a probe at 9600 baud, and then runs. Frames are understood at
/// the profile's rate; one that comes while starting makes the device run just as a probe does. A
/// running device also understands the version command at 460800 baud. Bytes at any other rate are
/// noise that also damages a frame in progress.
///
/// Where the profile's rate is 9600 too, a starting device can't distinguish a probe from the sync
/// symbol of a frame. It answers as for a probe and still follows the frame.
class Bootloader
{
public:
    /// Neither argument is copied; both must outlive the bootloader.
    Bootloader(const Profile& profile, DeviceMemory& memory, Entry entry);

    /// Takes the next bytes from the line, sent at `baud`.
    std::vector<Exchange> hear(const QByteArray& bytes, unsigned int baud);

    bool is_running() const { return m_running; }

    /// Frames that began and were dropped.
    unsigned int dropped_frames() const { return m_receiver.dropped_frames(); }

    /// Without a gate every command reaches the device unchanged.
    void set_gate(Gate gate) { m_gate = std::move(gate); }

    /// Without a store all data reach the cells.
    void set_store(Store store) { m_store = std::move(store); }

private:
    void power_on();
    void hear_probe(const QByteArray& bytes, unsigned int baud, std::vector<Exchange>& exchanges);
    bool listens_to_probe(unsigned int baud) const;
    bool listens_to_frames(unsigned int baud) const;
    Exchange handle(const QByteArray& payload, unsigned int baud);
    std::optional<QByteArray> let_through(Command& command) const;
    bool understands(const QByteArray& payload, unsigned int baud) const;
    QByteArray carry_out(Command& command);
    QByteArray read(const Command& command) const;
    QByteArray write(const Command& command);
    bool program_row(const Command& command, unsigned int address);
    bool write_eeprom(const Command& command, unsigned int address);
    QByteArray stored_part(const Command& command) const;
    QByteArray erase(const Command& command);
    QByteArray version_bytes() const;

    const Profile& m_profile;
    DeviceMemory& m_memory;
    FrameReceiver m_receiver;
    Entry m_entry;
    Gate m_gate;
    Store m_store;
    bool m_running = false;
    unsigned int m_last_baud = 0;
};

} // namespace sim
