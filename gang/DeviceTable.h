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

/// The device table as it was when the gang started.
class DeviceTable
{
public:
    /// Reads the file and inspects a copy of it, which is written to `copy`. A table that cannot be
    /// read or copied leaves is_readable() false.
    DeviceTable(const QString& path, const QString& copy);

    bool is_readable() const { return m_reason.isEmpty(); }

    const QByteArray& contents() const { return m_contents; }

    /// In lower-case hexadecimal; empty if the table cannot be read.
    QString sha256() const { return m_sha256; }

    /// Returns the lines of the table for a bootloader version, unchanged.
    QByteArray rows_of(unsigned short version) const;

    /// Returns the device that zserial selects for a version; null if there is none. Owned by the
    /// table.
    const Profile* find(unsigned short version) const;
    /// Returns every device that zserial selects for some version. Owned by the table.
    std::vector<const Profile*> devices() const;
    /// Returns the region boundaries of all devices together.
    QSet<unsigned int> boundaries() const;

    /// Returns the problems that stop a gang for devices of these versions, one line each; an empty
    /// set stands for any version. `alone`: the runs get the rows of these versions only.
    QStringList problems(const QSet<unsigned short>& versions, bool alone) const;

private:
    bool concerns(const inspect::Problem& problem, const QSet<unsigned short>& versions,
                  bool alone) const;

    QString m_path;
    QString m_reason; ///< why it cannot be read; empty if it can
    QByteArray m_contents;
    QString m_sha256;
    inspect::TableFile m_table;
};

unsigned short version_of(const Profile& device);

} // namespace gang
