#pragma once

#include <QString>

namespace sim
{

class DeviceMemory;

/// A device's memory between two runs: a text file with a title line that names the device, a line
/// for each sixteen or fewer bytes that are not erased, and an end line. Unlike an Intel HEX file
/// it can hold every address of a device, and an incomplete file is detected.
class StateFile
{
public:
    /// `version` is the device's; the state of another one is refused.
    StateFile(const QString& path, unsigned int version) : m_path(path), m_version(version) {}

    /// Presets the memory; without a file it stays as it is. Throws Error when the
    /// file can't be read, is not whole, or belongs to another device.
    void load(DeviceMemory& memory) const;
    /// Replaces the file, or leaves it as it was and throws Error.
    void save(const DeviceMemory& memory) const;

private:
    QString m_path;
    unsigned int m_version;
};

} // namespace sim
