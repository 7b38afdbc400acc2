#pragma once

#include "app/Settings.h"
#include "gang/SerialNumber.h"
#include "profile/Profile.h"

#include <QString>

#include <optional>

namespace gang
{

/// Why writing the image would not leave in the device what it is to leave: it has no byte for the
/// device, or the serial number does not lie in the device's memory. Empty if it fits.
QString misfit(const Profile& device, const QString& image, const Settings& settings,
               const std::optional<NumberSlot>& slot);

} // namespace gang
