#pragma once

#include "device/Reason.h"
#include "profile/Profile.h"

/// Why a memory command is not sent. The checks have a fixed order, the first that fails is the one
/// that is reported. Addresses and sizes are in bytes.
Reason check_read_command(const Profile& profile, unsigned int address, unsigned int num_bytes);
Reason check_write_command(const Profile& profile, unsigned int address, unsigned int num_bytes);
/// Only the first page is checked, whatever the command's count.
Reason check_erase_command(const Profile& profile, unsigned int address);
