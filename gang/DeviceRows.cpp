#include "gang/DeviceRows.h"

#include "profile/ProfileTable.h"

#include <QBuffer>
#include <QException>

namespace gang
{

namespace
{

unsigned short version_of(const Profile& profile)
{
    return static_cast<unsigned short>(profile.attributes[Profile::bootloader_version]);
}

} // namespace

DeviceRows::DeviceRows(const QByteArray& table)
{
    QBuffer buffer;
    buffer.setData(table);
    buffer.open(QIODevice::ReadOnly);
    while (const auto line = read_profile_table_line(buffer)) {
        if (line->kind == ProfileTableLine::Kind::Unparsable) {
            m_problems << QStringLiteral("a row begins with \"%1\", not with a version")
                              .arg(line->fields.value(0));
        }
        if (line->kind != ProfileTableLine::Kind::Row) {
            continue;
        }
        try {
            m_devices.push_back(std::make_unique<Profile>(line->fields));
        } catch (const QException&) {
            m_problems << QStringLiteral("the row of %1 (%2) cannot be used")
                              .arg(line->fields.value(0), line->fields.value(2));
        }
    }
}

/// Of several rows with one version the last counts.
const Profile* DeviceRows::find(unsigned short version) const
{
    for (auto device = m_devices.rbegin(); device != m_devices.rend(); ++device) {
        if (version_of(**device) == version) {
            return device->get();
        }
    }
    return nullptr;
}

std::optional<unsigned short> DeviceRows::only_version() const
{
    if (m_devices.empty()) {
        return std::nullopt;
    }
    const unsigned short version = version_of(*m_devices.front());
    for (const auto& device : m_devices) {
        if (version_of(*device) != version) {
            return std::nullopt;
        }
    }
    return version;
}

QSet<unsigned int> DeviceRows::boundaries() const
{
    QSet<unsigned int> boundaries;
    for (const auto& device : m_devices) {
        boundaries += device->boundaries;
    }
    return boundaries;
}

QByteArray rows_of(const QByteArray& table, unsigned short version)
{
    QByteArray rows;
    for (const QByteArray& text : table.split('\n')) {
        const ProfileTableLine line =
            parse_profile_table_line(QString::fromUtf8(text).remove(QLatin1Char('\r')));
        if (line.kind == ProfileTableLine::Kind::Row &&
            line.fields.at(0).toUShort(nullptr, 16) == version) {
            rows += text + '\n';
        }
    }
    return rows;
}

} // namespace gang
