#pragma once

#include <QByteArray>
#include <QMetaType>

namespace sim
{

/// What the device received and recognised: a probe or a complete, valid frame.
struct Command {
    enum class Kind {
        Probe,   ///< the single byte that a starting device answers with its version
        Version, ///< a running device is asked for its version
        Reset,
        Read,
        Write,
        Erase,
        Unknown, ///< a valid frame without a known command, or with one of the wrong length
    };

    static constexpr int header_length = 5; ///< of a read, write or erase: code, count, address

    Kind kind = Kind::Unknown;
    QByteArray payload;        ///< unescaped and without checksum; "U" for a probe
    unsigned int baud = 0;     ///< rate on the line when it arrived
    unsigned int sequence = 0; ///< number of commands before it
    /// The device refused it: its address, count or length is invalid for this device, or it would
    /// touch the bootloader.
    bool refused = false;
    /// It did not reach the device: lost or damaged on the way, or the device has no power.
    bool ignored = false;

    /// Whether the command concerns flash or EEPROM: a read, a write or an erase.
    bool is_access() const
    {
        return kind == Kind::Read || kind == Kind::Write || kind == Kind::Erase;
    }

    /// Whether the command concerns EEPROM; meaningful for reads and writes.
    bool is_eeprom() const { return payload.startsWith('\x04') || payload.startsWith('\x05'); }

    /// Words or pages, of an access.
    unsigned int count() const { return byte_at(1); }

    /// Of an access, in the units that the device counts in.
    unsigned int word_address() const { return byte_at(2) | byte_at(3) << 8U | byte_at(4) << 16U; }

    /// The data of a write.
    QByteArray data() const { return payload.mid(header_length); }

private:
    unsigned int byte_at(int index) const { return static_cast<unsigned char>(payload.at(index)); }
};

/// The kind's name in summaries and traces, such as "probe".
const char* name_of(Command::Kind kind);

} // namespace sim

Q_DECLARE_METATYPE(sim::Command)
