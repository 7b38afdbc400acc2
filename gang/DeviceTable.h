#pragma once

#include "inspect/TableFile.h"
#include "profile/Profile.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>

#include <vector>

namespace gang
{

/// The device table as it was when the gang began.
class DeviceTable
{
public:
    /// Takes the file in; the inspection works on `copy`, which is made.
    DeviceTable(const QString& path, const QString& copy);

    bool is_readable() const { return m_reason.isEmpty(); }

    const QByteArray& contents() const { return m_contents; }

    /// In hexadecimal; empty if the table cannot be read.
    QString sha256() const { return m_sha256; }

    /// The lines that describe the device of a version, as they are.
    QByteArray rows_of(unsigned short version) const;

    /// The device of a version, as the tool picks it; null if there is none. Owned by the table.
    const Profile* find(unsigned short version) const;
    /// All devices that the tool would pick for some version. Owned by the table.
    std::vector<const Profile*> devices() const;
    /// Where the devices' regions meet, all of them together.
    QSet<unsigned int> boundaries() const;

    /// What stops a gang whose devices have these versions, any version if there are none; one line
    /// each. `alone`: the runs get no rows but those.
    QStringList problems(const QSet<unsigned short>& versions, bool alone) const;

private:
    bool concerns(const inspect::Problem& problem, const QSet<unsigned short>& versions,
                  bool alone) const;

    QString m_path;
    QString m_reason; ///< why it cannot be read
    QByteArray m_contents;
    QString m_sha256;
    inspect::TableFile m_table;
};

unsigned short version_of(const Profile& device);

} // namespace gang
