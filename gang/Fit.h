#pragma once

#include "app/Settings.h"
#include "gang/SerialNumber.h"
#include "inspect/ImageFile.h"
#include "profile/Profile.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace gang
{

/// Why an upload would leave nothing of the image in the device, or no serial number. Empty if it
/// leaves both there. The image must have been loaded for this device.
QString emptiness(const Profile& device, const inspect::ImageFile& image, const Settings& settings,
                  const std::optional<NumberSlot>& slot);

/// Why the device would not have all of the image; one line each.
QStringList misfits(const Profile& device, const inspect::ImageFile& image);

/// Whether the device has memory for all of the image, wherever its pieces begin. Its own
/// bootloader counts as such.
bool has_room(const Profile& device, const inspect::ImageFile& image);

} // namespace gang
