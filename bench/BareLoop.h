#pragma once

#include <string>

/// A host that does what no host can do without, on nothing but system calls: it writes a request
/// frame, polls, and reads until an answer frame is complete. What an uploader needs beside it is
/// the uploader's own cost. It shares no code with the uploader.
class BareLoop
{
public:
    /// Throws std::system_error when the port cannot be opened or set up.
    BareLoop(const std::string& port_path, unsigned int baud);
    ~BareLoop();
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

    /// Sends `payload` in a frame; returns the answer's payload. Throws std::runtime_error when no
    /// sound answer comes within 300 ms.
    std::string exchange(const std::string& payload);

    /// Reads `size` bytes of flash from `address` on, in rows of 256 bytes with words of 4 bytes.
    std::string read_flash(unsigned int address, unsigned int size);
    /// Writes them, row by row.
    void write_flash(unsigned int address, const std::string& data);

private:
    std::string receive();

    int m_port;
};
