#pragma once

#include "device/AddressRange.h"
#include "device/Reason.h"
#include "profile/MemoryType.h"

#include <QByteArray>
#include <QString>

#include <functional>

class MemoryMap;
class Profile;
class ZarnSerialDevice;

/// What the operations on whole memories have in common. Addresses and sizes are in bytes.
namespace rows
{

/// Where a memory begins and ends.
AddressRange limits_of(const Profile& profile, MemoryType type);

/// Reports the reason, if there is one; true if there is none.
bool passes(ZarnSerialDevice& device, const Reason& reason);

/// Why a range that a user gave cannot be read or written. The one value that is substituted into
/// `outside_message` fills all of its places.
Reason check_range(const Profile& profile, AddressRange range, const QString& outside_message);

/// Reports that the user asked to stop, if so; true if not.
bool goes_on(ZarnSerialDevice& device, const bool& abort_requested);

/// Calls `row` with the address of each row for as long as it returns true and no stop is
/// requested. `step` must not be 0.
bool walk(ZarnSerialDevice& device, AddressRange rows, unsigned int step,
          const bool& abort_requested, const std::function<bool(unsigned int)>& row);

/// Makes `row` the row that belongs at `address`: filler, overlaid with what the image holds. False
/// when the image holds none of it.
bool fill(const ZarnSerialDevice& device, const MemoryMap& image, MemoryType type,
          unsigned int address, QByteArray& row);

/// Reads the row at `address`; a part that could not be read is filler.
bool read(ZarnSerialDevice& device, MemoryType type, unsigned int address, QByteArray& row);

} // namespace rows
