#include "sim/line/PseudoTerminal.h"

#include "sim/line/LineRate.h"
#include "sim/line/PortLock.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace sim
{

namespace
{

int checked(int result, const char* what)
{
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return result;
}

Descriptor open_master()
{
    Descriptor master(checked(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC),
                              "cannot create a pseudo-terminal"));
    checked(::grantpt(master.get()), "cannot set the permissions of the pseudo-terminal");
    checked(::unlockpt(master.get()), "cannot unlock the pseudo-terminal");
    return master;
}

QString slave_path(const Descriptor& master)
{
    std::array<char, 64> name{};
    if (::ptsname_r(master.get(), name.data(), name.size()) != 0) {
        throw std::system_error(errno, std::generic_category(),
                                "cannot find the path of the pseudo-terminal");
    }
    return QString::fromLocal8Bit(name.data());
}

/// A host whose port has vanished frees its number a moment before it removes its lock file. A new
/// port of that number could not be opened in between, so locked numbers are skipped.
Descriptor open_master_without_lock()
{
    std::vector<Descriptor> passed_over;
    Descriptor master = open_master();
    for (int tries = 1; tries < 64 && has_port_lock(slave_path(master)); ++tries) {
        passed_over.push_back(std::move(master));
        master = open_master();
    }
    return master;
}

Descriptor open_slave(const QString& path)
{
    return Descriptor(checked(::open(path.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC),
                              "cannot open the pseudo-terminal"));
}

void make_raw(const Descriptor& slave)
{
    termios settings{};
    checked(::tcgetattr(slave.get(), &settings), "cannot read the settings of the pseudo-terminal");
    ::cfmakeraw(&settings);
    checked(::tcsetattr(slave.get(), TCSANOW, &settings),
            "cannot change the settings of the pseudo-terminal");
}

bool try_again_later()
{
    return errno == EAGAIN || errno == EINTR;
}

} // namespace

PseudoTerminal::PseudoTerminal()
    : m_master(open_master_without_lock()),
      m_path(slave_path(m_master)),
      m_slave(open_slave(m_path)),
      m_closings(m_path)
{
    make_raw(m_slave);
    m_readable = std::make_unique<QSocketNotifier>(m_master.get(), QSocketNotifier::Read);
    m_writable = std::make_unique<QSocketNotifier>(m_master.get(), QSocketNotifier::Write);
    m_writable->setEnabled(false);
    connect(m_readable.get(), &QSocketNotifier::activated, this, &PseudoTerminal::read_available);
    connect(&m_closings, &CloseWatch::closed, this, &PseudoTerminal::release_port);
    connect(m_writable.get(), &QSocketNotifier::activated, this, &PseudoTerminal::write_pending);
}

PseudoTerminal::~PseudoTerminal()
{
    unplug();
}

unsigned int PseudoTerminal::host_baud() const
{
    return m_master.is_open() ? line_rate(m_master.get()) : 0;
}

bool PseudoTerminal::host_has_unread() const
{
    int waiting = 0;
    const bool known = m_slave.is_open() && ::ioctl(m_slave.get(), FIONREAD, &waiting) == 0;
    return !m_pending.isEmpty() || (known && waiting > 0);
}

void PseudoTerminal::set_listening(bool listening)
{
    if (m_master.is_open() && m_readable->isEnabled() != listening) {
        m_readable->setEnabled(listening);
    }
}

void PseudoTerminal::write(const QByteArray& bytes)
{
    if (!m_master.is_open()) {
        return;
    }
    m_pending.append(bytes);
    write_pending();
}

void PseudoTerminal::unplug()
{
    m_readable->setEnabled(false);
    m_writable->setEnabled(false);
    m_pending.clear();
    m_slave.close();
    m_master.close();
}

void PseudoTerminal::read_available()
{
    std::array<char, 4096> buffer{};
    const unsigned int baud = host_baud();
    const ssize_t count = ::read(m_master.get(), buffer.data(), buffer.size());
    if (count > 0) {
        release_port();
        Q_EMIT received(QByteArray(buffer.data(), static_cast<int>(count)), baud);
    } else if (count == 0 || !try_again_later()) {
        // No more data can arrive; an enabled notifier would only keep a core busy.
        unplug();
    }
}

/// A host claims its port for itself, and a host that is killed never gives it back. On a real port
/// the last close does; here this end stays open, so the claim is lifted when a host closes its
/// port and, where that can't be noticed, while it is there.
void PseudoTerminal::release_port()
{
    ::ioctl(m_slave.get(), TIOCNXCL);
}

void PseudoTerminal::write_pending()
{
    while (!m_pending.isEmpty()) {
        const ssize_t count = ::write(m_master.get(), m_pending.constData(),
                                      static_cast<std::size_t>(m_pending.size()));
        if (count <= 0) {
            break;
        }
        m_pending.remove(0, static_cast<int>(count));
    }
    m_writable->setEnabled(!m_pending.isEmpty());
}

} // namespace sim
