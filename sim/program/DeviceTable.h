#pragma once

#include "profile/Profile.h"

#include <QString>
#include <QStringList>

#include <map>
#include <memory>
#include <optional>

namespace sim
{

/// The devices of a profile table by bootloader version, later rows replacing earlier ones.
class DeviceTable
{
public:
    /// Reads the table. Throws Error if it cannot be read or has a bad row.
    explicit DeviceTable(const QString& path);

    /// One line per device in ascending order: the version as four hexadecimal digits, the name.
    QStringList listing() const;
    /// The device of this version; without a version, the only one there is. Throws Error
    /// when there is no such device, or when there are several to choose from.
    const Profile& choose(std::optional<unsigned short> version) const;

private:
    void add(const QStringList& fields);

    QString m_path;
    std::map<unsigned short, std::unique_ptr<Profile>> m_profiles;
};

} // namespace sim
