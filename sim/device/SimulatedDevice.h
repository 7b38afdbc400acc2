#pragma once

// This folder is a healthy device: frames, commands, flash and EEPROM with their rules, and the
// state that decides what is received. It was written from the device's side and shares nothing
// with the tool's own codec, or both could make the same mistake. It has no faults: they enter
// through its filters, gate and store. docs/protocol.md has the format of frames and commands.

#include "sim/device/Command.h"
#include "sim/device/DeviceMemory.h"
#include "sim/device/Filters.h"
#include "sim/device/Options.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>
#include <vector>

class Profile;

namespace sim
{

class Line;

/// A device of the family with its bootloader, reached through a pseudo-terminal as through a
/// serial adapter. Works on the event loop of the thread it lives on, in a test as in a program.
class SimulatedDevice : public QObject
{
    Q_OBJECT

public:
    using RequestFilter = sim::RequestFilter;
    using ReplyFilter = sim::ReplyFilter;

    /// Makes the pseudo-terminal and starts to serve. `profile` must outlive the device. Throws
    /// std::system_error when the system gives no pseudo-terminal.
    explicit SimulatedDevice(const Profile& profile, Options options = {});
    ~SimulatedDevice() override;

    /// What the host opens, such as /dev/pts/3.
    QString port_path() const;
    /// The rate that the host has set on its port.
    unsigned int host_baud() const;

    /// For presetting it and for checking what commands have done.
    DeviceMemory& memory();
    const DeviceMemory& memory() const;

    /// Every command since the start or the last clear_commands(), in order; empty for a
    /// device that keeps no record, as are payloads() and heard().
    const std::vector<Command>& commands() const;
    /// The payloads of the framed commands among them, that is all but the probes.
    std::vector<QByteArray> payloads() const;
    /// Forgets them; the next command has the sequence 0 again.
    void clear_commands();

    /// Every raw byte received, whatever the rate.
    QByteArray heard() const;
    /// The number of these bytes.
    qint64 bytes_from_host() const;
    /// Bytes that were dropped because the host left too much unread.
    qint64 lost_bytes() const;
    /// Frames that began and were dropped.
    unsigned int dropped_frames() const;
    /// The line with its statistics.
    const Line& line() const;

    /// Replaces answers. An empty filter lets them pass as they are.
    void set_reply_filter(ReplyFilter filter);
    /// Damages bytes from the host before the device receives them. Does not affect the echo.
    void set_request_filter(RequestFilter filter);
    /// Loses or alters commands. Without a gate every command gets to the device as it is.
    void set_gate(Gate gate);
    /// Loses data of writes. Without a store all data gets into the cells.
    void set_store(Store store);

    /// Closes the line at both ends, as when the adapter is pulled out; drops what was still due.
    void unplug();

Q_SIGNALS:
    /// Sent before the answer goes out.
    void command_received(const sim::Command& command);

private:
    class Works;
    std::unique_ptr<Works> m_works;
};

} // namespace sim
