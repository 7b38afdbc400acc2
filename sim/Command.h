#pragma once

#include <QByteArray>
#include <QMetaType>

namespace sim
{

/// One thing that the device heard and could make out: a probe or a whole, sound frame.
struct Command {
    enum class Kind {
        Probe,   ///< the single byte that a starting device answers with its version
        Version, ///< a running device is asked for its version
        Reset,
        Read,
        Write,
        Erase,
        Unknown, ///< a sound frame with no command in it, or one of the wrong length
    };

    Kind kind = Kind::Unknown;
    QByteArray payload;        ///< unescaped and without checksum; "U" for a probe
    unsigned int baud = 0;     ///< rate on the line when it came
    unsigned int sequence = 0; ///< its index in SimulatedDevice::commands()
    /// A command of its kind that the device did not carry out: its address, count or length is
    /// none that this device has, or it would touch the bootloader.
    bool refused = false;

    /// The command is about EEPROM; meaningful for reads and writes.
    bool is_eeprom() const { return payload.startsWith('\x04') || payload.startsWith('\x05'); }
};

} // namespace sim

Q_DECLARE_METATYPE(sim::Command)
