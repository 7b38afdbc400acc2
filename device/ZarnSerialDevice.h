#pragma once

#include "profile/Profile.h"

#include <QByteArray>
#include <QEventLoop>
#include <QObject>
#include <QSerialPort>
#include <QString>
#include <QTimer>

#include <optional>

class MemoryMap;
class QFile;

/// The one object through which the uploader talks to a device's bootloader: it owns the serial
/// port, knows the selected device profile and offers every device operation as a member.
///
/// Operations return success. A failing one reports its message once, through error(), and returns
/// false; whoever called it returns false in turn without repeating the text. Everything runs on
/// the calling thread, and only one operation may run at a time.
///
/// While an operation waits for the device, events are handled. A command or an entry procedure
/// that is started then fails at once, with a message, and does not disturb the one that waits. The
/// event loops must not be ended then, as QCoreApplication::quit() does: the waiting command or
/// entry procedure fails with a message and sends nothing more. Until the application's event loop
/// runs again, a command that would have to wait fails in the same way without being sent.
///
/// Addresses are byte addresses of the image unless said otherwise; the commands on the line carry
/// word addresses.
class ZarnSerialDevice : public QObject
{
    Q_OBJECT

public:
    /// Makes a device on the serial port `port`, which stays closed until the first command.
    /// `events`, which may be null, must let the port deliver its pending events; it is called
    /// while the entry procedure polls. `version` selects a profile at once unless it is 0.
    ZarnSerialDevice(QString port, void (*events)(), unsigned int baud, bool half_duplex,
                     unsigned short version);
    /// Closes the port; no command is sent.
    ~ZarnSerialDevice() override;

    // ---- the line -------------------------------------------------------------------------

    /// True at once when the port is open. One that has vanished since it was opened counts as open
    /// and silent until the entry procedure opens it again. Fails, with a message, for a port that
    /// is closed while the bootloader settles.
    bool open_port();
    /// Reports a message (debug channel and sig_error); always false.
    bool error(QString message);
    void process_events();
    /// Waits for new data to complete a frame in the receive buffer, at most `timeout`
    /// milliseconds. What the buffer already holds is not looked at before the wait. 0: true at
    /// once.
    bool read_until_terminated_or_timed_out(int timeout);
    /// One command: frames it, sends it and waits for the answer, up to `max_attempts` times.
    /// `response` receives the payload without the echo of the command;
    /// `expected_response_length` is its length in bytes (0: sent once, nothing is awaited).
    /// `timeout_secs` is, its name notwithstanding, a number of milliseconds per wait.
    bool send_and_receive(QByteArray command, QByteArray& response,
                          unsigned short expected_response_length, unsigned char max_attempts,
                          int timeout_secs);

    static bool needs_escaping(char byte);
    static bool is_terminated(QByteArray buffer);
    /// False, with `frame` untouched and nothing reported, for an empty command.
    static bool encode(QByteArray command, QByteArray& frame);
    bool decode(QByteArray frame, QByteArray& payload);

    // ---- identification ---------------------------------------------------------------------

    /// Asks a running bootloader at the port's present rate. `version` must not be null.
    bool request_bootloader_version(unsigned short* version);
    /// Selects the profile of `version` and its baud rate; keeps the old one when there is none.
    bool set_bootloader_version(unsigned short version);
    /// Selects a profile that need not be in the registry, and its baud rate. It must outlive the
    /// device.
    void select_profile(const Profile& profile);
    /// The selected profile's version, or 0; nothing is sent.
    unsigned short get_bootloader_version();
    bool is_half_duplex() const;
    unsigned int get_attr(Profile::Attr attr) const;
    QString get_name() const;
    /// The selected profile; null until one is selected.
    const Profile* profile() const;
    /// Catches a bootloader that is starting (9600 baud) or finds one that is running (460800
    /// baud) and selects its profile. `version`, which may be null, receives what it answered even
    /// when no profile matches.
    bool QV_entry_procedure(unsigned short* version);
    void reset();

    // ---- memory commands; all need a selected profile ---------------------------------------

    /// Fills `data` with whole filler (erased-state) words: at least `num_bytes` bytes, rounded up
    /// to words; empty for a memory without words, or when that is more than a byte array holds.
    void initialize_array(unsigned int num_bytes, QByteArray& data, MemoryType type) const;
    /// Reads `num_bytes` bytes of one memory from `address` on into `data`.
    bool read_memory(unsigned int address, unsigned int num_bytes, QByteArray& data);
    /// Writes one flash row, or whole EEPROM rows, at `address`.
    bool write_memory(unsigned int address, QByteArray data);
    /// Erases `count` flash pages from `address` on.
    bool erase_flash(unsigned int address, unsigned char count);

