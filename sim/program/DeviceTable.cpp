#include "sim/program/DeviceTable.h"

#include "profile/ProfileTable.h"
#include "sim/device/Error.h"
#include "sim/rig/InputFile.h"
#include "util/Util.h"

#include <QException>
#include <QFile>

namespace sim
{

namespace
{

QString four_digits(unsigned short version)
{
    return Util::uint_to_hex(static_cast<unsigned int>(version), 4);
}

} // namespace

DeviceTable::DeviceTable(const QString& path) : m_path(path)
{
    refuse_device(path);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw Error(QStringLiteral("cannot read the table %1: %2").arg(path, file.errorString()));
    }
    while (const auto line = read_profile_table_line(file)) {
        if (line->kind == ProfileTableLine::Kind::Unparsable) {
            throw Error(QStringLiteral("the table %1 has a row that does not begin with a version")
                            .arg(path));
        }
        if (line->kind == ProfileTableLine::Kind::Row) {
            add(line->fields);
        }
    }
}

void DeviceTable::add(const QStringList& fields)
{
    try {
        auto profile = std::make_unique<Profile>(fields);
        const unsigned int version = profile->attributes[Profile::bootloader_version];
        m_profiles[static_cast<unsigned short>(version & 0xFFFFU)] = std::move(profile);
    } catch (const QException&) {
        throw Error(QStringLiteral("the table %1 has a bad row for version %2")
                        .arg(m_path, fields.first()));
    }
}

QStringList DeviceTable::listing() const
{
    QStringList lines;
    for (const auto& [version, profile] : m_profiles) {
        lines.append(QStringLiteral("%1 %2").arg(four_digits(version), profile->name));
    }
    return lines;
}

const Profile& DeviceTable::choose(std::optional<unsigned short> version) const
{
    if (m_profiles.empty()) {
        throw Error(QStringLiteral("the table %1 has no devices").arg(m_path));
    }
    if (!version && m_profiles.size() > 1) {
        throw Error(QStringLiteral("the table %1 has several devices: choose one with --device "
                                   "(--list shows them)")
                        .arg(m_path));
    }
    const auto found = version ? m_profiles.find(*version) : m_profiles.begin();
    if (found == m_profiles.end()) {
        throw Error(QStringLiteral("the table %1 has no device with version %2")
                        .arg(m_path, four_digits(*version)));
    }
    return *found->second;
}

} // namespace sim
