#pragma once

#include <QByteArray>
#include <QString>

/// A host that does what no host can do without: it writes a request frame, polls, and reads until
/// an answer frame is complete. What an uploader needs beside it is the uploader's own cost.
class BareLoop
{
public:
    /// Throws std::system_error when the port cannot be opened or set up.
    BareLoop(const QString& port_path, unsigned int baud);
    ~BareLoop();
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

    /// Sends `payload` in a frame; returns the answer's payload without its echo of `payload`.
    /// Throws std::runtime_error when no sound answer comes within 300 ms.
    QByteArray exchange(const QByteArray& payload);

    /// Reads `size` bytes of flash from `address` on, in rows of 256 bytes with words of 4 bytes.
    QByteArray read_flash(unsigned int address, unsigned int size);
    /// Writes them, row by row.
    void write_flash(unsigned int address, const QByteArray& data);

private:
    const QByteArray& receive();

    int m_port;
    QByteArray m_heard;
};
