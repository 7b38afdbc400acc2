#pragma once

#include "profile/Profile.h"

/// Which of the two flash areas an operation leaves alone.
struct AreaFilter {
    const Profile& profile;
    bool include_encrypted;
    bool include_unencrypted;

    /// Never true outside flash.
    bool excludes(unsigned int address) const
    {
        return (!include_encrypted && profile.is_encrypted_flash(address)) ||
               (!include_unencrypted && profile.is_unencrypted_flash(address));
    }

    /// Whether data that begins at `address` takes part: in flash or EEPROM and not left alone.
    bool admits(unsigned int address) const
    {
        return profile.get_memory_type(address) != MEMORY_OTHER && !excludes(address);
    }
};
