#pragma once

#include "inspect/DeviceFit.h"
#include "inspect/ImageFile.h"
#include "inspect/TextPage.h"

#include <QJsonObject>

namespace inspect
{

/// An image as JSON, with its place in a device if one is given.
QJsonObject json_of(const ImageFile& image, const DeviceFit* device);

/// An image as text, in human-readable units.
void print(TextPage& page, const ImageFile& image, const DeviceFit* device);

} // namespace inspect
