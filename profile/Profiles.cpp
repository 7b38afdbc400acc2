#include "profile/Profiles.h"

#include "profile/ProfileTable.h"
#include "util/Util.h"

#include <QDebug>
#include <QException>
#include <QFile>

#include <algorithm>
#include <limits>
#include <utility>

namespace
{

/// The exception is thrown as a pointer and not meant to be caught: the table has to be corrected.
[[noreturn]] void fail(const QString& message)
{
    qDebug() << message;
    throw new QException(); // NOLINT(cert-err09-cpp,cert-err61-cpp): see above
}

void open_for_reading(QFile& file)
{
    if (!file.exists()) {
        fail(QStringLiteral("file not found: ") + file.fileName());
    }
    if (!file.open(QIODevice::ReadOnly)) {
        fail(QStringLiteral("file read error: ") + file.fileName());
    }
}

} // namespace

Profiles& Profiles::get_instance()
{
    static Profiles instance;
    return instance;
}

Profiles::Profiles()
{
    QFile file(QStringLiteral("./device.txt"));
    open_for_reading(file);
    while (const auto line = read_profile_table_line(file)) {
        if (line->kind == ProfileTableLine::Kind::Unparsable) {
            fail(QStringLiteral("unparsable profile data"));
        }
        if (line->kind == ProfileTableLine::Kind::Row) {
            enter(std::make_unique<Profile>(line->fields));
        }
    }
    // Part of a table is not used: the requested device might be in the missing part.
    if (file.error() != QFile::NoError) {
        fail(QStringLiteral("file read error: ") + file.fileName());
    }
}

// Every profile becomes a child of the registry, which also frees those entered so far when a later
// line of the table ends in an exception.
void Profiles::enter(std::unique_ptr<Profile> profile)
{
    const auto version =
        static_cast<unsigned short>(profile->attributes[Profile::bootloader_version]);
    Profile*& entry = m_profiles[version];
    profile->setParent(this);
    delete std::exchange(entry, profile.release());
}

QStringList Profiles::dump()
{
    QStringList lines;
    const auto& profiles = get_instance().m_profiles;
    for (auto it = profiles.cbegin(); it != profiles.cend(); ++it) {
        if (it.value() != nullptr) {
            const auto version = static_cast<unsigned int>(it.key());
            lines << Util::uint_to_hex(version, -1) + QLatin1Char(' ') + it.value()->name;
        }
    }
    return lines;
}

bool Profiles::has_profile(unsigned short version)
{
    return get_instance().m_profiles.contains(version);
}

Profile* Profiles::get_profile(unsigned short version)
{
    return get_instance().m_profiles[version];
}

unsigned int Profiles::get_lowest_baud()
{
    unsigned int lowest = std::numeric_limits<unsigned int>::max();
    for (const Profile* profile : std::as_const(get_instance().m_profiles)) {
        if (profile != nullptr) {
            lowest = std::min(lowest, profile->attributes[Profile::max_baud]);
        }
    }
    return lowest;
}
