// Which device it is: the version selects a profile, and the profile the rate of the line. The
// entry procedure catches a bootloader that is starting, or finds one that runs already; it polls,
// and handles no events itself. The probe and its reply are not frames: docs/protocol.md, "Entry".

#include "device/Protocol.h"
#include "device/ZarnSerialDevice.h"
#include "profile/Profiles.h"
#include "util/Util.h"

#include <QDeadlineTimer>
#include <QDebug>
#include <QScopedValueRollback>
#include <QThread>

namespace
{

constexpr int entry_passes = 5;
constexpr int probes_per_pass = 5;
constexpr int probe_wait_ms = 200;
/// The pause between two polls of the line: short compared with a reply, long compared with a poll.
constexpr unsigned long probe_pause_us = 1000;
constexpr qint32 running_baud = 460800;

/// The two version bytes after the marker in whatever a starting bootloader sent, once both are in.
std::optional<QByteArray> find_entry_reply(const QByteArray& received)
{
    const int marker = received.indexOf("QV");
    if (marker < 0 || received.size() - marker < 4) {
        return std::nullopt;
    }
    return received.mid(marker + 2, 2);
}

} // namespace

bool ZarnSerialDevice::request_bootloader_version(unsigned short* version)
{
    QByteArray response;
    if (!open_port() ||
        !send_and_receive(protocol::version_request(), response, protocol::version_length,
                          protocol::attempts, protocol::timeout_ms)) {
        return false;
    }
    *version = protocol::version_in(response);
    return set_bootloader_version(*version);
}

bool ZarnSerialDevice::set_bootloader_version(unsigned short version)
{
    const Profile* profile =
        Profiles::has_profile(version) ? Profiles::get_profile(version) : nullptr;
    if (profile == nullptr) {
        return error(QStringLiteral("no profile for device (bootloader version = %1)")
                         .arg(Util::uint_to_hex<unsigned int>(version, 4)));
    }
    select_profile(*profile);
    return true;
}

void ZarnSerialDevice::select_profile(const Profile& profile)
{
    m_profile = &profile;
    m_baud = get_attr(Profile::max_baud);
    m_port.setBaudRate(static_cast<qint32>(m_baud));
    m_profile_selected = true;
}

unsigned short ZarnSerialDevice::get_bootloader_version()
{
    if (!m_profile_selected) {
        return 0;
    }
    qDebug() << "Existing bldr";
    return static_cast<unsigned short>(get_attr(Profile::bootloader_version));
}

bool ZarnSerialDevice::is_half_duplex() const
{
    return m_half_duplex;
}

unsigned int ZarnSerialDevice::get_attr(Profile::Attr attr) const
{
    return m_profile->attributes.at(static_cast<std::size_t>(attr));
}

QString ZarnSerialDevice::get_name() const
{
    return m_profile->name;
}

const Profile* ZarnSerialDevice::profile() const
{
    return m_profile;
}

bool ZarnSerialDevice::QV_entry_procedure(unsigned short* version)
{
    if (refuse_within_a_wait()) {
        return false;
    }
    unsigned short found = 0;
    unsigned short& answer = version == nullptr ? found : *version;
    for (int pass = 0; pass < entry_passes; ++pass) {
        qDebug() << "Trying 0x55 9600 baud\n";
        if (!open_anew(protocol::starting_baud)) {
            return false;
        }
        if (const auto reply = catch_starting_bootloader()) {
            answer = protocol::version_in(*reply);
            return let_bootloader_settle() && set_bootloader_version(answer);
        }
        qDebug() << "Trying version command 460800 baud\n";
        if (!open_anew(running_baud)) {
            return false;
        }
        QByteArray response;
        if (send_and_receive(protocol::version_request(), response, protocol::version_length,
                             protocol::entry_attempts, protocol::entry_timeout_ms)) {
            answer = protocol::version_in(response);
            return set_bootloader_version(answer);
        }
        if (m_was_ended) {
            return false;
        }
    }
    return false;
}

/// Entry identifies the device, so a port that has vanished may come back with a different one.
bool ZarnSerialDevice::open_anew(qint32 baud)
{
    m_has_vanished = false;
    m_port.setBaudRate(baud);
    return open_port();
}

/// What an earlier probe's answer left in the buffer counts: a reply may come in pieces.
std::optional<QByteArray> ZarnSerialDevice::catch_starting_bootloader()
{
    discard_pending();
    for (int probe = 0; probe < probes_per_pass; ++probe) {
        if (auto reply = probe_for_version()) {
            return reply;
        }
    }
    return std::nullopt;
}

std::optional<QByteArray> ZarnSerialDevice::probe_for_version()
{
    const QDeadlineTimer deadline(probe_wait_ms, Qt::PreciseTimer);
    m_port.write(&protocol::entry_probe, 1);
    while (!deadline.hasExpired()) {
        deliver_events();
        if (auto reply = find_entry_reply(m_receive_buffer)) {
            return reply;
        }
        QThread::usleep(probe_pause_us);
    }
    return std::nullopt;
}

void ZarnSerialDevice::deliver_events()
{
    const QScopedValueRollback<bool> waiting(m_is_waiting, true);
    process_events();
}

/// The port stays closed; the next command opens it at the profile's rate.
bool ZarnSerialDevice::let_bootloader_settle()
{
    m_event_loop.exit();
    m_port.close();
    m_has_vanished = false;
    m_receive_buffer.clear();
    return run_event_loop(protocol::settle_ms) == Wait::TimedOut || fail_for_ended_wait();
}

void ZarnSerialDevice::reset()
{
    QByteArray response;
    if (open_port()) {
        send_and_receive(protocol::reset(), response, 0, 1, 0);
    }
}
