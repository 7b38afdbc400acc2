#pragma once

#include "sim/device/Command.h"
#include "sim/device/DeviceMemory.h"
#include "sim/device/FrameCodec.h"
#include "sim/device/MemoryGeometry.h"
#include "sim/device/Named.h"

#include <QByteArray>

#include <array>
#include <functional>
#include <optional>
#include <vector>

class Profile;

namespace sim
{

/// How the device comes up when it is powered on, and again after a reset.
enum class Entry { Probe, Version, Silent };

constexpr std::array<Named<Entry>, 3> entries = {{
    {Entry::Probe, "probe", "starts and waits for a probe before it runs"},
    {Entry::Version, "version", "runs already, answers the version command and never a probe"},
    {Entry::Silent, "silent", "hears everything, does nothing and never answers"},
}};

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
/// that also damages a frame begun before.
///
/// Where the profile's rate is 9600 too, a starting device can't distinguish a probe from the sync
/// symbol of a frame. It answers as for a probe and still follows the frame.
class Bootloader
{
public:
    /// Asked once for every command that is made out, in their order, before anything is done: the
    /// payload that gets to the device, or none if it never does. Of a probe, any payload will do.
    using Gate = std::function<std::optional<QByteArray>(const Command& command)>;
    /// Asked for every write that the device accepts: what of its data gets into the cells, from
    /// their first on.
    using Store = std::function<QByteArray(const Command& command, const QByteArray& data)>;

    /// Neither argument is copied; both must outlive the bootloader.
    Bootloader(const Profile& profile, DeviceMemory& memory, Entry entry);

    /// Takes the next bytes from the line, sent at `baud`.
    std::vector<Exchange> hear(const QByteArray& bytes, unsigned int baud);

    bool is_running() const { return m_running; }

    /// Frames that began and came to nothing.
    unsigned int dropped_frames() const { return m_receiver.dropped_frames(); }

    /// Without a gate every command gets to the device as it is.
    void set_gate(Gate gate) { m_gate = std::move(gate); }

    /// Without a store all data gets into the cells.
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
