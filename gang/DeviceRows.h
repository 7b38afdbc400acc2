#pragma once

#include "profile/Profile.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace gang
{

/// The devices of a table, from its text. A row that the tool could not use is a problem here.
class DeviceRows
{
public:
    explicit DeviceRows(const QByteArray& table);

    /// One line each; the tool would end at the first of them.
    const QStringList& problems() const { return m_problems; }

    /// The device of a version, as the tool picks it; null if there is none. Owned by the rows.
    const Profile* find(unsigned short version) const;
    /// The only version of the table, if there is only one.
    std::optional<unsigned short> only_version() const;
    /// Where the devices' regions meet, all of them together.
    QSet<unsigned int> boundaries() const;

private:
    std::vector<std::unique_ptr<Profile>> m_devices;
    QStringList m_problems;
};

/// The lines of a table that describe the device of a version, as they are.
QByteArray rows_of(const QByteArray& table, unsigned short version);

} // namespace gang
