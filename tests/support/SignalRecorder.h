#pragma once

#include <QObject>

#include <string>
#include <vector>

class ZarnSerialDevice;

namespace test
{

/// Records all nine signals of a device in order, one line for each: the signal's name and its
/// arguments, bytes as hexadecimal digits.
class SignalRecorder
{
public:
    using Lines = std::vector<std::string>;

    explicit SignalRecorder(const ZarnSerialDevice& device);

    const Lines& lines() const { return m_lines; }

    /// All but the four signals that report the bytes on the line.
    Lines operation() const;

    void clear() { m_lines.clear(); }

private:
    QObject m_receiver; ///< ends the connections
    Lines m_lines;
};

} // namespace test
