#pragma once

#include "inspect/DeviceFit.h"
#include "inspect/ImageFile.h"
#include "inspect/TextPage.h"

#include <QJsonObject>

namespace inspect
{

/// An image in numbers, with where it lies in a device when there is one.
QJsonObject json_of(const ImageFile& image, const DeviceFit* device);

/// An image in human units.
void print(TextPage& page, const ImageFile& image, const DeviceFit* device);

} // namespace inspect
