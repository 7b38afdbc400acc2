#pragma once

#include "inspect/ImageFile.h"
#include "inspect/UnitCount.h"
#include "profile/Profile.h"

#include <array>
#include <vector>

namespace inspect
{

/// The part of a device that an address belongs to.
enum class Area { Encrypted, Unencrypted, Eeprom, Bootloader, Outside };

inline constexpr std::array<Area, 5> areas = {Area::Encrypted, Area::Unencrypted, Area::Eeprom,
                                              Area::Bootloader, Area::Outside};

/// "encrypted", "unencrypted", "eeprom", "bootloader", "outside".
QString name_of(Area area);

Area area_of(const Profile& profile, quint64 address);

/// A range that lies in one area.
struct AreaPiece {
    Segment range;
    Area area;
};

/// Splits ranges at the limits of the device's regions.
std::vector<AreaPiece> cut(const Profile& profile, const std::vector<Segment>& segments);

/// Where the bytes of an image lie in a device.
struct DeviceFit {
    std::array<quint64, 5> bytes{}; ///< by area
    UnitCount pages;
    UnitCount flash_rows;
    UnitCount eeprom_rows;
    std::vector<AreaPiece> pieces;
    std::vector<Problem> problems;
};

DeviceFit fit(const Profile& profile, const ImageFile& image);

} // namespace inspect
