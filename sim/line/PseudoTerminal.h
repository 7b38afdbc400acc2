#pragma once

#include "sim/line/CloseWatch.h"
#include "sim/line/Descriptor.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

class QSocketNotifier;

namespace sim
{

/// The device's end of a pseudo-terminal whose other end is the host's serial port.
///
/// The host's end is raw from the start and is also kept open here, so that a host may close and
/// reopen its port, or die, without a hang-up. Needs an event loop on the thread it lives on.
class PseudoTerminal : public QObject
{
    Q_OBJECT

public:
    /// Throws std::system_error if the system provides no pseudo-terminal.
    PseudoTerminal();
    ~PseudoTerminal() override;

    /// Where the host finds its port; stays known after unplug().
    QString path() const { return m_path; }

    bool is_plugged_in() const { return m_master.is_open(); }

    /// The rate that the host has set, custom rates included; 0 once unplugged.
    unsigned int host_baud() const;
    /// Whether the host has bytes waiting that it has not read yet.
    bool host_has_unread() const;

    /// Bytes that the terminal has had no room for.
    qint64 pending_bytes() const { return m_pending.size(); }

    /// While not listening, what the host sends stays where it is until the host has to wait.
    void set_listening(bool listening);

    /// Puts bytes on the line. What the terminal has no room for is kept and sent later.
    void write(const QByteArray& bytes);
    /// Closes both ends and drops what was still to be written: the host's port vanishes.
    void unplug();

Q_SIGNALS:
    /// Bytes came from the host. `baud` is the rate in force when they were read here, which is not
    /// the rate they were sent at if the host changed it in between.
    void received(const QByteArray& bytes, unsigned int baud);

private:
    void read_available();
    void release_port();
    void write_pending();

    Descriptor m_master;
    QString m_path;
    Descriptor m_slave;
    CloseWatch m_closings; ///< of the host's end, except this one's
    QByteArray m_pending;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable;
};

} // namespace sim