    // ---- operations on whole memories; all need a selected profile --------------------------
    // The two area flags leave out flash of the encrypted or the unencrypted area when false.
    // `abort_requested` is polled between rows.

    bool erase_all(bool include_encrypted, bool include_unencrypted);
    /// Erases the pages from `start_address` to `end_address`, the latter's page included.
    bool erase_range(bool include_encrypted, bool include_unencrypted, unsigned int start_address,
                     unsigned int end_address);
    bool write(const MemoryMap* map, const bool& abort_requested, bool include_encrypted,
               bool include_unencrypted);
    /// Writes what of flash and EEPROM lies in [start_address, end_address).
    bool write_range(const MemoryMap* map, unsigned int start_address, unsigned int end_address,
                     const bool& abort_requested, bool include_encrypted, bool include_unencrypted);
    /// Reads flash and EEPROM and saves them as an Intel HEX file under the name of `file`, which
    /// is used for nothing else.
    bool read(QFile& file, const bool& abort_requested, bool include_encrypted,
              bool include_unencrypted);
    /// The same for what lies in [start_address, end_address).
    bool read_range(QFile& file, const bool& abort_requested, bool include_encrypted,
                    bool include_unencrypted, unsigned int start_address, unsigned int end_address);
    /// Compares the device with the image, row by row.
    bool verify_firmware(const MemoryMap* map, const bool& abort_requested, bool include_encrypted,
                         bool include_unencrypted);
    /// Erases, writes and reads back the flash pages that differ from the image (every page that
    /// it touches when `skip_compare`), then writes its EEPROM rows.
    bool write_with_verify(const MemoryMap* map, const bool& abort_requested,
                           bool include_encrypted, bool include_unencrypted, bool skip_compare);

Q_SIGNALS:
    void sig_error(QString error);
    void sig_unencoded_command(QByteArray command);
    void sig_encoded_command(QByteArray command);
    void sig_encoded_response(QByteArray response);
    void sig_decoded_response(QByteArray response);
    void sig_verify_progress(unsigned int processed_byte_count, unsigned int total_byte_count);
    void sig_upload_progress(unsigned int processed_byte_count, unsigned int total_byte_count);
    void sig_download_progress(unsigned int processed_byte_count, unsigned int total_byte_count);
    void sig_operation_complete();

private:
    Q_SLOT void rxdata();

    /// The outcome of a wait for the device. `Ended`: the event loops were ended.
    enum class Wait { FrameComplete, TimedOut, Ended };
    /// The outcome of an attempt at a command. `Ended`: the wait for an answer has been ended.
    enum class Attempt { Succeeded, Failed, Ended };

    // The line.
    void look_after_port(QSerialPort::SerialPortError error);
    void discard_pending();
    void transmit(const QByteArray& frame);
    void hand_over();

    // Waiting.
    bool refuse_within_a_wait();
    bool refuse_after_an_ended_wait();
    bool fail_for_ended_wait();
    Wait run_event_loop(int timeout);
    Wait wait_for_frame(int timeout);

    // The transaction. `errors` takes a line for each attempt that fails.
    Attempt attempt(const QByteArray& command, const QByteArray& frame, QByteArray& response,
                    unsigned short expected_response_length, int timeout, QString& errors);
    Wait wait_for_response(const QByteArray& frame, int timeout, QString& errors);
    std::optional<QString> accept_response(const QByteArray& command, QByteArray& response,
                                           unsigned short expected_response_length);

    // Entry.
    bool open_anew(qint32 baud);
    void deliver_events();
    std::optional<QByteArray> probe_for_version();
    std::optional<QByteArray> catch_starting_bootloader();
    bool let_bootloader_settle();

    QSerialPort m_port;
    bool m_has_vanished = false; ///< the port was open and is gone
    bool m_is_waiting = false;   ///< for the device; events are handled meanwhile
    bool m_was_ended = false;    ///< the latest wait, from outside
    void (*m_process_events)();
    bool m_half_duplex = false;
    unsigned int m_baud;
    QByteArray m_receive_buffer;
    QEventLoop m_event_loop;
    QTimer m_timer;
    const Profile* m_profile = nullptr;
    bool m_profile_selected = false;
};
