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

/// Returns why an upload would write nothing of the image to the device, or not the whole serial
/// number; empty if it writes both. The image must have been loaded with the boundaries of the
/// device.
QString reason_nothing_is_written(const Profile& device, const inspect::ImageFile& image,
                                  const Settings& settings, const std::optional<NumberSlot>& slot);

/// Returns why the device would not hold the whole image, one line for each reason.
QStringList fit_problems(const Profile& device, const inspect::ImageFile& image);

/// True if every byte of the image lies in device memory, wherever its pieces start. The bootloader
/// area counts as device memory.
bool has_room(const Profile& device, const inspect::ImageFile& image);

} // namespace gang
