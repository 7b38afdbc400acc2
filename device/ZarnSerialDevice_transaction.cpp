#include "device/ZarnSerialDevice.h"

#include <QDebug>
#include <QSignalBlocker>

namespace
{

constexpr char read_flash_command = 0x01;

/// A bootloader answers a flash read with a zero in place of the command's word count; putting the
/// count back makes the answer begin with its command like all others.
void repair_second_byte(const QByteArray& command, QByteArray& response)
{
    const bool second_is_zero = response.size() == 1 || response.at(1) == 0;
    if (response.at(0) == read_flash_command && second_is_zero && command.size() > 1) {
        response.resize(qMax(response.size(), 2));
        response[1] = command.at(1);
    }
}

/// Writes and erases are acknowledged by a byte alone, everything else by the command and its data.
bool is_answered_without_echo(char opcode)
{
    return opcode == 0x02 || opcode == 0x03 || opcode == 0x05;
}

bool strip_command(const QByteArray& command, QByteArray& response)
{
    if (response.startsWith(command)) {
        response.remove(0, command.size());
        return true;
    }
    return is_answered_without_echo(command.at(0));
}

} // namespace

void ZarnSerialDevice::rxdata()
{
    m_receive_buffer.append(m_port.readAll());
    if (is_terminated(m_receive_buffer)) {
        m_timer.stop();
        m_event_loop.exit(0);
    }
}

bool ZarnSerialDevice::read_until_terminated_or_timed_out(int timeout)
{
    if (timeout == 0) {
        return true;
    }
    m_timer.start(timeout);
    m_event_loop.exec();
    m_timer.stop();
    m_event_loop.exit();
    return is_terminated(m_receive_buffer);
}

void ZarnSerialDevice::discard_pending()
{
    if (m_port.isOpen()) {
        m_port.readAll();
    }
    m_receive_buffer.clear();
}

/// Gives the frame to the system now instead of at the next turn of the event loop. A line that has
/// no room at the moment is not a port in trouble: the rest goes out when there is room.
void ZarnSerialDevice::hand_over()
{
    const QSignalBlocker no_error_signal(m_port);
    m_port.flush();
}

/// A frame that the port did not take whole is not a failure by itself: the device will not
/// answer it, and the wait that follows finds out.
void ZarnSerialDevice::transmit(const QByteArray& frame)
{
    const auto written = static_cast<unsigned short>(m_port.write(frame));
    if (written != frame.size()) {
        qDebug() << "TX error, only wrote " << written << " bytes!";
        return;
    }
    hand_over();
    Q_EMIT sig_encoded_command(frame);
}

bool ZarnSerialDevice::send_and_receive(QByteArray command, QByteArray& response,
                                        unsigned short expected_response_length,
                                        unsigned char max_attempts, int timeout_secs)
{
    if (max_attempts == 0) {
        return error(QStringLiteral("max_attempts == 0 (nonsensical)"));
    }
    if (max_attempts != 1 && expected_response_length == 0) {
        return error(
            QStringLiteral("expected_response_length == 0 but max_attempts != 1 (nonsensical)"));
    }
    if (timeout_secs != 0 && expected_response_length == 0) {
        return error(
            QStringLiteral("expected_response_length == 0 but timeout_secs != 0 (nonsensical)"));
    }
    Q_EMIT sig_unencoded_command(command);
    QByteArray frame;
    if (!encode(command, frame)) {
        return false;
    }
    QString errors;
    for (int i = 0; i < max_attempts; ++i) {
        const QString fault =
            attempt(command, frame, response, expected_response_length, timeout_secs);
        if (fault.isEmpty()) {
            return true;
        }
        errors += fault;
    }
    return error(QStringLiteral("giving up after having made %1 attempts, with errors (%2)")
                     .arg(QString::number(max_attempts), errors));
}

/// One attempt; returns what went wrong, or nothing.
QString ZarnSerialDevice::attempt(const QByteArray& command, const QByteArray& frame,
                                  QByteArray& response, unsigned short expected_response_length,
                                  int timeout)
{
    discard_pending();
    transmit(frame);
    if (expected_response_length == 0) {
        return {};
    }
    if (!read_until_terminated_or_timed_out(timeout)) {
        return QStringLiteral("Response wait timed out\n");
    }
    if (m_half_duplex) {
        m_receive_buffer.remove(0, frame.size());
        if (!read_until_terminated_or_timed_out(timeout)) {
            return QStringLiteral("Half duplex response wait timed out\n");
        }
    }
    Q_EMIT sig_encoded_response(m_receive_buffer);
    if (!decode(m_receive_buffer, response)) {
        return QStringLiteral("Could not decode message\n");
    }
    m_receive_buffer.clear();
    repair_second_byte(command, response);
    Q_EMIT sig_decoded_response(response);
    if (!strip_command(command, response)) {
        return QStringLiteral(
            "response was not prefixed with the command but was supposed to be\n");
    }
    const auto length = static_cast<unsigned short>(response.size());
    if (length != expected_response_length) {
        return QStringLiteral("response contained %1 bytes, expected %2\n")
            .arg(length)
            .arg(expected_response_length);
    }
    return {};
}
