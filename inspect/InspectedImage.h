#pragma once

#include "inspect/DeviceFit.h"
#include "inspect/ImageFile.h"
#include "inspect/Report.h"

#include <memory>
#include <optional>

namespace inspect
{

/// Everything about one image.
struct InspectedImage {
    ImageFile image;
    std::optional<DeviceFit> fit; ///< of an image that loads, when there is a device
};

/// `profile` may be null: no device.
std::shared_ptr<const InspectedImage> inspect_image(const QString& path, const Profile* profile);

void add_problems(Report& report, const InspectedImage& inspected);

} // namespace inspect
