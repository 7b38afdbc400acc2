// The device object and its port: opening it, reporting, and handling its errors. A port that
// has vanished counts as open and silent, so that nothing is sent to another device that may have
// been given its name.

#include "device/ZarnSerialDevice.h"

#include "util/Platform.h"

#include <QDebug>

ZarnSerialDevice::ZarnSerialDevice(QString port, void (*events)(), unsigned int baud,
                                   bool half_duplex, unsigned short version)
    : m_process_events(events),
      m_half_duplex(half_duplex),
      m_baud(baud)
{
    m_timer.setSingleShot(true);
    // A coarse timer may fire early by a twentieth of the wait and cut off an answer.
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, &m_event_loop, &QEventLoop::quit);
    connect(&m_port, &QSerialPort::readyRead, this, &ZarnSerialDevice::rxdata);
    // Queued: the port must not be closed from within its own notification.
    connect(
        &m_port, &QSerialPort::errorOccurred, this,
        [this](QSerialPort::SerialPortError error) { look_after_port(error); },
        Qt::QueuedConnection);
    m_port.setPortName(port);
    m_port.setBaudRate(static_cast<qint32>(m_baud));
    if (version != 0) {
        set_bootloader_version(version);
    }
}

ZarnSerialDevice::~ZarnSerialDevice() = default;

bool ZarnSerialDevice::open_port()
{
    if (m_port.isOpen() || m_has_vanished) {
        return true;
    }
    if (refuse_within_a_wait()) {
        return false;
    }
    return m_port.open(QIODevice::ReadWrite) ||
           error(QStringLiteral("cannot open port %1 (%2)")
                     .arg(m_port.portName(), m_port.errorString()));
}

bool ZarnSerialDevice::error(QString message)
{
    qDebug() << message;
    Q_EMIT sig_error(message);
    return false;
}

void ZarnSerialDevice::process_events()
{
    if (m_process_events != nullptr) {
        m_process_events();
    }
}

/// The notifier of a port that is gone fires endlessly and would keep a core busy through every
/// wait that follows. A closed port is silent, so the rest of the run sees a device that does not
/// answer. The port counts as open: its name may belong to another device by now.
///
/// A port that is still there may also report an error, such as when another process reads a byte
/// from it. Some errors stop its notifications until it is read.
///
/// The error code does not distinguish the two, and it may belong to an earlier opening of the
/// port.
void ZarnSerialDevice::look_after_port(QSerialPort::SerialPortError error)
{
    const bool concerns_line = error == QSerialPort::ReadError ||
                               error == QSerialPort::WriteError ||
                               error == QSerialPort::ResourceError;
    if (!concerns_line || !m_port.isOpen()) {
        return;
    }
    if (Platform::has_hung_up(qintptr(m_port.handle()))) {
        m_has_vanished = true;
        m_port.close();
    } else {
        rxdata();
    }
}
