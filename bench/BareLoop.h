#pragma once

#include <string>

/// The minimal host, on system calls alone: it writes a command's frame, polls, and reads until an
/// answer frame is complete. Whatever an uploader needs beyond that is the uploader's own cost. The
/// two share no code.
class BareLoop
{
public:
    /// Throws std::system_error when the port cannot be opened or set up.
    BareLoop(const std::string& port_path, unsigned int baud);
    ~BareLoop();
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

    /// Sends `payload` in a frame; returns the answer's payload. Throws std::runtime_error when no
    /// valid answer arrives within 300 ms.
    std::string exchange(const std::string& payload);

    /// Reads `size` bytes of flash from `address` on, in rows of 256 bytes with words of 4 bytes.
    std::string read_flash(unsigned int address, unsigned int size);
    /// Writes `data` in the same rows.
    void write_flash(unsigned int address, const std::string& data);

private:
    std::string receive();

    int m_port;
};
