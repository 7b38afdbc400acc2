#pragma once

#include "profile/Profile.h"

#include <QMap>
#include <QObject>
#include <QStringList>

#include <memory>

/// The one registry of device profiles, from 16-bit bootloader version to Profile. The first
/// query reads ./device.txt; any error in that file is reported on the debug
/// channel and leaves that first call as a thrown `QException*`.
class Profiles : public QObject
{
    Q_OBJECT

public:
    static Profiles& get_instance();

    /// One line per profile in ascending version order: eight hexadecimal digits, space, name.
    static QStringList dump();
    static bool has_profile(unsigned short version);
    /// The profile of `version`, owned by the registry. Asking for an unknown version returns null
    /// and leaves a null entry: ask has_profile() first.
    static Profile* get_profile(unsigned short version);
    /// The smallest max_baud of all profiles; 4294967295 when there is none.
    static unsigned int get_lowest_baud();

private:
    Profiles();
    /// Enters the profile under its version, replacing an earlier one.
    void enter(std::unique_ptr<Profile> profile);

    /// The profiles are children of the registry.
    QMap<unsigned short, Profile*> m_profiles;
};
