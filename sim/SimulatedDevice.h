#pragma once

#include "sim/Bootloader.h"
#include "sim/Command.h"
#include "sim/DeviceMemory.h"
#include "sim/Outbox.h"
#include "sim/PseudoTerminal.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <functional>
#include <vector>

class Profile;

namespace sim
{

struct Options {
    /// A half-duplex line brings every byte that the host sends back to the host.
    enum class Echo {
        None,
        Apart,    ///< the echo can be read before the answer is there
        Together, ///< echo and answer come in a single piece
    };

    Entry entry = Entry::Probe;
    Echo echo = Echo::None;
};

/// A device of the family with its bootloader, reached through a pseudo-terminal as through a
/// serial adapter. Works on the event loop of the thread it lives on, in a test as in a program.
class SimulatedDevice : public QObject
{
    Q_OBJECT

public:
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

    /// Everything made out since the start or the last clear_commands(), in order.
    const std::vector<Command>& commands() const { return m_commands; }

    /// The payloads of the framed commands among them, that is all but the probes.
    std::vector<QByteArray> payloads() const;

    /// Forgets them; the next command has the sequence 0 again.
    void clear_commands() { m_commands.clear(); }

    /// Every raw byte received, whatever the rate.
    QByteArray heard() const { return m_heard; }

    /// Asked for every command what to put on the line instead of its answer. The answer handed in
    /// is complete: a whole frame, the raw reply for a probe, empty where the device stays silent.
    /// No delivery drops it; the bytes of each of several deliveries can be read apart. An empty
    /// filter lets answers pass as they are.
    void set_reply_filter(ReplyFilter filter) { m_filter = std::move(filter); }

    /// Closes the line at both ends, as when the adapter is pulled out; drops what was still due.
    void unplug();

Q_SIGNALS:
    /// Sent before the answer goes out.
    void command_received(const sim::Command& command);

private:
    void hear(const QByteArray& bytes, unsigned int baud);
    std::vector<Delivery> reply_to(Exchange& exchange);
    void add_echo(const QByteArray& bytes, std::vector<std::vector<Delivery>>& replies);
    void post(const std::vector<Delivery>& reply);

    Options m_options;
    DeviceMemory m_memory;
    Bootloader m_bootloader;
    PseudoTerminal m_terminal;
    Outbox m_outbox;
    ReplyFilter m_filter;
    std::vector<Command> m_commands;
    QByteArray m_heard;
};

} // namespace sim
