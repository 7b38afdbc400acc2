#pragma once

// This folder is a healthy device: frames, commands, flash and EEPROM with their rules, and the
// state that decides what is heard. It was written from the device's side and shares nothing with
// the tool's own codec, or both could make the same mistake. Faults have no place in it: they come
// in through its filters, gate and store. docs/protocol.md has the format of frames and commands.

#include "sim/device/Bootloader.h"
#include "sim/device/Command.h"
#include "sim/device/DeviceMemory.h"
#include "sim/line/Line.h"
#include "sim/line/Outbox.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <array>
#include <functional>
#include <vector>

class Profile;

namespace sim
{

/// A half-duplex line brings every byte that the host sends back to the host.
enum class Echo { None, Apart, Together };

/// How a line that has an echo brings it.
constexpr std::array<Named<Echo>, 2> echoes = {{
    {Echo::Apart, "apart", "can be read before the answer, unless times bring both together"},
    {Echo::Together, "together", "comes together with the answer"},
}};

struct Options {
    using Echo = sim::Echo;

    Entry entry = Entry::Probe;
    Echo echo = Echo::None;
    bool paced = false;    ///< see LineOptions
    int latency_ms = 0;    ///< see LineOptions
    int erase_page_ms = 0; ///< what the device needs to erase a page
    int write_row_ms = 0;  ///< and to write a row
    /// Keeps every command and byte for later inspection. A device that runs for long should only
    /// count them.
    bool keeps_record = true;
};

/// A device of the family with its bootloader, reached through a pseudo-terminal as through a
/// serial adapter. Works on the event loop of the thread it lives on, in a test as in a program.
class SimulatedDevice : public QObject
{
    Q_OBJECT

public:
    using RequestFilter = std::function<QByteArray(const QByteArray& bytes)>;
    /// The deliveries that take the place of an answer.
    using ReplyFilter =
        std::function<std::vector<Delivery>(const Command& command, const QByteArray& answer)>;

    /// Makes the pseudo-terminal and starts to serve. `profile` must outlive the device. Throws
    /// std::system_error when the system gives no pseudo-terminal.
    explicit SimulatedDevice(const Profile& profile, Options options = {});

    /// What the host opens, such as /dev/pts/3.
    QString port_path() const;
    /// The rate that the host has set on its port.
    unsigned int host_baud() const;

    /// To preset, and to look at what commands have done.
    DeviceMemory& memory() { return m_memory; }

    const DeviceMemory& memory() const { return m_memory; }

    /// Everything made out since the start or the last clear_commands(), in order; nothing for a
    /// device that keeps no record, as for payloads() and heard().
    const std::vector<Command>& commands() const { return m_commands; }

    /// The payloads of the framed commands among them, that is all but the probes.
    std::vector<QByteArray> payloads() const;

    /// Forgets them; the next command has the sequence 0 again.
    void clear_commands();

    /// Every raw byte received, whatever the rate.
    QByteArray heard() const { return m_heard; }

    /// The number of these bytes.
    qint64 bytes_from_host() const { return m_bytes_from_host; }

    /// Bytes that were dropped because the host left too much unread.
    qint64 lost_bytes() const { return m_outbox.lost_bytes(); }

    /// Frames that began and came to nothing.
    unsigned int dropped_frames() const { return m_bootloader.dropped_frames(); }

    /// The line with its figures.
    const Line& line() const { return m_line; }

    /// Called for every command; returns what to put on the line instead of its answer. The answer
    /// passed in is complete: a whole frame, the raw reply for a probe, empty if the device stays
    /// silent. No delivery drops it; the bytes of several deliveries can be read separately. An
    /// empty filter lets answers pass as they are.
    void set_reply_filter(ReplyFilter filter) { m_filter = std::move(filter); }

    /// Called with the bytes from the host before the device receives them, to damage them on the
    /// way. Does not affect the echo.
    void set_request_filter(RequestFilter filter) { m_request_filter = std::move(filter); }

    /// Called for every command; returns what of it reaches the device.
    void set_gate(Bootloader::Gate gate) { m_bootloader.set_gate(std::move(gate)); }

    /// Called for every write; returns what of its data reaches the cells.
    void set_store(Bootloader::Store store) { m_bootloader.set_store(std::move(store)); }

    /// Closes the line at both ends, as when the adapter is pulled out; drops what was still due.
    void unplug();

Q_SIGNALS:
    /// Sent before the answer goes out.
    void command_received(const sim::Command& command);

private:
    /// What goes out for one command.
    struct Reply {
        unsigned int baud = 0;
        qint64 heard_ns = 0; ///< when the device had heard the command, by the clock of Alarm
        qint64 ready_ns = 0; ///< when it is done with it
        std::vector<Delivery> deliveries;

        bool is_immediate() const;
    };

    void hear(const QByteArray& bytes, unsigned int baud);
    Reply reply_to(Exchange& exchange, qint64 now_ns);
    std::vector<Delivery> deliveries_for(const Exchange& exchange) const;
    int work_ms(const Exchange& exchange) const;
    bool holds_answers_back() const;
    void echo(const Burst& heard, qint64 now_ns, const std::vector<Reply>& replies);
    void post(const Reply& reply);

    const Profile& m_profile;
    Options m_options;
    DeviceMemory m_memory;
    Bootloader m_bootloader;
    Line m_line;
    Outbox m_outbox;
    ReplyFilter m_filter;
    RequestFilter m_request_filter;
    std::vector<Command> m_commands;
    unsigned int m_next_sequence = 0;
    QByteArray m_heard;
    qint64 m_bytes_from_host = 0;
    QByteArray m_held_echo;     ///< goes out in front of the next answer
    qint64 m_busy_until_ns = 0; ///< with what it was asked before
};

} // namespace sim
