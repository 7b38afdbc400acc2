#pragma once

#include "profile/Profiles.h"

#include <QString>
#include <QStringList>

#include <stdexcept>

namespace test
{

/// The version under which the working directory's table lists the device `name`.
inline unsigned short version_named(const char* name)
{
    for (const QString& line : Profiles::dump()) { // "0000ABCD name"
        if (line.mid(9) == QLatin1String(name)) {
            return static_cast<unsigned short>(line.left(8).toUInt(nullptr, 16));
        }
    }
    throw std::invalid_argument(std::string("no device in the table is named ") + name);
}

/// The row itself, owned by the registry.
inline const Profile& profile_named(const char* name)
{
    return *Profiles::get_profile(version_named(name));
}

} // namespace test
