// One command and its answer: the frame goes out, the event loop runs until an answer is complete
// or the timeout expires, and errors are collected until the attempts are used up. A wait never
// looks at what is already in the buffer, so an echo and an answer that arrive together cost the
// whole wait. The rules: docs/protocol.md.

#include "device/Protocol.h"
#include "device/Reason.h"
#include "device/ZarnSerialDevice.h"

#include <QDebug>
#include <QScopedValueRollback>
#include <QSignalBlocker>

namespace
{

/// A command without an answer is sent once and not waited for.
Reason check_arguments(unsigned short expected_response_length, unsigned char max_attempts,
                       int timeout)
{
    if (max_attempts == 0) {
        return QStringLiteral("max_attempts == 0 (nonsensical)");
    }
    if (max_attempts != 1 && expected_response_length == 0) {
        return QStringLiteral("expected_response_length == 0 but max_attempts != 1 (nonsensical)");
    }
    if (timeout != 0 && expected_response_length == 0) {
        return QStringLiteral("expected_response_length == 0 but timeout_secs != 0 (nonsensical)");
    }
    return std::nullopt;
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
    return timeout == 0 ||
           (!refuse_within_a_wait() && wait_for_frame(timeout) == Wait::FrameComplete);
}

/// A second command would take the response of the first one.
bool ZarnSerialDevice::refuse_within_a_wait()
{
    if (m_is_waiting) {
        error(QStringLiteral("cannot begin a command while another waits for its answer"));
    }
    return m_is_waiting;
}

/// Once the event loops are ended, those that begin later also end at once, until the application's
/// own runs again.
bool ZarnSerialDevice::refuse_after_an_ended_wait()
{
    return m_was_ended && run_event_loop(0) == Wait::Ended && !fail_for_ended_wait();
}

bool ZarnSerialDevice::fail_for_ended_wait()
{
    return error(QStringLiteral("the wait for the device was ended from outside"));
}

/// Handles events until data completes a frame, the timeout expires or the event loops are ended,
/// which leaves the timer running.
ZarnSerialDevice::Wait ZarnSerialDevice::run_event_loop(int timeout)
{
    const QScopedValueRollback<bool> waiting(m_is_waiting, true);
    m_timer.start(timeout);
    m_event_loop.exec();
    m_was_ended = m_timer.isActive();
    m_timer.stop();
    m_event_loop.exit();
    return m_was_ended ? Wait::Ended : Wait::TimedOut;
}

ZarnSerialDevice::Wait ZarnSerialDevice::wait_for_frame(int timeout)
{
    if (timeout == 0) {
        return Wait::FrameComplete;
    }
    const Wait wait = run_event_loop(timeout);
    return is_terminated(m_receive_buffer) ? Wait::FrameComplete : wait;
}

void ZarnSerialDevice::discard_pending()
{
    if (m_port.isOpen()) {
        m_port.readAll();
    }
    m_receive_buffer.clear();
}

/// Writes the frame to the system now instead of at the next turn of the event loop. A line that
/// has no room at the moment is not an error: the rest is sent when there is room.
void ZarnSerialDevice::hand_over()
{
    const QSignalBlocker no_error_signal(m_port);
    m_port.flush();
}

/// A frame that the port did not accept in full is not reported as a failure: the device does not
/// answer it, and the wait that follows times out.
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
    if (const auto reason = check_arguments(expected_response_length, max_attempts, timeout_secs)) {
        return error(*reason);
    }
    if (refuse_within_a_wait() || (timeout_secs != 0 && refuse_after_an_ended_wait())) {
        return false;
    }
    Q_EMIT sig_unencoded_command(command);
    QByteArray frame;
    if (!encode(command, frame)) {
        return false;
    }
    QString errors;
    for (int i = 0; i < max_attempts; ++i) {
        switch (attempt(command, frame, response, expected_response_length, timeout_secs, errors)) {
        case Attempt::Succeeded:
            return true;
        case Attempt::Ended:
            return fail_for_ended_wait();
        case Attempt::Failed:
            break;
        }
    }
    return error(QStringLiteral("giving up after having made %1 attempts, with errors (%2)")
                     .arg(QString::number(max_attempts), errors));
}

/// Appends to `errors` what went wrong.
ZarnSerialDevice::Attempt ZarnSerialDevice::attempt(const QByteArray& command,
                                                    const QByteArray& frame, QByteArray& response,
                                                    unsigned short expected_response_length,
                                                    int timeout, QString& errors)
{
    discard_pending();
    transmit(frame);
    if (expected_response_length == 0) {
        return Attempt::Succeeded;
    }
    switch (wait_for_response(frame, timeout, errors)) {
    case Wait::Ended:
        return Attempt::Ended;
    case Wait::TimedOut:
        return Attempt::Failed;
    case Wait::FrameComplete:
        break;
    }
    const Reason reason = accept_response(command, response, expected_response_length);
    errors += reason.value_or(QString());
    return reason ? Attempt::Failed : Attempt::Succeeded;
}

/// On a half duplex line the frame itself comes back first.
ZarnSerialDevice::Wait ZarnSerialDevice::wait_for_response(const QByteArray& frame, int timeout,
                                                           QString& errors)
{
    const Wait first = wait_for_frame(timeout);
    if (first == Wait::TimedOut) {
        errors += QStringLiteral("Response wait timed out\n");
    }
    if (first != Wait::FrameComplete || !m_half_duplex) {
        return first;
    }
    m_receive_buffer.remove(0, frame.size());
    const Wait second = wait_for_frame(timeout);
    if (second == Wait::TimedOut) {
        errors += QStringLiteral("Half duplex response wait timed out\n");
    }
    return second;
}

/// Takes the response out of the receive buffer.
Reason ZarnSerialDevice::accept_response(const QByteArray& command, QByteArray& response,
                                         unsigned short expected_response_length)
{
    Q_EMIT sig_encoded_response(m_receive_buffer);
    if (!decode(m_receive_buffer, response)) {
        return QStringLiteral("Could not decode message\n");
    }
    m_receive_buffer.clear();
    protocol::repair_second_byte(command, response);
    Q_EMIT sig_decoded_response(response);
    if (!protocol::strip_command(command, response)) {
        return QStringLiteral(
            "response was not prefixed with the command but was supposed to be\n");
    }
    const auto length = static_cast<unsigned short>(response.size());
    if (length != expected_response_length) {
        return QStringLiteral("response contained %1 bytes, expected %2\n")
            .arg(length)
            .arg(expected_response_length);
    }
    return std::nullopt;
}
